#include "core/image/gaussian.h"

#include "core/image/bands.h"
#include "core/image/cancellation.h"
#include "core/image/gaussian_passes.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace tamlo {
namespace {

constexpr double kMinSigmaPx = 1e-15;
constexpr std::int64_t kBlockRows = 32; // output rows that go through the column fold together

template <typename Image>
constexpr std::int64_t kChannels = std::is_same_v<Image, Plane> ? 1 : 3;

/// Half kernels of both axes; the kernel {1} leaves an axis as it is.
struct FilterPlan {
    std::vector<double> halfY{1.0};
    std::vector<double> halfX{1.0};
    EdgeMode mode = EdgeMode::nearest;
};

/// The half kernel of an axis; {1} for a sigma that blurs nothing.
std::vector<double> axisKernel(double sigma, double truncate)
{
    return sigma > kMinSigmaPx ? gaussianHalfKernel(sigma, truncate) : std::vector<double>{1.0};
}

/// A picture as the filter sees it. `to` may be `from`: the filter then works in place.
struct FilterTask {
    const float* from;
    float* to;
    std::int64_t width, height, channels;
    std::int64_t rowSamples() const { return width * channels; }
};

/// One band of output rows. It keeps the source rows around it, taken before any band writes, and the source
/// rows just above the block at work, which it has written over itself.
class FilterBand {
public:
    FilterBand(const FilterTask& task, const FilterPlan& plan, std::int64_t start, std::int64_t end)
        : task_(task), plan_(plan), start_(start), end_(end), radius_(kernelY().radius())
    {}

    void keepSurroundings()
    {
        const auto count = static_cast<std::size_t>(radius_ * task_.rowSamples());
        above_ = FloatBuffer(count);
        below_ = FloatBuffer(count);
        for (std::int64_t i = 0; i < radius_; ++i) {
            copySourceRow(start_ - radius_ + i, aboveRow(start_ - radius_ + i));
            copySourceRow(end_ + i, below_.mutableData() + i * task_.rowSamples());
        }
    }

    void run()
    {
        const std::int64_t stride = gaussPadded(task_.rowSamples());
        const std::int64_t reachX = kernelX().radius() * task_.channels;
        FloatBuffer folded(static_cast<std::size_t>(kBlockRows * stride));
        std::vector<double> strip(gaussStripDoubles(kBlockRows, radius_));
        std::vector<double> line(static_cast<std::size_t>(stride + 2 * reachX));
        std::vector<const float*> rows;
        for (std::int64_t y = start_; y < end_; y += kBlockRows) {
            cancellationPoint();
            const std::int64_t count = std::min(kBlockRows, end_ - y);
            rows.clear();
            for (std::int64_t i = y - radius_; i < y + count + radius_; ++i) rows.push_back(sourceRow(i, y));
            gauss_columns(
                {rows.data(), count, task_.rowSamples(), folded.mutableData(), stride, strip.data()},
                kernelY());
            for (std::int64_t i = std::max(y, y + count - radius_); i < y + count; ++i)
                copySourceRow(i, aboveRow(i));
            for (std::int64_t i = 0; i < count; ++i)
                gauss_row({folded.data() + i * stride, task_.width, task_.channels,
                           task_.to + (y + i) * task_.rowSamples(), line.data()},
                          kernelX(), plan_.mode);
        }
    }

private:
    GaussHalfKernel kernelY() const { return {plan_.halfY}; }
    GaussHalfKernel kernelX() const { return {plan_.halfX}; }

    /// Where row y is kept once it has been written over: a ring of `radius` rows.
    float* aboveRow(std::int64_t y)
    {
        return above_.mutableData() + (y % radius_ + radius_) % radius_ * task_.rowSamples();
    }

    /// Source row y, seen from the block that starts at row `block`.
    const float* sourceRow(std::int64_t y, std::int64_t block)
    {
        if (y < block) return aboveRow(y);
        if (y >= end_) return below_.data() + (y - end_) * task_.rowSamples();
        return task_.from + y * task_.rowSamples();
    }

