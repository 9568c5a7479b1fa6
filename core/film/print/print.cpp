#include "core/film/print/print.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

HDCurve Print::paperCurve(const PaperProfile& paper, double grade, double black, double white)
{
    const double usedGrade = paper.fixedGrade.value_or(false) ? 2.0 : grade;
    const double gamma = (usedGrade * 0.2 + 0.6) * paper.gamma.value_or(1.8);
    HDCurve curve(paper.dmin.value_or(0.05), paper.dmax.value_or(2.1), gamma, paper.toe.value_or(1.25),
                  kPaperAnchor);
    curve.black = static_cast<float>(std::clamp(black, 0.0, 1.0) * blackMaxFrac * curve.fShadowSpan);
    curve.white = static_cast<float>(std::clamp(white, 0.0, 1.0) * blackMaxFrac * curve.fLightSpan);
    return curve;
}

double Print::printEvTerm(double ev)
{
    return ev * LOG10_2;
}

float Print::positive(const HDCurve& curve, float db, float printEvTerm, double flareAdd)
{
    float u = printEvTerm - db;
    if (flareAdd > 0.0) u = std::log10(std::pow(10.0f, u) + static_cast<float>(flareAdd));
    const float dp = curve.dropWhite(curve.liftBlack(curve.density(u)));
    return std::pow(10.0f, -(dp - curve.fDmin));
}

float Print::amount(const HDCurve& curve, float db, float printEvTerm)
{
    const float dp = curve.dropWhite(curve.liftBlack(curve.density(printEvTerm - db)));
    const float span = std::max(static_cast<float>(curve.dmax - curve.dmin), 1e-6f);
    return std::clamp((dp - curve.fDmin) / span, 0.0f, 1.0f);
}

} // namespace tamlo
