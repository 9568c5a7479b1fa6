#include "core/film/lens/optics_field.h"

#include "core/film/lens/optics.h"
#include "core/film/lens/optics_field_passes.h"
#include "core/image/bands.h"
#include "core/image/blur_bands.h"
#include "core/image/gaussian.h"
#include "core/image/luminance.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

constexpr double kMinRingSigma = 0.35; // a narrower blur changes no sample that one could see
constexpr double kProxySigmaPx = 12.0; // the largest sigma on the proxy
constexpr double kMinSigmaPx = 0.6;    // below it a frame shows no field
constexpr double kMaxStrength = 1e6;   // long sides; keeps sizes in range
constexpr double kMaxPower = 1e3;

using Optics::FieldPlan;
using Optics::kFieldBands;

/// Triangular weights of a ring over the rows of the polar image.
std::vector<double> ringWeights(int ring, std::int64_t radii)
{
    const double middle = (ring + 0.5) / kFieldBands;
    std::vector<double> weights;
    for (std::int64_t r = 0; r < radii; ++r) {
        const double share = (static_cast<double>(r) + 0.5) / static_cast<double>(radii);
        weights.push_back(std::clamp(1.0 - kFieldBands * std::abs(share - middle), 0.0, 1.0));
    }
    return weights;
}

/// The weights of all rings, each row's divided by their sum.
std::array<std::vector<float>, kFieldBands> normalisedWeights(std::int64_t radii)
{
    std::array<std::vector<double>, kFieldBands> weights;
    for (int j = 0; j < kFieldBands; ++j) weights[static_cast<std::size_t>(j)] = ringWeights(j, radii);
    std::array<std::vector<float>, kFieldBands> out;
    for (std::size_t r = 0; r < static_cast<std::size_t>(radii); ++r) {
        double sum = 0.0;
        for (const auto& ring : weights) sum += ring[r];
        for (std::size_t j = 0; j < kFieldBands; ++j)
            out[j].push_back(static_cast<float>(weights[j][r] / std::max(sum, 1e-6)));
    }
    return out;
}

std::vector<double> ringKernel(double sigma)
{
    return sigma > kMinRingSigma ? gaussianHalfKernel(sigma) : std::vector<double>{1.0};
}

std::array<SmearRing, kFieldBands> smearRings(const FieldPlan& plan)
{
    auto weights = normalisedWeights(plan.radii);
    std::array<SmearRing, kFieldBands> rings;
    for (std::size_t j = 0; j < kFieldBands; ++j)
        rings[j] = {ringKernel(plan.rings[j].alongAngle), ringKernel(plan.rings[j].alongRadius),
                    std::move(weights[j])};
    return rings;
}

/// The polar image with each ring smeared by its own sigmas.
void smear(PolarPlanes& polar, const FieldPlan& plan)
{
    const auto rings = smearRings(plan);
    Plane smeared(plan.angles, plan.radii);
    for (Plane& channel : polar) {
        smear_rings(channel, rings, smeared);
        std::swap(channel, smeared);
    }
}

/// Smear lives where the picture is out of focus already: it is taken away where there is fine detail.
void holdBackAtDetail(Plane& weight, const RGBImage& proxy, double bias)
{
    constexpr double kDetailSigmaPx = 1.6, kAreaSigmaPx = 6.0, kPercentile = 88.0; // taste
    Plane detail(proxy.width, proxy.height);
    luma_plane(detail, proxy);
    detail_abs(detail, gaussianFilter(detail, kDetailSigmaPx, EdgeMode::nearest));
    detail = gaussianFilter(std::move(detail), kAreaSigmaPx, EdgeMode::nearest);
    const double reference =
        std::max(Optics::percentile({detail.data.data(), detail.data.size()}, kPercentile), 1e-5);
    defocus_weight(weight, detail, static_cast<float>(bias), static_cast<float>(reference));
}

