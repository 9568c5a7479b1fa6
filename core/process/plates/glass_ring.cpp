#include "core/process/plates/glass_ring.h"

#include "core/image/bands.h"
#include "core/image/fft_convolve.h"
#include "core/image/interpolation.h"
#include "core/process/plates/plate_passes.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <numbers>

namespace tamlo::Glass {
namespace {

constexpr double kPitchDiv = 16.0; // one block for each sixteenth of the glass
constexpr int kSamples = 20'000;
constexpr double kWidestTan = 4.0; // 8 t from the source, there and back

/// dC/dd read linearly at a radius; the samples lie at even angles, so that one is found without a search.
class RingDensity {
public:
    RingDensity(double tMm, double n)
        : tMm_(tMm),
          cumulative_(ringCumulative(tMm, n, kSamples)),
          slope_(gradient(cumulative_.share, cumulative_.radiusMm))
    {}

    double at(double radiusMm) const
    {
        const std::vector<double>& d = cumulative_.radiusMm;
        const double theta = std::atan(radiusMm / (2.0 * tMm_)),
                     step = std::atan(kWidestTan) / (kSamples - 1);
        const std::size_t i = std::min(static_cast<std::size_t>(theta / step), d.size() - 2);
        const double share = std::clamp((radiusMm - d[i]) / (d[i + 1] - d[i]), 0.0, 1.0);
        return slope_[i] + (slope_[i + 1] - slope_[i]) * share;
    }

private:
    double tMm_;
    RingCumulative cumulative_;
    std::vector<double> slope_;
};

/// The kernels of the last few plates: a render and its previews ask for the same again and again.
Plane cachedKernel(double tMm, double pxUm)
{
    struct Entry {
        double tMm, pxUm;
        Plane kernel;
    };
    constexpr std::size_t kKept = 4;
    static std::mutex mutex;
    static std::deque<Entry> entries;
    {
        const std::lock_guard lock(mutex);
        for (const Entry& entry : entries)
            if (entry.tMm == tMm && entry.pxUm == pxUm) return entry.kernel;
    }
    Plane kernel = ringKernel(tMm, pxUm, kIndex);
    const std::lock_guard lock(mutex);
    entries.push_front({tMm, pxUm, kernel});
    if (entries.size() > kKept) entries.pop_back();
    return kernel;
}

/// Means of whole blocks; what is left over at the right and at the bottom counts as dark.
Plane ring_block(Size size, std::int64_t block, const SourceRow& light)
{
    Plane out((size.width + block - 1) / block, (size.height + block - 1) / block);
    float* to = out.mutableData();
    const std::int64_t columns = size.width / block, width = out.width;
    const double perBlock = 1.0 / static_cast<double>(block * block);
    parallelBands(size.height / block, size.width * block, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> line(static_cast<std::size_t>(size.width));
        std::vector<double> sums(static_cast<std::size_t>(columns));
        for (std::int64_t y = start; y < end; ++y) {
            std::ranges::fill(sums, 0.0);
            for (std::int64_t k = 0; k < block; ++k) {
                light(y * block + k, line.data());
                const float* from = line.data();
                for (double& sum : sums)
                    for (std::int64_t i = 0; i < block; ++i) sum += *from++;
            }
            for (std::int64_t x = 0; x < columns; ++x)
                to[y * width + x] = static_cast<float>(sums[static_cast<std::size_t>(x)] * perBlock);
        }
    });
    return out;
}

} // namespace

double fresnel(double theta, double n)
{
    const double s = n * std::sin(theta);
    if (s >= 1.0) return 1.0;
    const double cosT = std::sqrt(1.0 - s * s), cosI = std::cos(theta);
    const double r1 = (n * cosT - cosI) / (n * cosT + cosI), r2 = (n * cosI - cosT) / (n * cosI + cosT);
    return (r1 * r1 + r2 * r2) / 2.0;
}

