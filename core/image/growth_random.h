// Draws of growth grain and of crystals: the inverse normal and a Poisson count, in 32-bit floats. These are
// the scalar forms; growth_math-inl.h holds the same formulas on vectors. Position hashes are in
// core/image/position_hash.h.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo::Grain {

/// Coefficients of the inverse normal, highest power first. Source: P. J. Acklam, "An algorithm for computing
/// the inverse normal cumulative distribution function", 2003.
struct QuantileTable {
    static constexpr std::array<float, 6> a{-3.969683028665376e+01f, 2.209460984245205e+02f,
                                            -2.759285104469687e+02f, 1.383577518672690e+02f,
                                            -3.066479806614716e+01f, 2.506628277459239e+00f};
    static constexpr std::array<float, 5> b{-5.447609879822406e+01f, 1.615858368580409e+02f,
                                            -1.556989798598866e+02f, 6.680131188771972e+01f,
                                            -1.328068155288572e+01f};
    static constexpr std::array<float, 6> c{-7.784894002430293e-03f, -3.223964580411365e-01f,
                                            -2.400758277161838e+00f, -2.549732539343734e+00f,
                                            4.374664141464968e+00f,  2.938163982698783e+00f};
    static constexpr std::array<float, 4> d{7.784695709041462e-03f, 3.224671290700398e-01f,
                                            2.445134137142996e+00f, 3.754408661907416e+00f};
    static constexpr float tail = 0.02425f;
    static constexpr float least = 1e-7f;
};

/// Inverse of the normal distribution; p is held within 1e-7...1 - 1e-7.
inline float normalQuantile(float p)
{
    using T = QuantileTable;
    p = std::clamp(p, T::least, 1.0f - T::least);
    const float pTail = std::min(p, 1.0f - p);
    if (pTail < T::tail) {
        const float t = std::sqrt(-2.0f * std::log(pTail));
        const float num =
            ((((T::c[0] * t + T::c[1]) * t + T::c[2]) * t + T::c[3]) * t + T::c[4]) * t + T::c[5];
        const float den = (((T::d[0] * t + T::d[1]) * t + T::d[2]) * t + T::d[3]) * t + 1.0f;
        return p < 0.5f ? num / den : -num / den;
    }
    const float q = p - 0.5f, r = q * q;
    const float num = ((((T::a[0] * r + T::a[1]) * r + T::a[2]) * r + T::a[3]) * r + T::a[4]) * r + T::a[5];
    const float den = ((((T::b[0] * r + T::b[1]) * r + T::b[2]) * r + T::b[3]) * r + T::b[4]) * r + 1.0f;
    return num * q / den;
}

/// Mean count from which a Poisson draw becomes a rounded normal one.
inline constexpr float kPoissonNormalFrom = 8.0f;
/// Means above this draw as this: no film holds so many crystals, and the sums stay finite.
inline constexpr float kPoissonMost = 1e12f;
/// 1 / k for k = 1...16.
inline constexpr std::array<float, 16> invK = [] {
    std::array<float, 16> table{};
    for (std::size_t k = 0; k < table.size(); ++k) table[k] = 1.0f / static_cast<float>(k + 1);
    return table;
}();

/// The Poisson count by inversion of its distribution; at most 16. For means below kPoissonNormalFrom.
inline float poissonByInversion(float u, float lam)
{
    float p = std::exp(-lam), cumulated = p, count = 0.0f;
    for (const float inverse : invK) {
        if (u <= cumulated) break;
        count += 1.0f;
        p = p * (lam * inverse);
        cumulated += p;
    }
    return count;
}

/// A Poisson count of mean lam at the uniform u.
inline float poisson(float u, float lam)
{
    const float lamS = std::clamp(lam, 1e-9f, kPoissonMost);
    if (lamS < kPoissonNormalFrom) return poissonByInversion(u, lamS);
    return std::max(std::round(lamS + std::sqrt(lamS) * normalQuantile(u)), 0.0f);
}

/// Inverse of erf, to the precision of 64-bit floats; plus or minus infinity outside -1...1.
double erfinvD(double x);

} // namespace tamlo::Grain
