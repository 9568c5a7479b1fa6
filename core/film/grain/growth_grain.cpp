#include "core/film/grain/growth_grain.h"

#include "core/film/grain/growth_calibration.h"
#include "core/image/bands.h"
#include "core/image/gaussian.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Grain {
namespace {

/// Layers of a colour film take seeds of their own from here on.
constexpr std::uint32_t kFirstLayerSeed = 40;
constexpr double kMinAmount = 1e-5;

float spanOf(double dmin, double dmax)
{
    return static_cast<float>(std::max(dmax - dmin, 1e-6));
}

GrowthDensityParams planDensity(double dmin, double dmax)
{
    constexpr double kLeastLight = 1e-30;
    return {static_cast<float>(dmin), static_cast<float>(std::max(std::pow(10.0, dmin - dmax), kLeastLight))};
}

/// Which path a frame takes.
bool takesAggregate(const GrowthLattice& lattice, double clumpUm, Size size, GrowthZone zone)
{
    if (zone == GrowthZone::aggregate) return true;
    if (zone == GrowthZone::automatic && aggregateFits(lattice.pxUm, lattice.site, clumpUm)) return true;
    const auto longSide = static_cast<double>(std::max(size.width, size.height));
    return longSide * static_cast<double>(lattice.scale) > growthMaxLatticeSites;
}

/// The optical spread of the reading.
Plane spread(Plane light, double pxUm)
{
    const double sigmaPx = growthPsfUm / pxUm;
    return sigmaPx > 0.3 ? gaussianFilter(std::move(light), sigmaPx, EdgeMode::reflect) : light;
}

/// pass(run, density row, light row) over the rows of a channel; both rows are padded.
template <typename Pass>
void aggregateTransmission(const GrowthChannel& density, Plane& light, const Pass& pass)
{
    const Size size = density.size;
    const std::int64_t padded = growthPadded(size.width);
    std::vector<std::uint32_t> columnHash;
    for (std::int64_t x = 0; x < padded; ++x)
        columnHash.push_back(static_cast<std::uint32_t>(x) * kGrowthColumnPrime);
    float* out = light.mutableData();
    parallelBands(size.height, size.width, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> from(static_cast<std::size_t>(padded)), to(from.size());
        for (std::int64_t y = start; y < end; ++y) {
            const float* row = density.first + y * size.width * density.stride;
            for (std::int64_t x = 0; x < size.width; ++x)
                from[static_cast<std::size_t>(x)] = row[x * density.stride];
            pass({columnHash.data(), static_cast<std::int32_t>(y), padded}, from.data(), to.data());
            std::copy_n(to.data(), size.width, out + y * size.width);
        }
    });
}

/// Light to density in every stride-th float.
void writeDensity(const Plane& light, const GrowthDensityParams& params, float* out, std::int64_t stride)
{
    const std::int64_t width = light.width;
    parallelBands(light.height, width, [&](std::int64_t start, std::int64_t end) {
        growth_density(params, {light.row(start), static_cast<std::size_t>((end - start) * width)},
                       out + start * width * stride, stride);
    });
}

/// A silver frame, ready for either path.
struct SilverPlan {
    GrowthLattice lattice;
    GrowthSetup setup;
    double k = 0.0, q = 0.0;
    GrowthMuParams mu{};
};

SilverPlan planSilver(Size size, double dmin, double dmax, double amount, const GrowthFrame& frame)
{
    SilverPlan plan;
    plan.lattice = growthLattice(size, frame.formatLongUm);
    const double site = plan.lattice.site, sizeUm = growthSizeUm(frame.grain, false);
    plan.setup.site = site;
    plan.setup.crystalUm = growthCrystalUm(sizeUm);
    plan.setup.clumpUm = growthClumpUm(sizeUm, false, frame.sizeMult);
    plan.setup.clumpSigma = growthClumpSigma(amount, sizeUm, site, dmin, dmax);
    plan.setup.seed = frame.seed;
    plan.k = std::min(std::pow(plan.setup.crystalUm / site, 2.0), 1.0);
    plan.q = 1.0 / -std::expm1(-plan.k);
    plan.mu = {static_cast<float>(dmin), spanOf(dmin, dmax)};
    return plan;
}

