// A Gaussian blur laid against a large picture without a second picture in memory. Up to kDirectBlurSigmaPx
// the picture is blurred in bands with margins; a wider blur is held reduced and enlarged row by row. The
// values are those of blur (core/image/gaussian.h), bit for bit. Halation and the edge effects read their
// blurred light and density here.
#pragma once

#include "core/image/plane.h"
#include "core/image/resample_bands.h"

#include <cstdint>

namespace tamlo {

/// Takes row y of the blur.
using BlurredRow = ResultRow;

/// A blur kept for later rows: reduced when it is wide, whole up to kDirectBlurSigmaPx. For a stage that adds
/// several blurs of one source, which `source` must still give while they are made. Sigma is 0 or more.
EnlargedRows heldBlur(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source);
/// The same of an image as it stands.
EnlargedRows heldBlur(const RGBImage& image, double sigmaPx);

/// Blurs a source of the given size and channels (1 or 3), edges repeated. Units: sigma in pixels, above 0.
/// `use` may change the rows that `source` reads from: `source` is never asked for a row that `use` has been
/// given.
void blurInBands(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source,
                 const BlurredRow& use);

} // namespace tamlo
