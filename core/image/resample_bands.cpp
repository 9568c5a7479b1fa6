#include "core/image/resample_bands.h"

#include "core/image/bands.h"
#include "core/image/resample_passes.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

/// Rows of a picture of three channels at another width, made as they are asked for and held in a ring, so
/// that no picture of them stands in memory.
class RowsAtWidth {
public:
    RowsAtWidth(Size in, std::int64_t width, std::int64_t taps, std::int64_t first, const SourceRow& source)
        : source_(source),
          next_(first),
          slots_(taps + 1),
          stride_(width * 3 + kResampleLanes),
          ring_(static_cast<std::size_t>(slots_ * stride_)),
          row_(static_cast<std::size_t>(in.width * 3 + kResampleLanes))
    {
        if (in.width != width) coeffs_.emplace(in.width, width, Resampling::bilinear);
    }

    /// Row y; asked for in rising order. The last `taps` stay valid.
    const float* row(std::int64_t y)
    {
        for (; next_ <= y; ++next_) {
            if (!coeffs_) {
                source_(next_, slot(next_));
                continue;
            }
            source_(next_, row_.data());
            resample_row({row_.data(), 3, slot(next_)}, *coeffs_);
        }
        return slot(y);
    }

private:
    float* slot(std::int64_t y) { return ring_.data() + y % slots_ * stride_; }

    const SourceRow& source_;
    std::optional<ResampleCoeffs> coeffs_;
    std::int64_t next_, slots_, stride_;
    std::vector<float> ring_, row_;
};

/// The source, of three channels, at another size, row by row: the two passes of the resampler.
void resampleByRows(Size in, Size out, const SourceRow& source, const ResultRow& use)
{
    const ResampleCoeffs table(in.height, out.height, Resampling::bilinear);
    const std::int64_t taps = *std::max_element(table.n.begin(), table.n.end());
    const std::int64_t samples = out.width * 3;
    parallelBands(out.height, std::max(in.width, out.width) * 3, [&](std::int64_t start, std::int64_t end) {
        RowsAtWidth from(in, out.width, taps, table.xmin[static_cast<std::size_t>(start)], source);
        std::vector<float> row(static_cast<std::size_t>(samples));
        std::vector<const float*> rows;
        for (std::int64_t y = start; y < end; ++y) {
            const auto i = static_cast<std::size_t>(y);
            rows.clear();
            for (std::int64_t j = 0; j < table.n[i]; ++j) rows.push_back(from.row(table.xmin[i] + j));
            if (in.height == out.height) {
                use(y, rows.front());
                continue;
            }
            resample_column({rows.data(), table.k.data() + y * table.ksize, table.n[i], samples, row.data()});
            use(y, row.data());
        }
    });
}

} // namespace

EnlargedRows::EnlargedRows(const RGBImage& small, Size full)
    : EnlargedRows(pilResize(small, full.width, small.height, Resampling::bilinear).data, small.size(), full,
                   3)
{}

EnlargedRows::EnlargedRows(const Plane& small, Size full)
    : EnlargedRows(pilResize(small, full.width, small.height, Resampling::bilinear).data, small.size(), full,
                   1)
{}

EnlargedRows::EnlargedRows(FloatBuffer wide, Size small, Size full, std::int64_t channels)
    : wide_(std::move(wide)),
      samples_(full.width * channels),
      table_(small.height, full.height, Resampling::bilinear)
{
    for (std::int64_t y = 0; y < small.height; ++y) rows_.push_back(wide_.data() + y * samples_);
}

void EnlargedRows::row(std::int64_t y, float* to) const
{
    const auto i = static_cast<std::size_t>(y);
    const float* const* taps = rows_.data() + table_.xmin[i];
    resample_column({taps, table_.k.data() + y * table_.ksize, table_.n[i], samples_, to});
}

void fetchRows(std::int64_t first, std::int64_t end, std::int64_t rowSamples, const SourceRow& source,
               float* to)
{
    parallelBands(end - first, rowSamples, [&](std::int64_t a, std::int64_t b) {
        for (std::int64_t i = a; i < b; ++i) source(first + i, to + i * rowSamples);
    });
}

/// A plane goes through the resampler a few rows at a time that stay in the cache: at the new width first,
/// then the whole at the new height.
template <>
Plane reduceInBands<Plane>(Size size, Size reduced, const SourceRow& source)
{
    constexpr std::int64_t kRows = 32;
    Plane narrow(reduced.width, size.height);
    float* to = narrow.mutableData();
    parallelBands(size.height, size.width, [&](std::int64_t start, std::int64_t end) {
        Plane band, narrowBand;
        for (std::int64_t y = start; y < end; y += kRows) {
            const std::int64_t rows = std::min(kRows, end - y);
            if (band.height != rows) {
                band = Plane(size.width, rows);
                narrowBand = Plane(reduced.width, rows);
            }
            float* row = band.mutableData();
            for (std::int64_t i = 0; i < rows; ++i) source(y + i, row + i * size.width);
            pilResizeInto(band, narrowBand, Resampling::bilinear);
            std::copy_n(narrowBand.data.data(), rows * reduced.width, to + y * reduced.width);
        }
    });
    return pilResize(narrow, reduced, Resampling::bilinear);
}

template <>
RGBImage reduceInBands<RGBImage>(Size size, Size reduced, const SourceRow& source)
{
    RGBImage out(reduced.width, reduced.height);
    float* to = out.mutableData();
    const std::int64_t samples = reduced.width * 3;
    resampleByRows(size, reduced, source,
                   [&](std::int64_t y, const float* row) { std::copy_n(row, samples, to + y * samples); });
    return out;
}

template <>
void enlargeByRows<Plane>(const Plane& picture, Size size, const ResultRow& use)
{
    const EnlargedRows enlarged(picture, size);
    parallelBands(size.height, size.width, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(size.width));
        for (std::int64_t y = start; y < end; ++y) {
            enlarged.row(y, row.data());
            use(y, row.data());
        }
    });
}

template <>
void enlargeByRows<RGBImage>(const RGBImage& picture, Size size, const ResultRow& use)
{
    const std::int64_t samples = picture.width * 3;
    const auto source = [&](std::int64_t y, float* to) { std::copy_n(picture.row(y), samples, to); };
    resampleByRows(picture.size(), size, source, use);
}

} // namespace tamlo
