#include "core/image/blur_bands.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

struct BlurTask {
    Size size;
    std::int64_t channels;
    double sigmaPx;
    const SourceRow& source;
    const BlurredRow& use;

    std::int64_t rowSamples() const { return size.width * channels; }
};

/// A window slides down the source, each time with the kernel's reach above and below the rows that it
/// yields. Its source rows around the next window's first row are set aside before they are blurred, since
/// `use` may change the picture that they came from.
template <typename Image>
void blurDirect(const BlurTask& task)
{
    const auto radius = static_cast<std::int64_t>(task.sigmaPx * 4.0 + 0.5);
    const std::int64_t samples = task.rowSamples();
    const std::int64_t windowRows = std::max(kPictureBandRows, 2 * radius) + 2 * radius;
    std::vector<float> around;
    Image window;
    std::int64_t top = 0, done = 0;
    while (done < task.size.height) {
        const std::int64_t bottom = std::min(top + windowRows, task.size.height);
        if (window.height != bottom - top) window = Image(task.size.width, bottom - top);
        float* rows = window.mutableData();
        std::copy(around.begin(), around.end(), rows);
        const std::int64_t known = static_cast<std::int64_t>(around.size()) / samples;
        fetchRows(top + known, bottom, samples, task.source, rows + known * samples);
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

/// The blurred light at the smaller size.
template <typename Image>
Image reducedBlur(const BlurTask& task)
{
    const ReducedBlur plan = planReducedBlur(task.size, task.sigmaPx);
    return gaussianFilter(reduceInBands<Image>(task.size, plan.small, task.source), plan.sigmaPx,
                          EdgeMode::nearest);
}

template <typename Image>
EnlargedRows held(const BlurTask& task)
{
    if (task.sigmaPx > kDirectBlurSigmaPx) return {reducedBlur<Image>(task), task.size};
    Image whole(task.size.width, task.size.height);
    fetchRows(0, task.size.height, task.rowSamples(), task.source, whole.mutableData());
    return {gaussianFilter(std::move(whole), task.sigmaPx, EdgeMode::nearest), task.size};
}

template <typename Image>
void blurImage(const BlurTask& task)
{
    if (task.sigmaPx <= kDirectBlurSigmaPx)
        blurDirect<Image>(task);
    else
        enlargeByRows<Image>(reducedBlur<Image>(task), task.size, task.use);
}

} // namespace

EnlargedRows heldBlur(Size size, std::int64_t channels, double sigmaPx, const SourceRow& source)
{
    const BlurTask task{size, channels, sigmaPx, source, {}};
    return channels == 3 ? held<RGBImage>(task) : held<Plane>(task);
}

EnlargedRows heldBlur(const RGBImage& image, double sigmaPx)
{
    if (!(sigmaPx > kDirectBlurSigmaPx))
        return {gaussianFilter(image, sigmaPx, EdgeMode::nearest), image.size()};
    const ReducedBlur plan = planReducedBlur(image.size(), sigmaPx);
    RGBImage small = pilResize(image, plan.small, Resampling::bilinear);
    return {gaussianFilter(std::move(small), plan.sigmaPx, EdgeMode::nearest), image.size()};
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
