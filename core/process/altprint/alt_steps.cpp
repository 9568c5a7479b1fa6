#include "core/process/altprint/alt_steps.h"

#include "core/film/print/print.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/process/altprint/alt_passes.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

/// Far beyond any colourant, and still a number to reckon with.
float held(double value)
{
    constexpr double kMost = 1e6;
    return static_cast<float>(std::clamp(value, -kMost, kMost));
}

float asFloat(const OptNumber& value, double otherwise = 0.0)
{
    return held(value.value_or(otherwise));
}

} // namespace

std::uint64_t AltPrint::printSeed(const RenderOptions& options)
{
    return Seeds::streamRNG(options, Seeds::SeedStream::print).nextUInt64();
}

Plane AltPrint::printAmount(Plane density, float d0, const HDCurve& curve, double ev)
{
    const RenderProfiler::Scope booked("print", density.count());
    alt_amount(density, curve, d0, static_cast<float>(Print::printEvTerm(ev)));
    return density;
}

Plane AltPrint::shapeAmount(Plane amount, const PaperProfile& paper)
{
    const RenderProfiler::Scope booked("print", amount.count());
    alt_shape(amount, asFloat(paper.inkFloor), asFloat(paper.plug));
    return amount;
}

Plane AltPrint::pressTransfer(Plane amount, const PaperProfile& paper, const RenderOptions& options)
{
    constexpr double kTakesAll = 0.999, kSharpMm = 1e-4, kLeastSigmaPx = 0.4;
    if (!paper.transfer) return amount;
    const RenderProfiler::Scope booked("press", amount.count());
    const double chosen = options.pickup.value_or(0.0);
    const double pickup = chosen != 0.0 ? chosen : paper.transfer->pickup.value_or(1.0);
    const double softenMm = paper.transfer->softenMm.value_or(0.0);
    const bool soft = softenMm > kSharpMm;
    if (pickup < kTakesAll) alt_pickup(amount, static_cast<float>(std::max(pickup, 1e-6)));
    if (soft) {
        const double sigmaPx = std::max(softenMm * 1000.0 / std::max(options.printPxUm, 1e-6), kLeastSigmaPx);
        amount = blurChannel(std::move(amount), sigmaPx);
    }
    if (pickup < kTakesAll || soft) alt_clamp(amount);
    return amount;
}

RGBImage AltPrint::colorize(const Plane& amount, const PaperProfile& paper, const Vec3f& base)
{
    constexpr double kDensity = 1.6, kInk = 0.02; // a colourant that the profile doesn't tell
    const RenderProfiler::Scope booked("print colour", amount.count());
    const PaperPigment pigment = paper.pigment.value_or(PaperPigment{});
    const Vec3d density = pigment.density.value_or(Vec3d{kDensity, kDensity, kDensity});
    const Vec3d rgb = pigment.rgb.value_or(Vec3d{kInk, kInk, kInk});
    ColorizeParams params;
    params.ink = pigment.mode == "ink";
    params.base = base;
    params.opacity = asFloat(pigment.opacity, 1.0);
    for (std::size_t c = 0; c < 3; ++c) {
        params.density[c] = held(density[c]);
        params.rgb[c] = held(rgb[c]);
    }
    RGBImage out(amount.width, amount.height);
    alt_colorize(out, amount, params);
    return out;
}

} // namespace tamlo
