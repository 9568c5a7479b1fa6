#include "core/image/resample.h"

#include "core/image/bands.h"
#include "core/image/resample_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace tamlo {
namespace {

constexpr std::int64_t kResampleCostThreshold = 0x40000;

double sinc(double x)
{
    if (x == 0.0) return 1.0;
    const double t = x * std::numbers::pi;
    return std::sin(t) / t;
}

double bicubicWeight(double v)
{
    const double x = std::abs(v); // Keys's cubic with a = -0.5
    if (x < 1.0) return (1.5 * x - 2.5) * x * x + 1.0;
    if (x < 2.0) return -0.5 * (((x - 5.0) * x + 8.0) * x - 4.0);
    return 0.0;
}

double filterWeight(Resampling filter, double x)
{
    switch (filter) {
    case Resampling::bilinear:
        return std::max(1.0 - std::abs(x), 0.0);
    case Resampling::lanczos:
        return x >= -3.0 && x < 3.0 ? sinc(x) * sinc(x / 3.0) : 0.0;
    case Resampling::box:
        return x > -0.5 && x <= 0.5 ? 1.0 : 0.0;
    case Resampling::bicubic:
        break;
    }
    return bicubicWeight(x);
}

/// One resize: samples in and out, and the tables of the axes that change.
struct ResizeTask {
    const float* from;
    Size in;
    float* to;
    Size out;
    std::int64_t channels;
    std::optional<ResampleCoeffs> x, y;
};

/// The input rows at their new width, made as the columns pass asks for them and held in a ring, so that no
/// intermediate picture is needed.
class RowSource {
public:
    RowSource(const ResizeTask& task, std::int64_t first, std::int64_t end)
        : task_(task), next_(first), end_(end), outSamples_(task.out.width * task.channels)
    {
        if (!task.x) return;
        const std::int64_t most = task.y ? *std::max_element(task.y->n.begin(), task.y->n.end()) : 1;
        slots_ = most + kResampleLanes;
        stride_ = outSamples_ + kResampleLanes;
        ring_ = FloatBuffer(static_cast<std::size_t>(slots_ * stride_));
        padded_ = FloatBuffer(static_cast<std::size_t>((task.in.width + 1) * kResampleLanes));
        if (task.channels == 1)
            lanes_ = FloatBuffer(static_cast<std::size_t>(task.out.width * kResampleLanes));
    }

    /// Input row y at the new width. Rows are asked for in rising order; the last `taps` stay valid.
    const float* row(std::int64_t y)
    {
        if (!task_.x) return sourceRow(y);
        while (next_ <= y) makeRows();
        return slot(y);
    }

private:
    const float* sourceRow(std::int64_t y) const { return task_.from + y * task_.in.width * task_.channels; }
    float* slot(std::int64_t y) { return ring_.mutableData() + y % slots_ * stride_; }

    void makeRows() { task_.channels == 3 ? makeImageRow() : makePlaneRows(); }

    void makeImageRow()
    {
        const float* from = sourceRow(next_);
        // The pass reads one sample past each pixel; after the last row there is none.
        if (next_ == task_.in.height - 1) {
            std::copy_n(from, task_.in.width * 3, padded_.mutableData());
            from = padded_.data();
        }
        resample_row({from, 3, slot(next_)}, *task_.x);
        ++next_;
    }

    /// Four rows of a plane go through the pass together, one in each lane.
    void makePlaneRows()
    {
        const std::int64_t count = std::min(kResampleLanes, end_ - next_);
        float* packed = padded_.mutableData();
        for (std::int64_t lane = 0; lane < count; ++lane) {
            const float* from = sourceRow(next_ + lane);
            for (std::int64_t i = 0; i < task_.in.width; ++i) packed[i * kResampleLanes + lane] = from[i];
        }
        resample_row({packed, kResampleLanes, lanes_.mutableData()}, *task_.x);
        for (std::int64_t lane = 0; lane < count; ++lane) {
            float* to = slot(next_ + lane);
            for (std::int64_t i = 0; i < task_.out.width; ++i)
                to[i] = lanes_.data()[i * kResampleLanes + lane];
        }
        next_ += count;
    }

