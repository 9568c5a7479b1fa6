#include "core/film/resample_bands.h"

#include "core/image/bands.h"
#include "core/image/resample.h"
#include "core/image/resample_passes.h"

#include <algorithm>
#include <type_traits>
#include <vector>

namespace tamlo {
namespace {

template <typename Image>
constexpr std::int64_t kChannels = std::is_same_v<Image, Plane> ? 1 : 3;

} // namespace

void fetchRows(std::int64_t first, std::int64_t end, std::int64_t rowSamples, const SourceRow& source,
               float* to)
{
    parallelBands(end - first, rowSamples, [&](std::int64_t a, std::int64_t b) {
        for (std::int64_t i = a; i < b; ++i) source(first + i, to + i * rowSamples);
    });
}

/// A band of rows at a time at the new width, then the whole at the new height: the order in which the
/// resampler works.
template <typename Image>
Image reduceInBands(Size size, Size reduced, const SourceRow& source)
{
    const std::int64_t samples = size.width * kChannels<Image>;
    const std::int64_t narrowSamples = reduced.width * kChannels<Image>;
    Image narrow(reduced.width, size.height);
    if (reduced.width == size.width) {
        fetchRows(0, size.height, samples, source, narrow.mutableData());
        return pilResize(narrow, reduced, Resampling::bilinear);
    }
    Image band, narrowBand;
    for (std::int64_t y = 0; y < size.height; y += kPictureBandRows) {
        const std::int64_t rows = std::min(kPictureBandRows, size.height - y);
        if (band.height != rows) {
            band = Image(size.width, rows);
            narrowBand = Image(reduced.width, rows);
        }
        fetchRows(y, y + rows, samples, source, band.mutableData());
        pilResizeInto(band, narrowBand, Resampling::bilinear);
        std::copy_n(narrowBand.data.data(), rows * narrowSamples, narrow.mutableData() + y * narrowSamples);
    }
    return pilResize(narrow, reduced, Resampling::bilinear);
}

template <typename Image>
void enlargeByRows(const Image& picture, Size size, const ResultRow& use)
{
    const std::int64_t samples = size.width * kChannels<Image>;
    const Image wide = pilResize(picture, size.width, picture.height, Resampling::bilinear);
    if (picture.height == size.height) {
        parallelBands(size.height, samples, [&](std::int64_t start, std::int64_t end) {
            for (std::int64_t y = start; y < end; ++y) use(y, wide.row(y));
        });
        return;
    }
    const ResampleCoeffs table(picture.height, size.height, Resampling::bilinear);
    parallelBands(size.height, samples, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(samples));
        std::vector<const float*> taps;
        for (std::int64_t y = start; y < end; ++y) {
            const auto i = static_cast<std::size_t>(y);
            taps.clear();
            for (std::int64_t j = 0; j < table.n[i]; ++j) taps.push_back(wide.row(table.xmin[i] + j));
            resample_column(
                {taps.data(), table.k.data() + y * table.ksize, table.n[i], samples, row.data()});
            use(y, row.data());
        }
    });
}

template Plane reduceInBands<Plane>(Size, Size, const SourceRow&);
template RGBImage reduceInBands<RGBImage>(Size, Size, const SourceRow&);
template void enlargeByRows<Plane>(const Plane&, Size, const ResultRow&);
template void enlargeByRows<RGBImage>(const RGBImage&, Size, const ResultRow&);

} // namespace tamlo
