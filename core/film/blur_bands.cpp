#include "core/film/blur_bands.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/image/resample_passes.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kWindowRows = 512; // of a direct blur: each window takes fresh scratch of its own
constexpr std::int64_t kReducedRows = 32; // on the way to a smaller size: rows that stay in the cache

struct BlurTask {
    Size size;
    std::int64_t channels;
    double sigmaPx;
    const SourceRow& source;
    const BlurredRow& use;

    std::int64_t rowSamples() const { return size.width * channels; }

    void fetch(std::int64_t first, std::int64_t end, float* to) const
    {
        parallelBands(end - first, rowSamples(), [&](std::int64_t a, std::int64_t b) {
            for (std::int64_t i = a; i < b; ++i) source(first + i, to + i * rowSamples());
        });
    }
};

/// A window slides down the source, each time with the kernel's reach above and below the rows that it
/// yields. Its source rows around the next window's first row are set aside before they are blurred, since
/// `use` may change the picture that they came from.
template <typename Image>
void blurDirect(const BlurTask& task)
{
    const auto radius = static_cast<std::int64_t>(task.sigmaPx * 4.0 + 0.5);
    const std::int64_t samples = task.rowSamples();
    const std::int64_t windowRows = std::max(kWindowRows, 2 * radius) + 2 * radius;
    std::vector<float> around;
    Image window;
    std::int64_t top = 0, done = 0;
    while (done < task.size.height) {
        const std::int64_t bottom = std::min(top + windowRows, task.size.height);
        if (window.height != bottom - top) window = Image(task.size.width, bottom - top);
        float* rows = window.mutableData();
        std::copy(around.begin(), around.end(), rows);
        const std::int64_t known = static_cast<std::int64_t>(around.size()) / samples;
        task.fetch(top + known, bottom, rows + known * samples);
        const std::int64_t end = bottom == task.size.height ? bottom : bottom - radius;
        const float* next = rows + (end - radius - top) * samples;
        if (end < bottom) around.assign(next, next + 2 * radius * samples);

        window = gaussianFilter(std::move(window), task.sigmaPx, EdgeMode::nearest);
        parallelBands(end - done, samples, [&](std::int64_t a, std::int64_t b) {
            for (std::int64_t y = done + a; y < done + b; ++y) task.use(y, window.row(y - top));
        });
        done = end;
        top = end - radius;
    }
}

/// The source at a smaller width, a band of rows at a time, then at the smaller height: the order in which
/// the resampler works.
template <typename Image>
Image reduced(const BlurTask& task, Size small)
{
    const std::int64_t smallSamples = small.width * task.channels;
    Image narrow(small.width, task.size.height);
    float* to = narrow.mutableData();
    parallelBands(task.size.height, task.rowSamples(), [&](std::int64_t start, std::int64_t end) {
        Image band, narrowBand;
        for (std::int64_t y = start; y < end; y += kReducedRows) {
            const std::int64_t rows = std::min(kReducedRows, end - y);
            if (band.height != rows) {
                band = Image(task.size.width, rows);
                narrowBand = Image(small.width, rows);
            }
            float* row = band.mutableData();
            for (std::int64_t i = 0; i < rows; ++i) task.source(y + i, row + i * task.rowSamples());
            pilResizeInto(band, narrowBand, Resampling::bilinear);
            std::copy_n(narrowBand.data.data(), rows * smallSamples, to + y * smallSamples);
        }
    });
    return pilResize(narrow, small, Resampling::bilinear);
}

struct ReducedBlur {
    Size small;
    double sigmaPx;
};

ReducedBlur planReduced(Size size, double sigmaPx)
{
    constexpr double kReducedSigmaPx = 6.0;
    constexpr std::int64_t kMinSidePx = 16;
    const double factor = sigmaPx / kReducedSigmaPx;
    const auto side = [&](std::int64_t n) {
        return std::max(pyRound(static_cast<double>(n) / factor), kMinSidePx);
    };
    const Size small{side(size.width), side(size.height)};
    return {small, sigmaPx * static_cast<double>(small.width) / static_cast<double>(size.width)};
}

template <typename Image>
EnlargedRows heldReduced(const BlurTask& task)
{
    const ReducedBlur plan = planReduced(task.size, task.sigmaPx);
    return {gaussianFilter(reduced<Image>(task, plan.small), plan.sigmaPx, EdgeMode::nearest), task.size};
}

template <typename Image>
EnlargedRows held(const BlurTask& task)
{
    if (task.sigmaPx > kDirectBlurSigmaPx) return heldReduced<Image>(task);
    Image whole(task.size.width, task.size.height);
    task.fetch(0, task.size.height, whole.mutableData());
    return {gaussianFilter(std::move(whole), task.sigmaPx, EdgeMode::nearest), task.size};
}

template <typename Image>
void blurReduced(const BlurTask& task)
{
    const EnlargedRows light = heldReduced<Image>(task);
    parallelBands(task.size.height, task.rowSamples(), [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(task.rowSamples()));
        for (std::int64_t y = start; y < end; ++y) {
            light.row(y, row.data());
            task.use(y, row.data());
        }
    });
}

template <typename Image>
void blurImage(const BlurTask& task)
{
    if (task.sigmaPx <= kDirectBlurSigmaPx)
        blurDirect<Image>(task);
    else
        blurReduced<Image>(task);
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

EnlargedRows heldBlur(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source)
{
    const BlurTask task{size, channels, sigmaPx, source, {}};
    return channels == 3 ? held<RGBImage>(task) : held<Plane>(task);
}

EnlargedRows heldBlur(const RGBImage& image, double sigmaPx)
{
    if (!(sigmaPx > kDirectBlurSigmaPx))
        return {gaussianFilter(image, sigmaPx, EdgeMode::nearest), image.size()};
    const ReducedBlur plan = planReduced(image.size(), sigmaPx);
    RGBImage small = pilResize(image, plan.small, Resampling::bilinear);
    return {gaussianFilter(std::move(small), plan.sigmaPx, EdgeMode::nearest), image.size()};
}

double boundedSigmaPx(double sigmaPx, Size size)
{
    return std::min(sigmaPx, 64.0 * static_cast<double>(std::max<std::int64_t>(size.width, 1)));
}

void blurInBands(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source,
                 const BlurredRow& use)
{
    if (size.width <= 0 || size.height <= 0) return;
    const BlurTask task{size, channels, sigmaPx, source, use};
    if (channels == 3)
        blurImage<RGBImage>(task);
    else
        blurImage<Plane>(task);
}

} // namespace tamlo
