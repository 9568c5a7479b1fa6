// HDCurve: the one characteristic curve of all films, papers and scanners, a generalised logistic (Richards)
// curve from decimal log exposure to density. It is solved so that the density at the grey card (x = 0) and
// the slope there are profile numbers and not results of a fit.
// Log exposure x: decimal logarithm relative to middle grey. Density: decimal optical density, absolute.
#pragma once

#include "core/image/plane.h"

namespace tamlo {

/// Decimal log of 2: one stop in log exposure.
inline constexpr double LOG10_2 = 0.30102999566398114;

/// -log10(0.18): paper density above Dmin that prints as middle grey.
inline constexpr double kPaperAnchor = 0.7447274948966939;

struct HDCurve {
    /// Density of the unexposed layer and of the shoulder: the curve's asymptotes.
    double dmin = 0.0;
    double dmax = 0.0;
    /// Toe exponent; larger is a longer, softer toe.
    double nu = 1.0;
    /// Density above dmin at x = 0.
    double mid = 0.0;
    /// Steepness and centre of the logistic on the x axis, derived.
    double k = 0.0;
    double m = 0.0;
    /// Absolute density at x = 0.
    double d0 = 0.0;

    /// 32-bit mirrors that per-pixel code reads.
    float fDmin = 0.0f;
    float fSpan = 0.0f;
    float fK = 0.0f;
    float fM = 0.0f;
    float fInvNu = 1.0f;
    float fD0 = 0.0f;
    float fShadowSpan = 1e-6f;
    /// Density taken off at the shoulder and added at the light end by the Black and White knobs.
    float black = 0.0f;
    float white = 0.0f;
    float fLightSpan = 1e-6f;

    HDCurve() = default;
    /// Units: densities; gamma in density per decade; midAbove the density above dmin at the grey card.
    /// A midAbove outside the span bends the shape to the nearest possible one; d0 keeps the given value.
    HDCurve(double dmin, double dmax, double gamma, double toe, double midAbove);

    /// Absolute density at log exposure x; finite for every finite x.
    float density(float x) const;
    /// density() of every sample.
    Plane apply(const Plane& logExposure) const;

    /// The Black knob on a density: slope 1 at the grey anchor, `black` less at dmax.
    float liftBlack(float dp) const;
    /// The White knob on a density: slope 1 at the grey anchor, `white` more at dmin.
    float dropWhite(float dp) const;

    bool operator==(const HDCurve&) const = default;
};

namespace Film {

/// Scene light E (grey 0.18) to log exposure: log10(max(E, 0) / 0.18 + 1e-6) + evTerm.
float logExposure(float e, float evTerm);

} // namespace Film

} // namespace tamlo
