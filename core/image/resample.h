// The one resampler of the system. Master cap, exports, masks and the reduced planes of wide blurs all go
// through it, with the coefficient rules of Pillow's resize, so that a size and a filter always give the same
// weights. Samples are 32-bit floats; the rows pass runs first, then the columns pass, each summing in 64-bit
// floats and rounding to 32-bit floats, as Pillow does in its mode F.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <vector>

namespace tamlo {

enum class Resampling { bilinear = 0, lanczos = 1, box = 2, bicubic = 3 };

/// Reach of a filter to either side, in output samples (in input samples when enlarging).
double resamplingSupport(Resampling filter);

/// The weights of one axis.
struct ResampleCoeffs {
    /// Row length of the table k.
    std::int64_t ksize = 0;
    /// For each output sample: the first input sample and the number of taps.
    std::vector<std::int64_t> xmin;
    std::vector<std::int64_t> n;
    /// Normalised weights, ksize for each output sample.
    std::vector<double> k;

    ResampleCoeffs(std::int64_t inSize, std::int64_t outSize, Resampling filter);
    /// Those of the output samples first...first + count - 1 alone, the same numbers.
    ResampleCoeffs(std::int64_t inSize, std::int64_t outSize, Resampling filter, std::int64_t first,
                   std::int64_t count);
};

/// A plane of the given size, at least 1 × 1; an unchanged size gives the input back.
Plane pilResize(const Plane& plane, std::int64_t width, std::int64_t height, Resampling filter);
Plane pilResize(const Plane& plane, Size size, Resampling filter);
/// The same on each channel of an image.
RGBImage pilResize(const RGBImage& image, std::int64_t width, std::int64_t height, Resampling filter);
RGBImage pilResize(const RGBImage& image, Size size, Resampling filter);

/// pilResize to the size of `target`, written into target's own block where nobody shares it: a fresh large
/// block costs more than the resampling. What target held is lost.
void pilResizeInto(const Plane& plane, Plane& target, Resampling filter);
void pilResizeInto(const RGBImage& image, RGBImage& target, Resampling filter);

} // namespace tamlo