    void copySourceRow(std::int64_t y, float* to) const
    {
        const std::int64_t source = edgeIndex(y, task_.height, plan_.mode);
        if (source < 0)
            std::fill_n(to, task_.rowSamples(), 0.0f);
        else
            std::copy_n(task_.from + source * task_.rowSamples(), task_.rowSamples(), to);
    }

    const FilterTask& task_;
    const FilterPlan& plan_;
    std::int64_t start_, end_, radius_;
    FloatBuffer above_, below_;
};

void filter(const FilterTask& task, const FilterPlan& plan)
{
    // A band below the radius would keep more rows than it filters.
    const auto radius = static_cast<std::int64_t>(plan.halfY.size()) - 1;
    const std::int64_t most = std::max<std::int64_t>(task.height / std::max(radius, kBlockRows), 1);
    const bool small = task.height * task.rowSamples() < kBandCostThreshold;
    const std::int64_t workers = small ? 1 : std::min<std::int64_t>(platform::activeWorkers(), most);
    const std::int64_t chunk = (task.height + workers - 1) / workers;
    std::vector<FilterBand> bands;
    for (std::int64_t y = 0; y < task.height; y += chunk)
        bands.emplace_back(task, plan, y, std::min(task.height, y + chunk));
    const int count = static_cast<int>(bands.size());
    const auto band = [&](int i) -> FilterBand& { return bands[static_cast<std::size_t>(i)]; };
    platform::runConcurrently(count, [&](int i) { band(i).keepSurroundings(); });
    platform::runConcurrently(count, [&](int i) { band(i).run(); });
}

template <typename Image>
Image filtered(Image image, const FilterPlan& plan)
{
    if (image.data.empty() || (plan.halfY.size() == 1 && plan.halfX.size() == 1)) return image;
    FilterTask task{image.data.data(), nullptr, image.width, image.height, kChannels<Image>};
    if (image.data.isUnique()) {
        task.to = image.mutableData();
        filter(task, plan);
        return image;
    }
    Image out(image.width, image.height);
    task.to = out.mutableData();
    filter(task, plan);
    return out;
}

template <typename Image>
Image blurred(Image image, double sigma)
{
    if (!(sigma > 0.0) || image.data.empty()) return image;
    if (sigma <= kDirectBlurSigmaPx) return gaussianFilter(std::move(image), sigma, EdgeMode::nearest);
    const ReducedBlur plan = planReducedBlur(image.size(), sigma);
    Image reduced = pilResize(image, plan.small, Resampling::bilinear);
    reduced = gaussianFilter(std::move(reduced), plan.sigmaPx, EdgeMode::nearest);
    pilResizeInto(reduced, image, Resampling::bilinear);
    return image;
}

} // namespace

std::vector<double> gaussianKernel1D(double sigma, std::int64_t radius)
{
    std::vector<double> kernel;
    kernel.reserve(static_cast<std::size_t>(2 * radius + 1));
    double sum = 0.0;
    for (std::int64_t i = -radius; i <= radius; ++i) {
        const double x = static_cast<double>(i);
        kernel.push_back(std::exp(-0.5 * x * x / (sigma * sigma)));
        sum += kernel.back();
    }
    for (double& w : kernel) w /= sum;
    return kernel;
}

std::vector<double> gaussianHalfKernel(double sigma, double truncate)
{
    const auto radius = static_cast<std::int64_t>(sigma * truncate + 0.5);
    const std::vector<double> full = gaussianKernel1D(sigma, radius);
    return {full.begin() + radius, full.end()};
}

double kernelPower(const std::vector<double>& half)
{
    // From one end to the other: the order is part of every grain.
    double sum = 0.0;
    for (std::size_t j = half.size() - 1; j > 0; --j) sum += half[j] * half[j];
    for (const double w : half) sum += w * w;
    return sum;
}

std::int64_t reflectIndex(std::int64_t i, std::int64_t n)
{
    const std::int64_t j = (i % (2 * n) + 2 * n) % (2 * n);
    return j < n ? j : 2 * n - 1 - j;
}