GrowthLatticePlan planSilverFull(const SilverPlan& plan)
{
    GrowthLatticePlan full;
    full.scale = plan.lattice.scale;
    planClumps(full, growthClumpSites(plan.setup.clumpUm, plan.lattice.site));
    full.layer = GrowthSilverParams{plan.mu, plan.setup.seed, static_cast<float>(plan.q),
                                    static_cast<float>(plan.k), plan.setup.clumpSigma};
    return full;
}

GrowthAggBWParams planSilverAggregate(const SilverPlan& plan)
{
    const double sitesPerSide = plan.lattice.pxUm / plan.lattice.site, cs = plan.setup.clumpSigma;
    GrowthAggBWParams params{plan.mu,
                             plan.setup.seed,
                             static_cast<float>(plan.q),
                             static_cast<float>(-std::expm1(-plan.k)),
                             static_cast<float>(-std::expm1(-2.0 * plan.k)),
                             static_cast<float>(1.0 / (sitesPerSide * sitesPerSide)),
                             static_cast<float>(aggClumpFactor(plan.lattice.pxUm, plan.setup.clumpUm)),
                             {},
                             {}};
    for (std::size_t j = 0; j < params.mods.size(); ++j) {
        params.mods[j] = static_cast<float>(std::exp(cs * hermiteNodes[j] - 0.5 * cs * cs));
        params.weights[j] = static_cast<float>(hermiteWeights[j]);
    }
    return params;
}

/// Sigma in density of an aggregate pixel at net density 1.
double sigmaAtCalibration(const GrowthAggBWParams& p)
{
    const double lam = static_cast<double>(p.q) * static_cast<double>(ln10f + growthFogMu);
    double m1 = 0.0, m1sq = 0.0, m2s = 0.0;
    for (std::size_t j = 0; j < p.mods.size(); ++j) {
        const double e1 = std::exp(-lam * p.a1 * p.mods[j]), w = p.weights[j];
        m1 += w * e1;
        m1sq += w * e1 * e1;
        m2s += w * std::exp(-lam * p.a2 * p.mods[j]);
    }
    const double v = std::max(m2s - m1sq, 0.0) * p.siteShare + std::max(m1sq - m1 * m1, 0.0) * p.clumpShare;
    return std::sqrt(v) / std::max(ln10f * m1, 1e-6);
}

/// The numbers of a colour frame that its layers share.
struct DyePlan {
    GrowthLattice lattice;
    double sizeUm = 0.0, clumpUm = 0.0;
    ColorCal cal;
};

DyePlan planDye(Size size, const Vec3d& dmins, const Vec3d& dmaxs, double amount, const GrowthFrame& frame)
{
    DyePlan plan;
    plan.lattice = growthLattice(size, frame.formatLongUm);
    plan.sizeUm = growthSizeUm(frame.grain, true);
    plan.clumpUm = growthClumpUm(plan.sizeUm, true, frame.sizeMult);
    plan.cal = growthColorCal({amount, plan.sizeUm, plan.lattice.site, frame.grain, dmins, dmaxs});
    return plan;
}

/// One dye layer, ready for either path.
struct DyeLayer {
    double cloudSites = 0.0;
    GrowthDyeParams params{};
};

DyeLayer planDyeLayer(const DyePlan& plan, std::size_t c, double dmin, double dmax, const GrowthFrame& frame)
{
    const double cloudSites = growthCloudSites(plan.sizeUm, growthLayerSizeScale(frame.grain)[c],
                                               frame.sizeMult, plan.lattice.site);
    return {cloudSites,
            {static_cast<float>(dmin), spanOf(dmin, dmax),
             frame.seed + kFirstLayerSeed + static_cast<std::uint32_t>(c), plan.cal.deltas[c],
             plan.cal.css[c]}};
}

