#include "core/film/print/look.h"

#include "core/image/zcolor.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Film {

LookOp::LookOp(const std::optional<LookParams>& look)
{
    if (!look) return;
    const Vec3d zero{};
    const Vec3d sh = look->shadowTint.value_or(zero);
    const Vec3d hi = look->highlightTint.value_or(zero);
    const Vec3d dyeFade = look->dyeFade.value_or(zero);
    for (std::size_t c = 0; c < 3; ++c) {
        shadowTint[c] = static_cast<float>(sh[c]);
        highlightTint[c] = static_cast<float>(hi[c]);
        hasTint = hasTint || sh[c] != 0.0 || hi[c] != 0.0;
        const double lost = std::clamp(dyeFade[c], 0.0, 0.95); // no channel is ever flattened
        fade[c] = static_cast<float>(1.0 - lost);
        hasFade = hasFade || lost != 0.0;
    }
    const double sat = look->saturation.value_or(0.0);
    saturation = static_cast<float>(1.0 + sat);
    hasSat = std::abs(sat) >= 0.0001;
    const double mute = look->greenMute.value_or(0.0);
    greenMute = static_cast<float>(mute);
    greenMuteRed = static_cast<float>(0.55 * mute);
    hasGreenMute = mute > 0.0;
}

Vec3f LookOp::operator()(Vec3f c) const
{
    if (hasFade)
        for (std::size_t i = 0; i < 3; ++i) c[i] = std::pow(std::clamp(c[i], 0.0f, 1.0f), fade[i]);
    if (hasTint) {
        const float n = std::sqrt(std::clamp(ZColor::lumaOf(c[0], c[1], c[2]), 0.0f, 1.0f));
        const float a = 1.0f - n;
        for (std::size_t i = 0; i < 3; ++i)
            c[i] *= 1.0f + shadowTint[i] * (a * a) + highlightTint[i] * (n * n);
    }
    if (hasSat) {
        const float y = ZColor::lumaOf(c[0], c[1], c[2]);
        for (float& v : c) v = y + (v - y) * saturation;
    }
    if (hasGreenMute) {
        const float excess = std::max(c[1] - 0.5f * (c[0] + c[2]), 0.0f);
        c[1] -= greenMute * excess;
        c[0] += greenMuteRed * excess;
    }
    return c;
}

} // namespace tamlo::Film
