#include "core/process/crt/tube.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tamlo {
namespace {

using namespace CRTScreen;

// A profile may name any number; beyond these a tube would be none, and work and memory without end.
constexpr double kLargestMm = 1e6;
constexpr double kWidestSpot = 4.0;
constexpr std::int64_t kMostWires = 10'000;
constexpr double kDeepestBulge = 1e3;

double within(const OptNumber& value, double otherwise, double low, double high)
{
    const double v = value.value_or(otherwise);
    return std::isfinite(v) ? std::clamp(v, low, high) : otherwise;
}

Vec3f phosphor(const std::string& name)
{
    if (name == "amber") return {1.0f, 0.52f, 0.10f};
    if (name == "white") return {0.70f, 0.86f, 1.0f};
    return {0.12f, 1.0f, 0.30f};
}

/// What a white of 9300 K is to one that the eye has partly grown used to, green held.
Vec3f whiteGains(const CRTParams& cfg)
{
    constexpr double kWarmestBlue = 7000.0;
    constexpr Vec3d kD93OverD65{0.846, 1.011, 1.343};
    if (cfg.whiteK.value_or(0.0) <= kWarmestBlue || !cfg.adapt) return {1.0f, 1.0f, 1.0f};
    const double e = 1.0 - within(cfg.adapt, 1.0, -10.0, 10.0);
    const auto shift = [&](std::size_t c) { return std::pow(kD93OverD65[c], e); };
    return {static_cast<float>(shift(0) / shift(1)), 1.0f, static_cast<float>(shift(2) / shift(1))};
}

} // namespace

CRTParams CRTScreen::frameCfg(CRTParams cfg, double zoom)
{
    constexpr double kWholeTube = 1.000000001;
    constexpr double kCameraPsfUm = 60.0;
    if (zoom <= kWholeTube) return cfg;
    const auto divide = [](OptNumber& value, double by) {
        if (value && *value != 0.0) *value /= by;
    };
    for (OptNumber* across : {&cfg.bulge, &cfg.vignette, &cfg.convergeMm}) divide(*across, zoom * zoom);
    for (OptNumber* along : {&cfg.cornerR, &cfg.lumaLines, &cfg.chromaLines}) divide(*along, zoom);
    cfg.cameraPsfUm = cfg.cameraPsfUm.value_or(kCameraPsfUm) / zoom;
    return cfg;
}

Tube CRTScreen::tube(const PaperProfile& paper, const RenderOptions& options)
{
    const CRTParams cfg = frameCfg(paper.crt.value_or(CRTParams{}), screen(paper, options).zoom);
    Tube out;
    if (!hasMask(paper))
        out.mask = MaskKind::none;
    else if (cfg.mask == "grille")
        out.mask = MaskKind::grille;
    out.pitchMm = screen(paper, options).pitchMm;
    out.dot = within(cfg.dot, out.mask == MaskKind::grille ? 0.8 : 0.85, 0.0, 10.0);
    out.depth = within(cfg.depth, 0.5, 0.0, 1.0);
    out.spot = within(cfg.spot, 0.3, 0.0, kWidestSpot);
    out.wires = std::clamp<std::int64_t>(cfg.wires.value_or(0), 0, kMostWires);
    out.wireMm = within(cfg.wireMm, 0.12, 0.0, kLargestMm);
    out.wireDepth = within(cfg.wireDepth, 0.55, 0.0, 1.0);
    // Two lines make a cycle.
    out.lumaCycles = std::max(within(cfg.lumaLines, 400.0, 1.0, kLargestMm), 1.0) / 2.0;
    out.chromaCycles = std::max(within(cfg.chromaLines, 80.0, 1.0, kLargestMm), 1.0) / 2.0;
    out.bloom = within(cfg.bloom, 0.0, 0.0, 1.0);
    out.bloomMm = within(cfg.bloomMm, 1.5, 0.0, kLargestMm);
    out.convergeMm = within(cfg.convergeMm, 0.0, -kLargestMm, kLargestMm);
    out.vignette = within(cfg.vignette, 0.0, 0.0, 1.0);
    out.cornerR = within(cfg.cornerR, 0.0, 0.0, 0.5);
    out.bulge = within(cfg.bulge, 0.0, 0.0, kDeepestBulge);
    out.cylinder = cfg.curve == "cyl";
    out.overscan = within(cfg.overscan, 0.0, 0.0, 0.49);
    out.cameraPsfUm = within(cfg.cameraPsfUm, 60.0, 0.0, kLargestMm * 1000.0);
    out.whiteMean = within(cfg.whiteMean, 0.95, 0.0, 1.0);
    if (out.mono()) {
        const OptText own =
            options.crtPhosphor && !options.crtPhosphor->empty() ? options.crtPhosphor : cfg.phosphor;
        out.colour = phosphor(own.value_or("green"));
    } else {
        out.colour = whiteGains(cfg);
    }
    return out;
}

} // namespace tamlo
