#include "core/process/plates/crystals.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/growth_random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tamlo::Plate {
namespace {

constexpr double kPatchMm = 11.0, kPatchAniso = 1.8, kPatchEdgeMm = 12.0;
constexpr double kPerMm2 = 0.9;
constexpr double kCrystalMm = 0.15;
constexpr double kMostAmount = 3.0;
constexpr double kMostCrystals = 1e6; // far beyond the largest plate
constexpr float kCap = 1.2f;          // density that crystals near
constexpr double kLeastBlurPx = 0.4;

/// The count at a uniform draw: normal from 8 on, by the inverse distribution below.
std::int64_t countAt(double u, double mean)
{
    if (mean < Grain::kPoissonNormalFrom)
        return static_cast<std::int64_t>(
            Grain::poissonByInversion(static_cast<float>(u), static_cast<float>(mean)));
    const double spread = std::sqrt(mean) * Grain::normalQuantile(static_cast<float>(u));
    return static_cast<std::int64_t>(std::max(mean + spread, 0.0));
}

/// The draws of all crystals, each list whole before the next.
struct Draws {
    std::vector<double> rows, columns, sizes, acceptance;
    std::vector<int> grains;
    std::vector<float> offsets; // 3 n down, then 3 n across

    Draws(std::size_t n, GrainRNG& rng)
    {
        constexpr std::array<int, 5> kGrains{1, 1, 1, 2, 3};
        const auto draw = [&](auto& list, std::size_t count, auto&& next) {
            list.reserve(count);
            for (std::size_t i = 0; i < count; ++i) list.push_back(next());
        };
        draw(rows, n, [&] { return rng.random(); });
        draw(columns, n, [&] { return rng.random(); });
        draw(grains, n, [&] { return kGrains[rng.nextUInt64() % kGrains.size()]; });
        draw(sizes, n, [&] { return std::clamp(std::exp(0.35 * rng.nextNormal()), 0.0, 3.0); });
        draw(acceptance, n, [&] { return rng.random(); });
        draw(offsets, 6 * n, [&] { return rng.nextNormal(); });
    }
};

std::int64_t pixelAt(double at, std::int64_t count)
{
    return static_cast<std::int64_t>(std::clamp(at, 0.0, static_cast<double>(count - 1)));
}

/// Lays the grains that reach rows first...end - 1 into `rows`, which stand zeroed; false when there are
/// none.
bool crystal_splat(const Crystals& crystals, const std::vector<double>& half, std::int64_t width,
                   std::int64_t first, std::int64_t end, std::vector<float>& rows)
{
    const auto reach = static_cast<std::int64_t>(half.size()) - 1;
    const auto before = [](const CrystalGrain& grain, std::int64_t y) { return grain.y < y; };
    auto at = std::lower_bound(crystals.grains.begin(), crystals.grains.end(), first - reach, before);
    bool any = false;
    for (; at != crystals.grains.end() && at->y < end + reach; ++at) {
        any = true;
        for (std::int64_t y = std::max(first, at->y - reach); y < std::min(end, at->y + reach + 1); ++y) {
            const double down = at->mass * half[static_cast<std::size_t>(std::abs(y - at->y))];
            float* row = rows.data() + (y - first) * width;
            const std::int64_t last = std::min(width, at->x + reach + 1);
            for (std::int64_t x = std::max<std::int64_t>(0, at->x - reach); x < last; ++x)
                row[x] += static_cast<float>(down * half[static_cast<std::size_t>(std::abs(x - at->x))]);
        }
    }
    return any;
}

} // namespace

CrystalGate::CrystalGate(const Extent& extent, const PlateDice& dice, Range range)
    : extent_(extent),
      range_(range),
      patches_(fieldPour(extent, kPatchMm, 1.0, {dice.corner, kPatchAniso}, {dice.seed, kCrystalLayer})),
      weight_(kPatchEdgeMm, extent.ppmm)
{}

float CrystalGate::at(std::int64_t x, std::int64_t y, const Plane& density, const Thickness& thickness) const
{
    const double span = std::max(range_.dmax - range_.dmin, 1e-6);
    const double thin = std::clamp(1.0 - (density.at(x, y) - range_.dmin) / span, 0.0, 1.0);
    const double grown = patches_.at(x, y) + 24.0 * (thickness.at(x, y) - 1.0) +
                         0.45 * weight_.at(extent_.edgePx(x, y)) - 0.75;
    return static_cast<float>(std::clamp(grown / 0.9, 0.0, 1.0) * thin * thin);
}

Crystals growCrystals(const Extent& extent, double amount, GrainRNG& rng, const CrystalGate& gate,
                      const Plane& density, const Thickness& thickness)
{
    const double mean = std::clamp(
        std::min(amount, kMostAmount) * kPerMm2 * extent.widthMm() * extent.heightMm(), 1e-9, kMostCrystals);
    const std::int64_t n = countAt(rng.random(), mean);
    Crystals crystals;
    if (n == 0) return crystals;
    const Draws draws(static_cast<std::size_t>(n), rng);
    const auto [width, height] = extent.size;
    const double r = kCrystalMm / 2.0 * extent.ppmm, rr = std::max(r, kLeastBlurPx);
    crystals.sigmaPx = r >= kLeastBlurPx ? r : 0.0;
    for (std::size_t i = 0; i < draws.rows.size(); ++i) {
        const double y = draws.rows[i] * static_cast<double>(height);
        const double x = draws.columns[i] * static_cast<double>(width);
        if (!(gate.at(pixelAt(x, width), pixelAt(y, height), density, thickness) > draws.acceptance[i]))
            continue;
        const int k = draws.grains[i];
        const double mass = rr * rr * std::numbers::pi * draws.sizes[i] / k;
        for (std::size_t j = 0; j < static_cast<std::size_t>(k); ++j) {
            const double dy = draws.offsets[3 * i + j], dx = draws.offsets[3 * (draws.rows.size() + i) + j];
            crystals.grains.push_back({static_cast<std::int32_t>(pixelAt(x + 0.9 * r * dx, width)),
                                       static_cast<std::int32_t>(pixelAt(y + 0.9 * r * dy, height)),
                                       static_cast<float>(mass)});
        }
    }
    std::stable_sort(crystals.grains.begin(), crystals.grains.end(),
                     [](const CrystalGrain& a, const CrystalGrain& b) { return a.y < b.y; });
    return crystals;
}

Plane applyCrystals(Plane density, const Crystals& crystals)
{
    if (crystals.grains.empty()) return density;
    constexpr std::int64_t kRows = 32;
    const std::vector<double> half =
        crystals.sigmaPx > 0.0 ? gaussianHalfKernel(crystals.sigmaPx) : std::vector<double>{1.0};
    float* to = density.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width * 2, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> rows;
        for (std::int64_t y = start; y < end; y += kRows) {
            const std::int64_t last = std::min(end, y + kRows);
            rows.assign(static_cast<std::size_t>((last - y) * width), 0.0f);
            if (!crystal_splat(crystals, half, width, y, last, rows)) continue;
            float* out = to + y * width;
            for (std::size_t i = 0; i < rows.size(); ++i) out[i] += rows[i] / (1.0f + rows[i] / kCap);
        }
    });
    return density;
}

} // namespace tamlo::Plate
