#include "core/film/emulsion/hd_curve.h"

#include "core/image/bands.h"
#include "core/image/zcolor.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

HDCurve::HDCurve(double dminIn, double dmaxIn, double gamma, double toe, double midAbove)
    : dmin(dminIn), dmax(dmaxIn), nu(toe), mid(midAbove), d0(dminIn + midAbove)
{
    // D(x) = dmin + span × (1 + e^(-k (x - m)))^(-1/nu), solved for D(0) = d0 and D'(0) = gamma.
    const double span = dmax - dmin;
    if (span > 0.0) { // without a span the curve is flat at dmin
        const double base = std::clamp(midAbove / span, 0.0001, 0.999);
        const double p = std::pow(base, nu);
        k = gamma * nu / (span * base * (1.0 - p));
        m = std::log(1.0 / p - 1.0) / k;
    }

    fDmin = static_cast<float>(dmin);
    fSpan = static_cast<float>(span);
    fK = static_cast<float>(k);
    fM = static_cast<float>(m);
    fInvNu = static_cast<float>(1.0 / nu);
    fD0 = static_cast<float>(d0);
    fShadowSpan = std::max(static_cast<float>(dmax - d0), 1e-6f);
    fLightSpan = std::max(static_cast<float>(mid), 1e-6f);
}

float HDCurve::density(float x) const
{
    const float z = std::clamp(fK * (x - fM), -60.0f, 60.0f);
    const float s = 1.0f / (1.0f + std::exp(-z));
    return fDmin + fSpan * std::pow(s, fInvNu);
}

Plane HDCurve::apply(const Plane& logExposure) const
{
    Plane out(logExposure.width, logExposure.height);
    float* to = out.mutableData();
    const float* from = logExposure.data.data();
    parallelBands(out.height, out.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * out.width; i < end * out.width; ++i) to[i] = density(from[i]);
    });
    return out;
}

float HDCurve::liftBlack(float dp) const
{
    if (black <= 1e-6f) return dp;
    const float u = std::max((dp - fD0) / fShadowSpan, 0.0f);
    return dp - black * u * u;
}

float HDCurve::dropWhite(float dp) const
{
    if (white <= 1e-6f) return dp;
    const float v = std::max((fD0 - dp) / fLightSpan, 0.0f);
    return dp + white * v * v;
}

float Film::logExposure(float e, float evTerm)
{
    return std::log10(std::max(e, 0.0f) / ZColor::midGray + ZColor::eps) + evTerm;
}

} // namespace tamlo
