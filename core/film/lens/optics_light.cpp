// The effects that add or mix spread light: veil, bloom, glow, softness and colour softness.
#include "core/film/lens/optics.h"
#include "core/film/lens/optics_passes.h"
#include "core/image/bands.h"
#include "core/image/blur_bands.h"
#include "core/image/gaussian.h"
#include "core/image/light_above.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

double longPx(const RGBImage& image)
{
    return static_cast<double>(image.longSide());
}

SourceRow rowsOf(const float* pixels, std::int64_t width)
{
    return [=](std::int64_t y, float* to) { std::copy_n(pixels + y * width * 3, width * 3, to); };
}

SourceRow channelOf(const float* pixels, std::int64_t width, std::size_t c)
{
    return [=](std::int64_t y, float* to) {
        const float* p = pixels + y * width * 3 + c;
        for (std::int64_t x = 0; x < width; ++x) to[x] = p[x * 3];
    };
}

std::vector<float> rowBuffer(std::int64_t samples)
{
    return std::vector<float>(static_cast<std::size_t>(samples));
}

struct BloomPlan {
    double narrowPx = 0.0, widePx = 0.0;
    float threshold = 0.0f;
    BloomMix mix;
};

BloomPlan planBloom(const RGBImage& image, const OpticsParams& params, double strength)
{
    const double sigma1 = params.bloomSigma1.value_or(0.004), sigma2 = params.bloomSigma2.value_or(0.02);
    const double halo = params.bloomHaloMix.value_or(0.4);
    const Vec3d tint = params.bloomTint.value_or(Vec3d{1.0, 1.0, 1.0});
    BloomPlan plan;
    plan.narrowPx = std::max(std::min(sigma1, sigma2) * longPx(image), 0.0);
    plan.widePx = std::max(std::max(sigma1, sigma2) * longPx(image), 0.0);
    plan.threshold = static_cast<float>(params.bloomThreshold.value_or(0.75));
    plan.mix.wide = static_cast<float>(sigma1 <= sigma2 ? halo : 1.0 - halo);
    plan.mix.narrow = static_cast<float>(sigma1 <= sigma2 ? 1.0 - halo : halo);
    for (std::size_t c = 0; c < 3; ++c) plan.mix.gains[c] = static_cast<float>(strength * tint[c]);
    return plan;
}

struct GlowPlan {
    Vec3d sigmaPx{};
    float ring = 0.0f;
    float share = 0.0f;
    double focusPx = 0.0; // 0 without a shift of focus
};

std::optional<GlowPlan> planGlow(const RGBImage& image, const OpticsParams& params, double share,
                                 double radiusMult)
{
    if (!(share > 1e-4)) return std::nullopt;
    const Vec3d chroma = params.glowChroma.value_or(Vec3d{1.0, 1.0, 1.0});
    GlowPlan plan;
    plan.share = static_cast<float>(share);
    plan.ring = static_cast<float>(std::clamp(params.glowRing.value_or(0.0), 0.0, 0.95));
    const double radius = radiusMult * params.glowRadius.value_or(0.02) * longPx(image);
    for (std::size_t c = 0; c < 3; ++c) plan.sigmaPx[c] = std::max(radius * chroma[c], 0.5);
    const double shift = share * params.glowFocusShift.value_or(0.0);
    if (shift > 1e-5) plan.focusPx = std::max(shift * longPx(image), 0.4);
    return plan;
}

/// A halo of one or three channels of the frame, and its core where there is a ring.
struct Halo {
    EnlargedRows outer;
    std::optional<EnlargedRows> core;
};

constexpr double kCoreShare = 0.42; // of the halo's sigma

Halo haloOf(const RGBImage& image, double sigmaPx, bool ring)
{
    Halo halo{heldBlur(image, sigmaPx), std::nullopt};
    if (ring) halo.core = heldBlur(image, kCoreShare * sigmaPx);
    return halo;
}

Halo haloOfChannel(const RGBImage& image, std::size_t c, double sigmaPx, bool ring)
{
    const SourceRow source = channelOf(image.data.data(), image.width, c);
    Halo halo{heldBlur(image.size(), 1, sigmaPx, source), std::nullopt};
    if (ring) halo.core = heldBlur(image.size(), 1, kCoreShare * sigmaPx, source);
    return halo;
}

/// Mixes the halos into the frame: one of three channels, or one for each channel.
void mixHalos(RGBImage& image, const std::vector<Halo>& halos, const GlowPlan& plan)
{
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    const auto stride = static_cast<std::int64_t>(halos.size());
    const std::int64_t samples = width * 3 / stride;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> outer = rowBuffer(samples), core = rowBuffer(samples);
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t c = 0; c < stride; ++c) {
                const Halo& halo = halos[static_cast<std::size_t>(c)];
                halo.outer.row(y, outer.data());
                if (halo.core) halo.core->row(y, core.data());
                glow_row({pixels + y * width * 3 + c, stride, samples}, outer.data(),
                         halo.core ? core.data() : nullptr, plan.share, plan.ring);
            }
    });
}

} // namespace

