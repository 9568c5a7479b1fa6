#include "core/film/grain/classic_grain.h"

#include "core/film/grain/classic_grain_passes.h"
#include "core/image/gaussian.h"
#include "core/image/random.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace tamlo {
namespace {

/// Grain no wider than this is drawn as it is; a knob turned beyond it (half a millimetre on a 35 mm master)
/// draws blotches of this width, where the kernel would reach over the whole frame.
constexpr double kMaxSigmaPx = 100.0;
/// The largest amplitude in density that 32-bit floats carry through the print without overflow.
constexpr double kMaxAmplitude = 1e6;
constexpr double kMinBlurSigmaPx = 0.05;

/// What stands in for absent numbers of a profile.
struct ClassicDefaults {
    double sizeUm, amount;
    Vec3d layerScale, layerSizeScale;
};
constexpr ClassicDefaults kSilver{6.0, 0.08, {1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}};
constexpr ClassicDefaults kColor{4.0, 0.05, {1.0, 0.9, 1.35}, {1.0, 1.0, 1.2}};

/// One layer's noise: its sigma on the pixel grid and its amplitude in density, 0 when it gets no grain.
struct LayerPlan {
    double sigmaPx = 0.0;
    double amplitude = 0.0;
};

LayerPlan layerPlan(double sizeUm, double amount, const Grain::ClassicGrain& grain)
{
    const Grain::SigmaAmp size = Grain::effectiveSigmaAmp(sizeUm, grain.pxUm, grain.sizeMult, grain.ampMult);
    const double amplitude = size.amp * amount;
    if (!(amplitude > Grain::kMinAmplitude)) return {size.sigmaPx, 0.0};
    return {std::min(size.sigmaPx, kMaxSigmaPx), std::min(amplitude, kMaxAmplitude)};
}

LayerPlan silverPlan(const Grain::ClassicGrain& grain)
{
    return layerPlan(grain.gprof.sizeUm.value_or(kSilver.sizeUm), grain.gprof.amount.value_or(kSilver.amount),
                     grain);
}

LayerPlan colorPlan(const Grain::ClassicGrain& grain, std::size_t c)
{
    const double size = grain.gprof.sizeUm.value_or(kColor.sizeUm);
    const double amount = grain.gprof.amount.value_or(kColor.amount);
    return layerPlan(size * grain.gprof.layerSizeScale.value_or(kColor.layerSizeScale)[c],
                     amount * grain.gprof.layerScale.value_or(kColor.layerScale)[c], grain);
}

/// c makes the envelope sqrt(n (1 - n)) at dmin + 1.0, where n is that density's share of the span, so that
/// `amount` is the noise at the density where granularity is quoted.
GrainEnvelope planEnvelope(double dmin, double dmax, double amplitude)
{
    const double span = std::max(dmax - dmin, 1e-6);
    const double n = std::clamp(1.0 / span, 0.05, 0.95);
    const double atAnchor = std::sqrt((n + GrainEnvelope::kFogFloor) * (1.0 - GrainEnvelope::kShoulder * n));
    const double c = std::sqrt(n * (1.0 - n) + 1e-8) / std::max(atAnchor, 1e-6);
    return {static_cast<float>(dmin), static_cast<float>(1.0 / span), static_cast<float>(amplitude * c)};
}

GrainField planField(double sigmaPx, std::uint32_t seed, std::uint32_t layer)
{
    GrainField field{.seed = seed, .layer = layer};
    if (!(sigmaPx > kMinBlurSigmaPx)) return field;
    // White noise of unit variance, blurred along both axes, has the kernel's power as standard deviation.
    const std::vector<double> half = gaussianHalfKernel(sigmaPx);
    const double spread = kernelPower(half);
    field.rowKernel.clear();
    field.columnKernel.clear();
    for (const double w : half) {
        field.rowKernel.push_back(static_cast<float>(w / spread));
        field.columnKernel.push_back(static_cast<float>(w));
    }
    return field;
}

constexpr std::int64_t kBenchSidePx = 512;
constexpr double kBenchPxUm = 6.0;

/// One layer on the bench: a plane at dmin + 1.0 with grain from the bench's own noise.
double benchSigma48(const LayerPlan& layer, double dmin, double dmax, CalibRNG& rng)
{
    if (layer.amplitude == 0.0) return 0.0; // a flat plane, which draws nothing
    const std::vector<float> normals = rng.standardNormal(kBenchSidePx * kBenchSidePx);
    Plane field(kBenchSidePx, kBenchSidePx, std::span<const float>(normals));
    if (layer.sigmaPx > kMinBlurSigmaPx)
        field = gaussianFilter(std::move(field), layer.sigmaPx, EdgeMode::wrap);
    const double spread = std::max(field.std(), 1e-12);
    const GrainEnvelope envelope = planEnvelope(dmin, dmax, layer.amplitude);
    const float density = static_cast<float>(dmin + 1.0);
    const float amplitude = envelope.at(density);
    const Plane grained =
        field.map([&](float v) { return density + amplitude * static_cast<float>(v / spread); });
    return Grain::disc48Std(grained, kBenchPxUm);
}

CalibRNG benchNoise()
{
    constexpr std::uint64_t kKey[] = {48};
    return CalibRNG(CalibRNG::seed(kKey));
}

/// Means of the plane over a disc of radius r, centred on each sample that lies ceil(r) from every side.
std::vector<double> discMeans(const Plane& plane, double r)
{
    const auto radius = static_cast<std::int64_t>(std::ceil(r));
    std::vector<std::int64_t> halfChord; // of each row of the disc; -1 for a row beyond it
    double cells = 0.0;
    for (std::int64_t dy = -radius; dy <= radius; ++dy) {
        const double square = r * r - static_cast<double>(dy * dy);
        halfChord.push_back(square < 0.0 ? -1 : static_cast<std::int64_t>(std::sqrt(square)));
        if (halfChord.back() >= 0) cells += static_cast<double>(2 * halfChord.back() + 1);
    }
    const std::int64_t columns = plane.width - 2 * radius;
    std::vector<double> means(static_cast<std::size_t>(columns * (plane.height - 2 * radius)), 0.0);
    double* sums = means.data();
    for (std::int64_t y = radius; y < plane.height - radius; ++y, sums += columns) {
        for (std::int64_t dy = -radius; dy <= radius; ++dy) {
            const std::int64_t half = halfChord[static_cast<std::size_t>(dy + radius)];
            for (std::int64_t dx = -half; dx <= half; ++dx) {
                const float* from = plane.row(y + dy) + radius + dx;
                for (std::int64_t x = 0; x < columns; ++x) sums[x] += from[x];
            }
        }
        for (std::int64_t x = 0; x < columns; ++x) sums[x] /= cells;
    }
    return means;
}

/// Population standard deviation; 0 for fewer than two values.
double deviation(const std::vector<double>& values)
{
    if (values.size() < 2) return 0.0;
    double mean = 0.0, square = 0.0;
    for (const double v : values) mean += v;
    mean /= static_cast<double>(values.size());
    for (const double v : values) square += (v - mean) * (v - mean);
    return std::sqrt(square / static_cast<double>(values.size()));
}

} // namespace

