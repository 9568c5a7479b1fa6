#include "core/process/plates/dry_plate.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/position_hash.h"
#include "core/process/plates/collodion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo::Glass {
namespace {

constexpr double kMostMm = 1e4;
constexpr double kNodesPerMm = 4.0;
constexpr double kMostWaveMm = 250.0; // longer than a plate: hardly a wave any more
constexpr double kFrillsBelow = 0.6;
constexpr double kRippleMm = 0.35;
constexpr double kLeastRimMm = 0.001;

/// Noise along a side at each of its pixels, of unit deviation: nodes in millimetres, so that no pixel count
/// moves it.
std::vector<double> lineNoise(std::int64_t pixels, double ppmm, double waveMm, std::int32_t line,
                              std::uint32_t seed)
{
    const std::vector<double> half = gaussianHalfKernel(std::max(waveMm * kNodesPerMm, 1e-3));
    const auto reach = static_cast<std::int64_t>(half.size()) - 1;
    const auto nodes =
        static_cast<std::int64_t>(std::ceil(static_cast<double>(pixels) / ppmm * kNodesPerMm)) + 2;
    std::vector<double> raw(static_cast<std::size_t>(nodes + 2 * reach));
    for (std::size_t i = 0; i < raw.size(); ++i)
        raw[i] = gaussNoise(static_cast<std::int32_t>(static_cast<std::int64_t>(i) - reach), line, seed,
                            Plate::kRimLayer);
    const double scale = 1.0 / std::sqrt(kernelPower(half));
    std::vector<double> smooth(static_cast<std::size_t>(nodes));
    for (std::size_t i = 0; i < smooth.size(); ++i) {
        const double* at = raw.data() + i + reach;
        double sum = half[0] * at[0];
        for (std::int64_t k = 1; k <= reach; ++k) sum += half[static_cast<std::size_t>(k)] * (at[-k] + at[k]);
        smooth[i] = sum * scale;
    }
    std::vector<double> out(static_cast<std::size_t>(pixels));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double at = (static_cast<double>(i) + 0.5) / ppmm * kNodesPerMm;
        const std::size_t first = std::min(static_cast<std::size_t>(at), smooth.size() - 2);
        out[i] = smooth[first] + (smooth[first + 1] - smooth[first]) * (at - static_cast<double>(first));
    }
    return out;
}

} // namespace

Coat::Coat(const Plate::Extent& extent, const DryPlateParams& params, double amount, GrainRNG& rng)
    : extent_(extent)
{
    using Plate::numberOf;
    const auto seed = static_cast<std::uint32_t>(rng.nextUInt64());
    const double rimMm = (0.25 + 0.75 * amount) * numberOf(params.edgeMm, 3.0, 0.0, kMostMm);
    const double frill = numberOf(params.frill, 0.5, 0.0, 100.0);
    const double frillMm = amount * numberOf(params.frillMm, 1.2, 0.0, kMostMm) * frill;
    const double waveMm = numberOf(params.waveMm, 6.0, 0.0, kMostWaveMm);
    gain_ = amount * numberOf(params.edgeGain, 0.12, -100.0, 100.0);
    fog_ = numberOf(params.edgeFog, 0.35, -100.0, 100.0);
    ripple_ = 0.25 * std::clamp(kRippleMm * extent.ppmm / 2.0 - 1.0, 0.0, 1.0); // none finer than two pixels
    for (std::int32_t i = 0; i < 4; ++i) {
        Side& side = sides_[static_cast<std::size_t>(i)];
        const bool frills = rng.random() < kFrillsBelow && frill > 0.0;
        const std::int64_t pixels = i < 2 ? extent.size.width : extent.size.height;
        for (const double n : lineNoise(pixels, extent.ppmm, waveMm, 2 * i, seed))
            side.rimMm.push_back(static_cast<float>((1.0 + 0.3 * n) * rimMm));
        side.reachMm = 2.0 * std::max<double>(*std::ranges::max_element(side.rimMm), kLeastRimMm);
        if (!frills) continue;
        for (const double n : lineNoise(pixels, extent.ppmm, waveMm, 2 * i + 1, seed))
            side.frillMm.push_back(static_cast<float>(std::max((0.6 + 0.4 * n) * frillMm, 0.0)));
        side.reachMm = std::max<double>(side.reachMm, *std::ranges::max_element(side.frillMm));
    }
}

std::array<bool, 4> Coat::frilled() const
{
    std::array<bool, 4> out{};
    for (std::size_t i = 0; i < 4; ++i) out[i] = !sides_[i].frillMm.empty();
    return out;
}

void Coat::thicken(float& thick, const Side& side, std::size_t along, double distMm) const
{
    const double rim = side.rimMm[along];
    const double q = std::clamp(1.0 - (distMm - rim) / std::max(rim, kLeastRimMm), 0.0, 1.0);
    thick += static_cast<float>(gain_ * q * q);
    if (side.frillMm.empty() || !(distMm < side.frillMm[along])) return;
    thick *= static_cast<float>(0.75 + ripple_ * std::cos(2.0 * std::numbers::pi * distMm / kRippleMm));
}

float Coat::thickAt(std::int64_t x, std::int64_t y) const
{
    const auto mm = [&](std::int64_t px) { return (static_cast<double>(px) + 0.5) / extent_.ppmm; };
    const std::array<double, 4> dist{mm(y), mm(extent_.size.height - 1 - y), mm(x),
                                     mm(extent_.size.width - 1 - x)};
    float thick = 1.0f;
    for (std::size_t i = 0; i < 4; ++i)
        if (dist[i] < sides_[i].reachMm)
            thicken(thick, sides_[i], static_cast<std::size_t>(i < 2 ? x : y), dist[i]);
    return std::max(thick, 0.0f);
}

template <typename Use>
Plane Coat::eachThick(Plane plane, Use&& use) const
{
    const auto [width, height] = plane.size();
    const auto pixels = [&](const Side& side, std::int64_t most) {
        return static_cast<std::int64_t>(
            std::min(std::ceil(side.reachMm * extent_.ppmm), static_cast<double>(most)));
    };
    const std::int64_t top = pixels(sides_[0], height), bottom = height - pixels(sides_[1], height);
    const std::int64_t left = pixels(sides_[2], width), right = width - pixels(sides_[3], width);
    float* to = plane.mutableData();
    parallelBands(height, width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const bool inside = y >= top && y < bottom;
            for (std::int64_t x = 0; x < width; ++x) {
                if (inside && x == left && right > left) x = right;
                if (x < width) use(to[y * plane.width + x], thickAt(x, y));
            }
        }
    });
    return plane;
}

Plane Coat::onLight(Plane light) const
{
    return eachThick(std::move(light), [](float& value, float thick) { value *= thick; });
}

Plane Coat::onDensity(Plane density) const
{
    const auto fog = static_cast<float>(fog_);
    return eachThick(std::move(density), [fog](float& value, float thick) { value += (thick - 1.0f) * fog; });
}

} // namespace tamlo::Glass
