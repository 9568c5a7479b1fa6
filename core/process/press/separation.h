// Separation: the positive into coverages of cyan, magenta, yellow and black. Each ink's layer is a filter
// over the paper, and what the four let through must be the picture; the three colours are solved by
// Gauss-Seidel, a share of their common grey goes to black, and the press's dot gain is taken back ahead of
// the press. Domain: display-linear positive, read as reflectance relative to the paper, so that 1 prints no
// ink.
#pragma once

#include "core/process/press/ink_sets.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tamlo::ReproPrint {

/// Dot gain: a dot of coverage a prints as a + gain × 4 a (1 - a), after the plate has given up a share comp
/// of that gain. A gain × comp of a quarter is the most that keeps white paper white.
struct GainCurve {
    float gain = 0.0f;
    float comp = 0.0f;
};

/// Coverage as it prints.
inline float dotGain(float a0, GainCurve curve)
{
    const auto parabola = [](float a) { return 4.0f * a * (1.0f - a); };
    const float a = std::clamp(a0 - curve.comp * curve.gain * parabola(a0), 0.0f, 1.0f);
    return std::clamp(a + curve.gain * parabola(a), 0.0f, 1.0f);
}

/// The coverage that prints as a. The roots of both parabolas are written so that small gains and small
/// coverages keep their digits.
inline float dotGainInv(float a, GainCurve curve)
{
    const float held = std::clamp(a, 0.0f, 1.0f);
    if (curve.gain <= 0.0f) return held;
    const float b = 1.0f + 4.0f * curve.gain;
    const float a1 = 2.0f * held / (b + std::sqrt(std::max(b * b - 16.0f * curve.gain * held, 0.0f)));
    const float cg = curve.comp * curve.gain;
    if (cg <= 1e-6f) return std::clamp(a1, 0.0f, 1.0f);
    const float e = 1.0f - 4.0f * cg;
    const float a2 = 2.0f * a1 / std::max(e + std::sqrt(std::max(e * e + 16.0f * cg * a1, 0.0f)), 1e-6f);
    return std::clamp(a2, 0.0f, 1.0f);
}

struct Separation {
    std::array<Vec3f, kInkCount> rel{};                 ///< relative reflectance of the solids
    float gcr = 0.0f;                                   ///< share of the common grey that goes to black
    float tac = std::numeric_limits<float>::infinity(); ///< most ink in one place, in solids
    GainCurve curve;
    int iters = 4;
    bool blackOnly = false; ///< one ink prints the picture's red channel
    bool printed = false;   ///< coverages as they print, with the dot gain of the press
};

/// Coverages of c, m, y, k.
using Coverage = std::array<float, kInkCount>;

/// Separation of one pixel: the plain form of the pass `repro_separate`, or of `repro_separate_k`.
Coverage separate(const Vec3f& positive, const Separation& separation);

} // namespace tamlo::ReproPrint