GrowthLatticePlan planDyeFull(const DyePlan& plan, const DyeLayer& layer)
{
    GrowthLatticePlan full;
    full.scale = plan.lattice.scale;
    planClumps(full, growthClumpSites(plan.clumpUm, plan.lattice.site));
    if (layer.cloudSites > 0.05) full.cloud = growthKernel(layer.cloudSites);
    full.layer = layer.params;
    return full;
}

GrowthAggColorParams planDyeAggregate(const DyePlan& plan, const DyeLayer& layer)
{
    const double delta = layer.params.delta, cs = layer.params.cs;
    const CloudFactors clouds = aggCloudFactors(plan.lattice.scale, layer.cloudSites, delta);
    const std::array<float, 16> nodes = aggColorNodes(cs, clouds.kappa);
    const double sites = std::pow(plan.lattice.pxUm / plan.lattice.site, 2.0);
    GrowthAggColorParams params{layer.params.dmin,
                                layer.params.span,
                                layer.params.seed,
                                static_cast<float>(delta * clouds.h / sites),
                                static_cast<float>(cs * cs * aggClumpFactor(plan.lattice.pxUm, plan.clumpUm)),
                                {},
                                {}};
    std::copy_n(nodes.begin(), 8, params.nodes.begin());
    std::copy_n(nodes.begin() + 8, 8, params.weights.begin());
    return params;
}

double amountOf(const GrowthFrame& frame, double absent)
{
    return frame.ampMult * frame.grain.amount.value_or(absent);
}

} // namespace

Plane growthBW(Plane density, double dmin, double dmax, const GrowthFrame& frame)
{
    const double amount = amountOf(frame, 0.055);
    if (!(amount > kMinAmount) || !(frame.formatLongUm > 0.0) || density.count() == 0) return density;
    const SilverPlan plan = planSilver(density.size(), dmin, dmax, amount, frame);
    const GrowthChannel channel{density.data.data(), 1, density.size()};
    Plane light(density.width, density.height);
    if (takesAggregate(plan.lattice, plan.setup.clumpUm, density.size(), frame.zone)) {
        const GrowthAggBWParams params = planSilverAggregate(plan);
        if (frame.zone == GrowthZone::automatic && sigmaAtCalibration(params) < skipSigmaD) return density;
        aggregateTransmission(channel, light, [&](const GrowthRun& run, const float* from, float* to) {
            growth_agg_bw(run, params, from, to);
        });
    } else {
        growthTransmission(channel, planSilverFull(plan), frame.tiling, light);
    }
    light = spread(std::move(light), plan.lattice.pxUm);
    writeDensity(light, planDensity(dmin, dmax), density.mutableData(), 1);
    return density;
}

RGBImage growthColor(RGBImage density, const Vec3d& dmins, const Vec3d& dmaxs, const GrowthFrame& frame)
{
    const double amount = amountOf(frame, 0.04);
    if (!(amount > kMinAmount) || !(frame.formatLongUm > 0.0) || density.pixelCount() == 0) return density;
    const DyePlan plan = planDye(density.size(), dmins, dmaxs, amount, frame);
    const bool aggregate = takesAggregate(plan.lattice, plan.clumpUm, density.size(), frame.zone);
    float* values = density.mutableData();
    Plane light(density.width, density.height);
    for (std::size_t c = 0; c < 3; ++c) {
        const DyeLayer layer = planDyeLayer(plan, c, dmins[c], dmaxs[c], frame);
        const GrowthChannel channel{values + c, 3, density.size()};
        if (aggregate) {
            const GrowthAggColorParams params = planDyeAggregate(plan, layer);
            aggregateTransmission(channel, light, [&](const GrowthRun& run, const float* from, float* to) {
                growth_agg_color(run, params, from, to);
            });
        } else {
            growthTransmission(channel, planDyeFull(plan, layer), frame.tiling, light);
        }
        light = spread(std::move(light), plan.lattice.pxUm);
        writeDensity(light, planDensity(dmins[c], dmaxs[c]), values + c, 3);
    }
    return density;
}

} // namespace tamlo::Grain