/// What the smear changes, at the proxy's size.
RGBImage fieldDelta(RGBImage proxy, const FieldPlan& plan)
{
    const double step = plan.radius / static_cast<double>(plan.radii);
    const FieldMix mix{static_cast<float>(step), static_cast<float>(plan.radius),
                       static_cast<float>(plan.largestPx / (2.0 * plan.scale)),
                       static_cast<float>(plan.power)};
    PolarPlanes polar;
    for (Plane& channel : polar) channel = Plane(plan.angles, plan.radii);
    polar_forward(proxy, step, polar);
    smear(polar, plan);
    Plane weight(proxy.width, proxy.height);
    field_weight(weight, mix);
    if (plan.defocusBias > 0.0) holdBackAtDetail(weight, proxy, plan.defocusBias);
    field_delta(proxy, polar, weight, mix);
    return proxy;
}

} // namespace

std::optional<FieldPlan> Optics::planField(Size frame, const OpticsParams& params, double swGain,
                                           double saGain)
{
    const auto held = [](double v) { return std::min(v, kMaxStrength); };
    const double curvature = held(swGain * params.fieldCurvature.value_or(0.0));
    const double astigmatism = held(swGain * params.astigmatism.value_or(0.0));
    const double coma = held(saGain * params.coma.value_or(0.0));
    if (!(std::max({curvature, astigmatism, coma}) > 1e-6)) return std::nullopt;
    FieldPlan plan;
    plan.largestPx =
        (curvature + std::max(astigmatism, coma)) * static_cast<double>(std::max(frame.width, frame.height));
    if (!(plan.largestPx >= kMinSigmaPx)) return std::nullopt;
    plan.power = std::clamp(params.fieldPower.value_or(2.0), 0.0, kMaxPower);
    const double bias = params.defocusBias.value_or(0.0);
    plan.defocusBias = bias > 0.001 ? bias : 0.0;
    plan.scale = std::max(plan.largestPx / kProxySigmaPx, 1.0);
    const auto side = [&](std::int64_t n) {
        return std::max<std::int64_t>(pyRound(static_cast<double>(n) / plan.scale), 24);
    };
    plan.proxy = {side(frame.width), side(frame.height)};
    plan.radius = 0.5 * std::hypot(static_cast<double>(plan.proxy.width - 1),
                                   static_cast<double>(plan.proxy.height - 1));
    const double pi2 = 2.0 * std::numbers::pi;
    plan.radii = std::max<std::int64_t>(pyRound(plan.radius), 32);
    plan.angles =
        std::min<std::int64_t>(4 * std::max<std::int64_t>(pyRound(pi2 * plan.radius * 0.25), 16), 4096);
    const auto longPx = static_cast<double>(std::max(plan.proxy.width, plan.proxy.height));
    const auto angles = static_cast<double>(plan.angles), radii = static_cast<double>(plan.radii);
    for (int j = 0; j < kFieldBands; ++j) {
        const double middle = (j + 0.5) / kFieldBands, grown = std::pow(middle, plan.power) * longPx;
        FieldRing& ring = plan.rings[static_cast<std::size_t>(j)];
        // A sigma of a whole turn, or of all radii, spreads evenly: no wider one need be summed.
        ring.alongAngle = std::min(
            (curvature + astigmatism) * grown * angles / (pi2 * std::max(plan.radius * middle, 0.5)), angles);
        ring.alongRadius = std::min((curvature + coma) * grown * radii / plan.radius, 16.0 * radii);
    }
    return plan;
}

RGBImage Optics::fieldPSF(RGBImage image, const OpticsParams& params, double swGain, double saGain)
{
    if (image.pixelCount() == 0) return image;
    const auto plan = planField(image.size(), params, swGain, saGain);
    if (!plan) return image;
    const RGBImage delta = fieldDelta(pilResize(image, plan->proxy, Resampling::bilinear), *plan);
    const EnlargedRows added(delta, image.size());
    float* pixels = image.mutableData();
    const std::int64_t samples = image.width * 3;
    parallelBands(image.height, samples, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(samples));
        for (std::int64_t y = start; y < end; ++y) {
            added.row(y, row.data());
            add_row(pixels + y * samples, row.data(), samples);
        }
    });
    return image;
}

} // namespace tamlo