Plane gaussianFilter(Plane plane, double sigma, EdgeMode mode, double truncate)
{
    const std::vector<double> half = axisKernel(sigma, truncate);
    return filtered(std::move(plane), {half, half, mode});
}

RGBImage gaussianFilter(RGBImage image, double sigma, EdgeMode mode, double truncate)
{
    const std::vector<double> half = axisKernel(sigma, truncate);
    return filtered(std::move(image), {half, half, mode});
}

Plane gaussianFilter1D(Plane plane, double sigma, FilterAxis axis, EdgeMode mode, double truncate)
{
    FilterPlan plan{.mode = mode};
    (axis == FilterAxis::y ? plan.halfY : plan.halfX) = axisKernel(sigma, truncate);
    return filtered(std::move(plane), plan);
}

Plane gaussianFilter2(Plane plane, double sigmaY, double sigmaX, EdgeMode mode)
{
    return filtered(std::move(plane), {axisKernel(sigmaY, 4.0), axisKernel(sigmaX, 4.0), mode});
}

RGBImage gaussianFilter2(RGBImage image, double sigmaY, double sigmaX, EdgeMode mode)
{
    return filtered(std::move(image), {axisKernel(sigmaY, 4.0), axisKernel(sigmaX, 4.0), mode});
}

Plane gaussianInside(const Plane& padded, double sigmaY, double sigmaX, FilterPad pad)
{
    const std::vector<double> halfY = axisKernel(sigmaY, 4.0), halfX = axisKernel(sigmaX, 4.0);
    const GaussHalfKernel kernelY{halfY}, kernelX{halfX};
    const std::int64_t reachX = kernelX.radius(), reachY = kernelY.radius();
    Plane out(padded.width - 2 * pad.x, padded.height - 2 * pad.y);
    const std::int64_t across = out.width + 2 * reachX, stride = gaussPadded(across);
    float* to = out.mutableData();
    parallelBands(out.height, across * (reachY + 1), [&](std::int64_t start, std::int64_t end) {
        FloatBuffer folded(static_cast<std::size_t>(kBlockRows * stride));
        std::vector<double> strip(gaussStripDoubles(kBlockRows, reachY));
        std::vector<double> line(static_cast<std::size_t>(stride + kGaussBlock));
        std::vector<const float*> rows;
        for (std::int64_t y = start; y < end; y += kBlockRows) {
            const std::int64_t count = std::min(kBlockRows, end - y);
            rows.clear();
            for (std::int64_t i = y - reachY; i < y + count + reachY; ++i)
                rows.push_back(padded.row(i + pad.y) + pad.x - reachX);
            gauss_columns({rows.data(), count, across, folded.mutableData(), stride, strip.data()}, kernelY);
            for (std::int64_t i = 0; i < count; ++i)
                gauss_row_inside(
                    {folded.data() + i * stride, out.width, 1, to + (y + i) * out.width, line.data()},
                    kernelX);
        }
    });
    return out;
}

ReducedBlur planReducedBlur(Size size, double sigmaPx)
{
    constexpr double kReducedSigmaPx = 6.0;
    constexpr double kWidestPictures = 64.0;
    constexpr std::int64_t kMinSidePx = 16;
    const double width = static_cast<double>(std::max<std::int64_t>(size.width, 1));
    const double sigma = std::min(sigmaPx, kWidestPictures * width);
    const auto side = [&](std::int64_t n) {
        return std::max(pyRound(static_cast<double>(n) / (sigma / kReducedSigmaPx)), kMinSidePx);
    };
    const Size small{side(size.width), side(size.height)};
    return {small, sigma * static_cast<double>(small.width) / width};
}

Plane blurChannel(Plane plane, double sigma)
{
    return blurred(std::move(plane), sigma);
}

RGBImage blur(RGBImage image, double sigma)
{
    return blurred(std::move(image), sigma);
}

} // namespace tamlo
