#include "core/film/filters/ray_kernel.h"

#include "core/image/bands.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <mutex>
#include <numbers>
#include <string>
#include <vector>

namespace tamlo {
namespace {

/// One line of the star.
struct RayLine {
    double si, co;
    double perLength; // 1 / (length × tau)
    double perWidth;  // 1 / (2 sigma²)
    double length;
    double reach; // across the line; beyond it the light is below the smallest float
};

/// Adds a line's light to row dy of the kernel, whose centre is at `centre`.
void addLine(double* row, std::int64_t radius, std::int64_t dy, const RayLine& line)
{
    const double y = static_cast<double>(dy);
    double from = static_cast<double>(-radius), to = static_cast<double>(radius);
    if (std::abs(line.si) > 1e-9) {
        const double a = (line.co * y - line.reach) / line.si, b = (line.co * y + line.reach) / line.si;
        from = std::max(from, std::floor(std::min(a, b)));
        to = std::min(to, std::ceil(std::max(a, b)));
    } else if (std::abs(line.co * y) > line.reach + 1.0) {
        return;
    }
    for (auto dx = static_cast<std::int64_t>(from); dx <= static_cast<std::int64_t>(to); ++dx) {
        const double x = static_cast<double>(dx);
        const double along = std::abs(line.si * y + line.co * x);
        if (along > line.length) continue;
        const double across = line.co * y - line.si * x;
        row[dx + radius] += std::exp(-along * line.perLength - across * across * line.perWidth);
    }
}

/// Full precision: two shapes that differ anywhere are two kernels.
std::string cacheKey(const Filters::RayShape& shape)
{
    char text[160];
    std::snprintf(text, sizeof text, "%.17g|%lld|%.17g|%.17g|%.17g", shape.length,
                  static_cast<long long>(shape.families), shape.angleDeg, shape.tau, shape.sigma);
    return text;
}

struct KernelCache {
    std::mutex lock;
    std::map<std::string, std::shared_ptr<const Plane>> kernels;
    std::size_t bytes = 0;
};

KernelCache& cache()
{
    static KernelCache kept;
    return kept;
}

} // namespace

Plane Filters::rayKernel(const RayShape& shape)
{
    const std::int64_t radius = std::max<std::int64_t>(pyRound(shape.length), 1);
    const std::int64_t side = 2 * radius + 1;
    const std::int64_t families = std::max<std::int64_t>(shape.families, 1);
    RayLine line{};
    line.length = shape.length;
    line.perLength = 1.0 / std::max(shape.length * shape.tau, 0.001);
    line.perWidth = 1.0 / (2.0 * shape.sigma * shape.sigma);
    line.reach = shape.sigma * 15.0; // e^-112
    std::vector<RayLine> lines;
    for (std::int64_t k = 0; k < families; ++k) {
        const double degrees =
            shape.angleDeg + static_cast<double>(k) * 180.0 / static_cast<double>(families);
        const double theta = degrees * std::numbers::pi / 180.0;
        line.si = std::sin(theta);
        line.co = std::cos(theta);
        lines.push_back(line);
    }

    std::vector<double> cells(static_cast<std::size_t>(side * side));
    parallelBands(side, side, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (const RayLine& each : lines) addLine(cells.data() + y * side, radius, y - radius, each);
    });
    double sum = 0.0;
    for (const double v : cells) sum += v;
    const double scale = sum > 0.0 ? 1.0 / sum : 1.0;
    Plane kernel(side, side);
    std::transform(cells.begin(), cells.end(), kernel.mutableData(),
                   [&](double v) { return static_cast<float>(v * scale); });
    return kernel;
}

std::shared_ptr<const Plane> Filters::cachedRayKernel(const RayShape& shape)
{
    KernelCache& kept = cache();
    const std::string key = cacheKey(shape);
    {
        const std::lock_guard guard(kept.lock);
        if (const auto found = kept.kernels.find(key); found != kept.kernels.end()) return found->second;
    }
    auto kernel = std::make_shared<const Plane>(rayKernel(shape));
    const std::size_t bytes = kernel->data.size() * sizeof(float);
    if (bytes > kKeptRayKernelBytes) return kernel;
    const std::lock_guard guard(kept.lock);
    if (const auto found = kept.kernels.find(key); found != kept.kernels.end()) return found->second;
    if (kept.kernels.size() >= kKeptRayKernels || kept.bytes + bytes > kKeptRayKernelBytes) {
        kept.kernels.clear();
        kept.bytes = 0;
    }
    kept.kernels.emplace(key, kernel);
    kept.bytes += bytes;
    return kernel;
}

std::size_t Filters::keptRayKernels()
{
    KernelCache& kept = cache();
    const std::lock_guard guard(kept.lock);
    return kept.kernels.size();
}

} // namespace tamlo
