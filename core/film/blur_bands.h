// A Gaussian blur laid against a large picture without a second picture in memory. Up to kDirectBlurSigmaPx
// the picture is blurred in bands with margins; a wider blur is held reduced and enlarged row by row. The
// values are those of blur (core/image/gaussian.h), bit for bit. Halation and the edge effects read their
// blurred light and density here.
#pragma once

#include "core/image/plane.h"
#include "core/image/resample.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace tamlo {

/// Where the blur's input comes from: writes row y of the source. It is asked for each row once, by many
/// threads at a time, and never for a row that `use` has been given.
using SourceRow = std::function<void(std::int64_t y, float* to)>;
/// Takes row y of the blur. It is called once for each row, by many threads at a time.
using BlurredRow = std::function<void(std::int64_t y, const float* blurred)>;

/// A small picture seen at another size, a row at a time: the values of pilResize with the bilinear filter,
/// without the large picture. It stands across at its full width and down at its small height.
class EnlargedRows {
public:
    EnlargedRows(const RGBImage& small, Size full);
    EnlargedRows(const Plane& small, Size full);

    /// Row y of the full size: width × channels samples.
    void row(std::int64_t y, float* to) const;

private:
    EnlargedRows(FloatBuffer wide, Size small, Size full, std::int64_t channels);

    FloatBuffer wide_;
    std::int64_t samples_;
    ResampleCoeffs table_;
    std::vector<const float*> rows_;
};

/// A blur kept for later rows: reduced when it is wide, whole up to kDirectBlurSigmaPx. For a stage that adds
/// several blurs of one source, which `source` must still give while they are made. Sigma is 0 or more.
EnlargedRows heldBlur(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source);
/// The same of an image as it stands.
EnlargedRows heldBlur(const RGBImage& image, double sigmaPx);

/// A sigma held to 64 picture widths, far beyond the one that spreads evenly over the picture: a profile may
/// name any reach in micrometres, and the kernel's length must stay within reason.
double boundedSigmaPx(double sigmaPx, Size size);

/// Blurs a source of the given size and channels (1 or 3), edges repeated. Units: sigma in pixels, above 0.
/// `use` may change the rows that `source` reads from: a row is used when no more of its source is wanted.
void blurInBands(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source,
                 const BlurredRow& use);

} // namespace tamlo