RGBImage Optics::veil(RGBImage image, double share, const Vec3f& inputMeans)
{
    // Two thirds of the glare keep a memory of where they came from; the rest is even. Shares: fit by eye.
    constexpr double kSigmaOfLong = 0.22, kSpread = 0.65, kEven = 0.35;
    if (image.pixelCount() == 0 || !(share > 0.0)) return image;
    VeilPlan plan{static_cast<float>(kSpread * share), {}};
    for (std::size_t c = 0; c < 3; ++c)
        plan.even[c] = static_cast<float>(kEven * share * static_cast<double>(inputMeans[c]));
    const EnlargedRows spread = heldBlur(image, kSigmaOfLong * longPx(image));
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row = rowBuffer(width * 3);
        for (std::int64_t y = start; y < end; ++y) {
            spread.row(y, row.data());
            veil_row(pixels + y * width * 3, row.data(), width, plan);
        }
    });
    return image;
}

RGBImage Optics::bloom(RGBImage image, const OpticsParams& params, double saGain)
{
    const double strength = saGain * params.bloom.value_or(0.0);
    if (image.pixelCount() == 0 || !(strength > 0.0)) return image;
    const BloomPlan plan = planBloom(image, params, strength);
    if (!has_above(image, plan.threshold)) return image;
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    const SourceRow highlights = [&](std::int64_t y, float* to) {
        light_above(pixels + y * width * 3, width * 3, plan.threshold, to);
    };
    const EnlargedRows wide = heldBlur(image.size(), 3, plan.widePx, highlights);
    blurInBands(image.size(), 3, plan.narrowPx, highlights, [&](std::int64_t y, const float* narrow) {
        thread_local std::vector<float> wideRow;
        wideRow.resize(static_cast<std::size_t>(width * 3));
        wide.row(y, wideRow.data());
        bloom_row(pixels + y * width * 3, narrow, wideRow.data(), width, plan.mix);
    });
    return image;
}

RGBImage Optics::glow(RGBImage image, const OpticsParams& params, double saGain, double mult,
                      double radiusMult)
{
    if (image.pixelCount() == 0) return image;
    const auto plan = planGlow(image, params, mult * saGain * params.glow.value_or(0.0), radiusMult);
    if (!plan) return image;
    const Vec3d& sigma = plan->sigmaPx;
    const bool ring = plan->ring > 0.0f;
    std::vector<Halo> halos;
    if (sigma[0] == sigma[1] && sigma[1] == sigma[2])
        halos.push_back(haloOf(image, sigma[0], ring));
    else
        for (std::size_t c = 0; c < 3; ++c) halos.push_back(haloOfChannel(image, c, sigma[c], ring));
    mixHalos(image, halos, *plan);
    halos.clear();
    return plan->focusPx > 0.0 ? blur(std::move(image), plan->focusPx) : image;
}

RGBImage Optics::soften(RGBImage image, double s, double mix)
{
    if (image.pixelCount() == 0 || !(s > 0.0)) return image;
    const double sigmaPx = std::max(s / 1000.0 * longPx(image), 0.3);
    if (mix == 1.0) return blur(std::move(image), sigmaPx);
    const auto share = static_cast<float>(mix);
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    blurInBands(image.size(), 3, sigmaPx, rowsOf(pixels, width), [&](std::int64_t y, const float* soft) {
        glow_row({pixels + y * width * 3, 1, width * 3}, soft, nullptr, share, 0.0f);
    });
    return image;
}

RGBImage Optics::chromaSoft(RGBImage image, const OpticsParams& params, double saGain)
{
    constexpr double kMinSigmaPx = 0.35; // a narrower blur changes no pixel that one could see
    if (image.pixelCount() == 0 || !params.chromaSoft || params.chromaSoft->size() != 3) return image;
    const std::int64_t width = image.width;
    for (std::size_t c = 0; c < 3; ++c) {
        const double sigmaPx = std::max(saGain * (*params.chromaSoft)[c] / 1000.0 * longPx(image), 0.0);
        if (!(sigmaPx > kMinSigmaPx)) continue;
        float* pixels = image.mutableData();
        blurInBands(image.size(), 1, sigmaPx, channelOf(pixels, width, c),
                    [&](std::int64_t y, const float* soft) {
                        float* p = pixels + y * width * 3 + c;
                        for (std::int64_t x = 0; x < width; ++x) p[x * 3] = soft[x];
                    });
    }
    return image;
}

} // namespace tamlo