RingCumulative ringCumulative(double tMm, double n, int samples)
{
    RingCumulative out;
    const double step = std::atan(kWidestTan) / (samples - 1);
    double before = 0.0, sum = 0.0;
    for (int i = 0; i < samples; ++i) {
        const double theta = i * step;
        const double weight = std::cos(theta) * 2.0 * std::sin(theta) * fresnel(theta, n);
        if (i > 0) sum += (before + weight) / 2.0 * step;
        before = weight;
        out.radiusMm.push_back(2.0 * tMm * std::tan(theta));
        out.share.push_back(sum);
    }
    return out;
}

std::vector<double> gradient(const std::vector<double>& y, const std::vector<double>& x)
{
    const std::size_t n = y.size();
    std::vector<double> out(n);
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double a = x[i] - x[i - 1], b = x[i + 1] - x[i];
        out[i] = (a * a * y[i + 1] + (b * b - a * a) * y[i] - b * b * y[i - 1]) / (a * b * (a + b));
    }
    out.front() = (y[1] - y[0]) / (x[1] - x[0]);
    out.back() = (y[n - 1] - y[n - 2]) / (x[n - 1] - x[n - 2]);
    return out;
}

Plane ringKernel(double tMm, double pxUm, double n)
{
    const double px = pxUm / 1000.0;
    const auto reach = static_cast<std::int64_t>(std::ceil(kRingMaxT * tMm / px));
    const RingDensity density(tMm, n);
    Plane kernel(2 * reach + 1, 2 * reach + 1);
    float* to = kernel.mutableData();
    parallelBands(reach + 1, reach * 8, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t j = start; j < end; ++j)
            for (std::int64_t i = 0; i <= reach; ++i) {
                const double r = px * std::hypot(static_cast<double>(i), static_cast<double>(j));
                if (r > kRingMaxT * tMm) continue;
                const auto value = static_cast<float>(px * px * density.at(r) /
                                                      (2.0 * std::numbers::pi * std::max(r, px / 2.0)));
                for (const std::int64_t y : {reach - j, reach + j})
                    for (const std::int64_t x : {reach - i, reach + i}) to[y * kernel.width + x] = value;
            }
    });
    return kernel;
}

std::optional<Halo> Halo::of(Size size, double pxUm, double tMm, const SourceRow& light)
{
    const double px = std::max(pxUm, 1e-6);
    const double longSide = static_cast<double>(std::max(size.width, size.height));
    // A ring within half a pixel is not seen, nor one of a glass thicker than the picture is long.
    if (!(kRingMaxT * tMm * 1000.0 > px / 2.0) || size.width * size.height == 0) return std::nullopt;
    const double block = std::max(std::floor(tMm * 1000.0 / kPitchDiv / px), 1.0);
    if (block > longSide) return std::nullopt;
    Halo halo;
    halo.size_ = size;
    halo.block_ = static_cast<std::int64_t>(block);
    halo.reduced_ = FFTConvolve::same(ring_block(size, halo.block_, light), cachedKernel(tMm, px * block));
    for (std::int64_t x = 0; x < size.width; ++x) {
        const double last = static_cast<double>(halo.reduced_.width - 1);
        const double at = std::clamp((static_cast<double>(x) + 0.5) / block - 0.5, 0.0, last);
        halo.first_.push_back(static_cast<std::int32_t>(at));
        halo.fraction_.push_back(static_cast<float>(at - halo.first_.back()));
    }
    return halo;
}

void Halo::row(std::int64_t y, float* to) const
{
    if (block_ == 1) {
        std::copy_n(reduced_.row(y), size_.width, to);
        return;
    }
    const double last = static_cast<double>(reduced_.height - 1);
    const double at =
        std::clamp((static_cast<double>(y) + 0.5) / static_cast<double>(block_) - 0.5, 0.0, last);
    const auto first = static_cast<std::int64_t>(at);
    const float *a = reduced_.row(first), *b = reduced_.row(std::min(first + 1, reduced_.height - 1));
    const auto share = static_cast<float>(at - static_cast<double>(first));
    std::vector<float> nodes(static_cast<std::size_t>(reduced_.width) + 1);
    for (std::size_t x = 0; x + 1 < nodes.size(); ++x) nodes[x] = lerp(a[x], b[x], share);
    nodes.back() = nodes[nodes.size() - 2];
    grid_row({to, first_.size()}, nodes.data(), first_, fraction_);
}

} // namespace tamlo::Glass
