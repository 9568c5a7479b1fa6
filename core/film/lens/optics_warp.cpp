// The effects that take light from another place of the frame: distortion and lateral colour. The frame is
// resampled in place: output rows wait in blocks until no later row reads the place they go to.
#include "core/film/lens/optics.h"
#include "core/film/lens/optics_passes.h"
#include "core/image/bands.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kBlockRows = 64; // 5 MB of a 24-megapixel frame, so that it comes back from the cache
constexpr double kMaxTerm = 1e3;        // keeps any source within the range of 32-bit integers
constexpr double kMaxCa = 0.9;          // at 1 the blue image would shrink to a point

struct Warp {
    /// The lowest source row that output row y reads; may lie outside the frame.
    std::function<double(std::int64_t y)> lowestSource;
    std::function<void(const RGBImage& from, std::int64_t y, float* to)> row;
};

/// For each block the lowest row that it or a later one reads.
std::vector<std::int64_t> rowsStillRead(std::int64_t height, const Warp& warp)
{
    const std::int64_t blocks = (height + kBlockRows - 1) / kBlockRows;
    std::vector<std::int64_t> read(static_cast<std::size_t>(blocks + 1), height);
    for (std::int64_t y = height - 1; y >= 0; --y) {
        const auto block = static_cast<std::size_t>(y / kBlockRows);
        const double lowest = std::floor(warp.lowestSource(y)) - 1.0; // the pass rounds to 32-bit floats
        const auto row = static_cast<std::int64_t>(std::clamp(lowest, 0.0, static_cast<double>(height)));
        read[block] = std::min({read[block], read[block + 1], row});
    }
    return read;
}

struct WaitingRows {
    std::int64_t start, end;
    std::vector<float> rows;
};

RGBImage warped(RGBImage image, const Warp& warp)
{
    const std::vector<std::int64_t> read = rowsStillRead(image.height, warp);
    const std::int64_t samples = image.width * 3;
    float* pixels = image.mutableData();
    std::deque<WaitingRows> waiting;
    std::vector<std::vector<float>> spare;
    for (std::int64_t start = 0; start < image.height; start += kBlockRows) {
        WaitingRows block{start, std::min(start + kBlockRows, image.height), {}};
        if (!spare.empty()) {
            block.rows = std::move(spare.back());
            spare.pop_back();
        }
        block.rows.resize(static_cast<std::size_t>(kBlockRows * samples));
        parallelBands(block.end - start, samples, [&](std::int64_t a, std::int64_t b) {
            for (std::int64_t i = a; i < b; ++i) warp.row(image, start + i, block.rows.data() + i * samples);
        });
        waiting.push_back(std::move(block));
        const std::int64_t free = read[static_cast<std::size_t>(start / kBlockRows + 1)];
        for (; !waiting.empty() && waiting.front().end <= free; waiting.pop_front()) {
            WaitingRows& done = waiting.front();
            parallelBands(done.end - done.start, samples, [&](std::int64_t a, std::int64_t b) {
                std::copy_n(done.rows.data() + a * samples, (b - a) * samples,
                            pixels + (done.start + a) * samples);
            });
            spare.push_back(std::move(done.rows));
        }
    }
    return image;
}

Vec3d centreAndNorm(Size size)
{
    const double cx = 0.5 * static_cast<double>(size.width - 1);
    const double cy = 0.5 * static_cast<double>(size.height - 1);
    return {cx, cy, std::max(std::hypot(cx, cy), 0.5)};
}

/// Lowest value of y + dy (k3 r² + k5 r⁴) along a row: r² runs over an interval in which the polynomial has
/// its extremes at the ends or at its vertex.
double lowestDistortedRow(std::int64_t y, Size size, double k3, double k5)
{
    const auto [cx, cy, norm] = centreAndNorm(size);
    const double dy = static_cast<double>(y) - cy;
    const double least = dy * dy / (norm * norm), most = (dy * dy + cx * cx) / (norm * norm);
    double lowest = 0.0;
    const auto meet = [&](double r2) { lowest = std::min(lowest, dy * (k3 * r2 + k5 * r2 * r2)); };
    meet(least);
    meet(most);
    if (k5 != 0.0) meet(std::clamp(-0.5 * k3 / k5, least, most));
    return static_cast<double>(y) + lowest;
}

/// Where a channel that is scaled by f about the centre takes its samples along one axis.
std::vector<ScaledTap> scaledTaps(std::int64_t n, double f)
{
    const double centre = 0.5 * static_cast<double>(n - 1);
    std::vector<ScaledTap> taps;
    taps.reserve(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i) {
        const double at = centre + (static_cast<double>(i) - centre) / f;
        const double held = std::clamp(at, 0.0, static_cast<double>(n - 1));
        const auto first = static_cast<std::int64_t>(held);
        taps.push_back({static_cast<std::int32_t>(first),
                        static_cast<std::int32_t>(std::min(first + 1, n - 1)),
                        static_cast<float>(held - static_cast<double>(first))});
    }
    return taps;
}

} // namespace

RGBImage Optics::distort(RGBImage image, double k3, double k5)
{
    if (image.pixelCount() == 0 || !(std::abs(k3) > 1e-5 || std::abs(k5) > 1e-5)) return image;
    k3 = std::clamp(k3, -kMaxTerm, kMaxTerm);
    k5 = std::clamp(k5, -kMaxTerm, kMaxTerm);
    const Size size = image.size();
    const auto [cx, cy, norm] = centreAndNorm(size);
    const DistortPlan plan{static_cast<float>(cx), static_cast<float>(cy),
                           static_cast<float>(1.0 / (norm * norm)), static_cast<float>(k3),
                           static_cast<float>(k5)};
    return warped(std::move(image),
                  {[&](std::int64_t y) { return lowestDistortedRow(y, size, k3, k5); },
                   [&](const RGBImage& from, std::int64_t y, float* to) { distort_row(from, y, plan, to); }});
}

RGBImage Optics::lateralColour(RGBImage image, double ca)
{
    if (image.pixelCount() == 0 || !(ca > 0.0)) return image;
    const double held = std::min(ca, kMaxCa);
    LateralPlan plan;
    plan.redX = scaledTaps(image.width, 1.0 + held);
    plan.redY = scaledTaps(image.height, 1.0 + held);
    plan.blueX = scaledTaps(image.width, 1.0 - held);
    plan.blueY = scaledTaps(image.height, 1.0 - held);
    return warped(std::move(image),
                  {[&](std::int64_t y) {
                       const auto i = static_cast<std::size_t>(y);
                       return static_cast<double>(std::min(
                           {std::int64_t{plan.redY[i].first}, std::int64_t{plan.blueY[i].first}, y}));
                   },
                   [&](const RGBImage& from, std::int64_t y, float* to) { ca_row(from, y, plan, to); }});
}

} // namespace tamlo
