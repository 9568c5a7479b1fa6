#include "core/film/grain/growth_geometry.h"

#include "core/film/grain/classic_grain.h"
#include "core/image/gaussian.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace tamlo::Grain {

std::int64_t growthScale(double pxUm)
{
    return roundAway(std::clamp(pxUm / growthSiteUm, 1.0, 1e15));
}

GrowthLattice growthLattice(Size size, double formatLongUm)
{
    constexpr double kLeastPxUm = 1e-3;
    const double longPx = static_cast<double>(std::max<std::int64_t>({size.width, size.height, 1}));
    const double pxUm = std::max(formatLongUm / longPx, kLeastPxUm);
    const std::int64_t scale = growthScale(pxUm);
    return {pxUm, pxUm / static_cast<double>(scale), scale};
}

double growthSizeUm(const GrainParams& grain, bool colour)
{
    return std::clamp(grain.sizeUm.value_or(colour ? growthSizeColorUm : growthSizeBWUm), 0.0,
                      growthMaxSizeUm);
}

double growthCrystalUm(double sizeUm)
{
    return std::clamp(sizeUm * 0.5 / 14.0, 0.25, 0.9);
}

double growthClumpUm(double sizeUm, bool colour, double sizeMult)
{
    return std::max(sizeMult, 0.1) * (colour ? std::max(sizeUm, 6.0) : std::max(sizeUm * 0.5, 3.0));
}

double growthClumpSites(double clumpUm, double site)
{
    return std::clamp(clumpUm / site, 0.6, growthMaxSigmaSites);
}

double growthCloudSites(double sizeUm, double layerSizeScale, double sizeMult, double site)
{
    return std::min(std::max(sizeMult, 0.1) * sizeUm * growthCloudK * layerSizeScale / site,
                    growthMaxSigmaSites);
}

bool aggregateFits(double pxUm, double site, double clumpUm)
{
    return std::max(site * aggSiteRatio, clumpUm * aggClumpRatio) <= pxUm;
}

double aggClumpFactor(double pxUm, double sigUm)
{
    const double s = std::max(sigUm, 1e-6);
    const double t = pxUm / (2.0 * s);
    const double line = 2.0 * pxUm * s * std::sqrt(std::numbers::pi) * std::erf(t);
    const double a = (line + 4.0 * s * s * std::expm1(-t * t)) / (pxUm * pxUm);
    return std::pow(std::clamp(a, 0.0, 1.0), 2.0);
}

CloudFactors aggCloudFactors(std::int64_t scale, double cloudSites, double delta)
{
    std::vector<double> g{1.0};
    if (cloudSites > 0.05)
        g = gaussianKernel1D(cloudSites, static_cast<std::int64_t>(cloudSites * 4.0 + 0.5));

    // The box of `scale` ones folded over the kernel, by a running sum. A box wider than the kernel only adds
    // positions that see the whole of it.
    const auto taps = static_cast<std::int64_t>(g.size());
    std::vector<double> prefix(g.size() + 1, 0.0);
    for (std::size_t i = 0; i < g.size(); ++i) prefix[i + 1] = prefix[i] + g[i];
    const std::int64_t box = std::min(scale, taps);
    double squares = static_cast<double>(scale - box) * prefix.back() * prefix.back();
    for (std::int64_t end = 1; end < box + taps; ++end) {
        const auto to = static_cast<std::size_t>(std::min(end, taps));
        const auto from = static_cast<std::size_t>(std::max<std::int64_t>(end - box, 0));
        squares += std::pow(prefix[to] - prefix[from], 2.0);
    }
    CloudFactors factors;
    const double line = squares / static_cast<double>(scale);
    factors.h = std::min(line * line, 1.0);

    const double L = std::max(delta, 1e-9) * std::numbers::ln10;
    double absorbed = 0.0;
    for (const double gy : g)
        for (const double gx : g) absorbed -= std::expm1(-L * gy * gx) / L;
    factors.kappa = std::min(absorbed, 1.0);
    return factors;
}

std::array<float, 16> aggColorNodes(double cs, double kappa)
{
    std::array<float, 16> out{};
    for (std::size_t j = 0; j < 8; ++j) {
        out[j] = static_cast<float>(kappa * std::exp(cs * hermiteNodes[j] - 0.5 * cs * cs));
        out[j + 8] = static_cast<float>(hermiteWeights[j]);
    }
    return out;
}

std::optional<std::int64_t> aggregateLongPx(const FilmProfile& film, const RenderOptions& options,
                                            double formatLongUm)
{
    const GrainParams grain = Film::grainProfile(film, options);
    if (formatLongUm <= 0.0 || film.isInstant() || options.grainMult <= 1e-5) return std::nullopt;
    if (grain.amount && *grain.amount <= 1e-5) return std::nullopt;

    const double clumpUm =
        growthClumpUm(growthSizeUm(grain, !film.isBW()), !film.isBW(), options.grainSizeMult);
    const auto fits = [&](std::int64_t longPx) {
        const GrowthLattice lattice = growthLattice({longPx, 1}, formatLongUm);
        return aggregateFits(lattice.pxUm, lattice.site, clumpUm);
    };
    std::int64_t low = 64, high = 131'072; // low fits, high does not
    if (!fits(low)) return low;
    if (fits(high)) return high;
    while (high - low > 1) {
        const std::int64_t middle = (low + high) / 2;
        (fits(middle) ? low : high) = middle;
    }
    return low;
}

} // namespace tamlo::Grain
