// Reducing a large picture and laying an enlarged small one against it, row by row, so that neither a second
// picture nor the enlarged one stands in memory. The values are those of pilResize with the bilinear filter,
// bit for bit. Wide blurs and the rays of a filter work on such a reduced picture.
#pragma once

#include "core/image/plane.h"
#include "core/image/resample.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace tamlo {

/// Rows that are held at a time: a tenth of a 24-megapixel picture.
inline constexpr std::int64_t kPictureBandRows = 512;

/// Where a picture comes from: writes row y of the source. It is asked by many threads at a time, for some
/// rows by more than one.
using SourceRow = std::function<void(std::int64_t y, float* to)>;
/// Takes row y of the result. It is called once for each row, by many threads at a time.
using ResultRow = std::function<void(std::int64_t y, const float* row)>;

/// Asks for the source's rows first...end - 1, side by side into `to`.
void fetchRows(std::int64_t first, std::int64_t end, std::int64_t rowSamples, const SourceRow& source,
               float* to);

/// The source, of size `size`, at another size. Image is Plane or RGBImage.
template <typename Image>
Image reduceInBands(Size size, Size reduced, const SourceRow& source);

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

/// Gives each row of the picture enlarged to `size` to `use`.
template <typename Image>
void enlargeByRows(const Image& picture, Size size, const ResultRow& use);

template <>
Plane reduceInBands<Plane>(Size, Size, const SourceRow&);
template <>
RGBImage reduceInBands<RGBImage>(Size, Size, const SourceRow&);
template <>
void enlargeByRows<Plane>(const Plane&, Size, const ResultRow&);
template <>
void enlargeByRows<RGBImage>(const RGBImage&, Size, const ResultRow&);

} // namespace tamlo