    const ResizeTask& task_;
    std::int64_t next_, end_;
    std::int64_t outSamples_, slots_ = 0, stride_ = 0;
    FloatBuffer ring_, padded_, lanes_;
};

void resizeBand(const ResizeTask& task, std::int64_t start, std::int64_t end)
{
    const std::int64_t samples = task.out.width * task.channels;
    if (!task.y) {
        RowSource source(task, start, end);
        for (std::int64_t y = start; y < end; ++y) std::copy_n(source.row(y), samples, task.to + y * samples);
        return;
    }
    const ResampleCoeffs& table = *task.y;
    const auto last = static_cast<std::size_t>(end - 1);
    RowSource source(task, table.xmin[static_cast<std::size_t>(start)], table.xmin[last] + table.n[last]);
    std::vector<const float*> rows;
    for (std::int64_t y = start; y < end; ++y) {
        const auto i = static_cast<std::size_t>(y);
        rows.clear();
        for (std::int64_t j = 0; j < table.n[i]; ++j) rows.push_back(source.row(table.xmin[i] + j));
        resample_column(
            {rows.data(), table.k.data() + y * table.ksize, table.n[i], samples, task.to + y * samples});
    }
}

template <typename Image>
void resize(const Image& image, Image& target, std::int64_t channels, Resampling filter)
{
    ResizeTask task{image.data.data(), image.size(), target.mutableData(), target.size(), channels, {}, {}};
    if (task.in.width != task.out.width) task.x.emplace(task.in.width, task.out.width, filter);
    if (task.in.height != task.out.height) task.y.emplace(task.in.height, task.out.height, filter);
    parallelBands(
        task.out.height, task.out.width * channels,
        [&](std::int64_t start, std::int64_t end) { resizeBand(task, start, end); }, kResampleCostThreshold);
}

template <typename Image>
void resizeInto(const Image& image, Image& target, std::int64_t channels, Resampling filter)
{
    if (image.size() == target.size()) {
        target = image;
        return;
    }
    if (!target.data.isUnique()) target = Image(target.width, target.height);
    resize(image, target, channels, filter);
}

} // namespace

double resamplingSupport(Resampling filter)
{
    switch (filter) {
    case Resampling::bilinear:
        return 1.0;
    case Resampling::lanczos:
        return 3.0;
    case Resampling::box:
        return 0.5;
    case Resampling::bicubic:
        break;
    }
    return 2.0;
}

ResampleCoeffs::ResampleCoeffs(std::int64_t inSize, std::int64_t outSize, Resampling filter)
    : ResampleCoeffs(inSize, outSize, filter, 0, outSize)
{}

ResampleCoeffs::ResampleCoeffs(std::int64_t inSize, std::int64_t outSize, Resampling filter,
                               std::int64_t first, std::int64_t count)
{
    const double scale = static_cast<double>(inSize) / static_cast<double>(outSize);
    const double filterscale = std::max(scale, 1.0);
    const double support = resamplingSupport(filter) * filterscale;
    const double ss = 1.0 / filterscale;
    ksize = 2 * static_cast<std::int64_t>(std::ceil(support)) + 1;
    k.resize(static_cast<std::size_t>(ksize * count));
    for (std::int64_t i = 0; i < count; ++i) {
        const double center = (static_cast<double>(first + i) + 0.5) * scale;
        const auto from = std::max<std::int64_t>(static_cast<std::int64_t>(center - support + 0.5), 0);
        const auto to = std::min(static_cast<std::int64_t>(center + support + 0.5), inSize);
        double* w = k.data() + i * ksize;
        double sum = 0.0;
        for (std::int64_t j = 0; j < to - from; ++j) {
            w[j] = filterWeight(filter, (static_cast<double>(from + j) - center + 0.5) * ss);
            sum += w[j];
        }
        if (sum != 0.0)
            for (std::int64_t j = 0; j < to - from; ++j) w[j] /= sum;
        xmin.push_back(from);
        n.push_back(to - from);
    }
}

Plane pilResize(const Plane& plane, std::int64_t width, std::int64_t height, Resampling filter)
{
    if (plane.width == width && plane.height == height) return plane;
    Plane out(width, height);
    resize(plane, out, 1, filter);
    return out;
}

Plane pilResize(const Plane& plane, Size size, Resampling filter)
{
    return pilResize(plane, size.width, size.height, filter);
}

RGBImage pilResize(const RGBImage& image, std::int64_t width, std::int64_t height, Resampling filter)
{
    if (image.width == width && image.height == height) return image;
    RGBImage out(width, height);
    resize(image, out, 3, filter);
    return out;
}

RGBImage pilResize(const RGBImage& image, Size size, Resampling filter)
{
    return pilResize(image, size.width, size.height, filter);
}

void pilResizeInto(const Plane& plane, Plane& target, Resampling filter)
{
    resizeInto(plane, target, 1, filter);
}

void pilResizeInto(const RGBImage& image, RGBImage& target, Resampling filter)
{
    resizeInto(image, target, 3, filter);
}

} // namespace tamlo