Grain::SigmaAmp Grain::effectiveSigmaAmp(double sizeUm, double pxUm, double sizeMult, double ampMult)
{
    const double sigmaPx = sizeMult * sizeUm / std::max(pxUm, 1e-6);
    if (sigmaPx < minSigmaPx) return {minSigmaPx, ampMult * sigmaPx / minSigmaPx};
    return {sigmaPx, ampMult};
}

Plane Grain::field(Size size, double sigmaPx, std::uint32_t seed, std::uint32_t layer)
{
    Plane out(size.width, size.height);
    grain_field(out, planField(std::min(sigmaPx, kMaxSigmaPx), seed, layer));
    return out;
}

Plane Grain::addBW(Plane density, double dmin, double dmax, const ClassicGrain& grain)
{
    const LayerPlan layer = silverPlan(grain);
    if (layer.amplitude == 0.0) return density;
    grain_bw(density, planField(layer.sigmaPx, grain.seed, 0), planEnvelope(dmin, dmax, layer.amplitude));
    return density;
}

RGBImage Grain::addColor(RGBImage density, const Vec3d& dmins, const Vec3d& dmaxs, const ClassicGrain& grain)
{
    GrainColorParams params;
    bool any = false;
    for (std::size_t c = 0; c < 3; ++c) {
        const LayerPlan layer = colorPlan(grain, c);
        if (layer.amplitude == 0.0) continue;
        any = true;
        params.fields[c] = planField(layer.sigmaPx, grain.seed, static_cast<std::uint32_t>(c));
        params.envelopes[c] = planEnvelope(dmins[c], dmaxs[c], layer.amplitude);
    }
    if (any) grain_color(density, params);
    return density;
}

double Grain::disc48Std(const Plane& plane, double pxUm)
{
    constexpr double kApertureRadiusUm = 24.0;
    const double r = kApertureRadiusUm / pxUm;
    if (!(2.0 * std::ceil(r) < static_cast<double>(std::min(plane.width, plane.height)))) return 0.0;
    return deviation(discMeans(plane, r));
}

double Grain::classicSigma48(const GrainParams& gprof, double dmin, double dmax)
{
    CalibRNG rng = benchNoise();
    return benchSigma48(silverPlan({.gprof = gprof, .pxUm = kBenchPxUm}), dmin, dmax, rng);
}

Vec3d Grain::classicSigma48Color(const GrainParams& gprof, const Vec3d& dmins, const Vec3d& dmaxs)
{
    CalibRNG rng = benchNoise();
    Vec3d sigmas{};
    for (std::size_t c = 0; c < 3; ++c)
        sigmas[c] = benchSigma48(colorPlan({.gprof = gprof, .pxUm = kBenchPxUm}, c), dmins[c], dmaxs[c], rng);
    return sigmas;
}

} // namespace tamlo
