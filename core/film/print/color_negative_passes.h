// Passes of the colour negative and its print: one per-pixel function each, in place, in vector code with
// run-time dispatch. The scalar forms are HDCurve, Film::logExposure, Print::positive and Film::LookOp.
#pragma once

#include "core/film/print/color_negative.h"
#include "core/film/print/look.h"

namespace tamlo {

struct CurvesColorParams {
    std::array<HDCurve, 3> curves;
    float evTerm = 0.0f;
    /// A direct positive: the curve at -x, so that more light gives less density.
    bool negate = false;
    /// Offset of each layer in log exposure, ahead of its curve.
    Vec3f layerEv{};
    Vec3f unevenWeights{1.0f, 1.0f, 1.0f};
    GPUCouplers couplers;
    /// Share of silver left in every layer; 0 is none.
    float retainedSilver = 0.0f;
};

namespace Film {

/// Curves, couplers and developer of a colour film: negative, slide or instant. The film has `layers`.
CurvesColorParams planColorCurves(const DevelopedFilm& film, const RenderOptions& options);

} // namespace Film

/// Light to absolute density: exposure, curve, uneven field (null: none), couplers, retained silver.
void curves_color(RGBImage& image, const CurvesColorParams& params, const Plane* unevenField);

/// D - d0 per channel.
void subtract_anchor(RGBImage& density, const Vec3f& d0);

/// Mean over the frame of 10^(printEvTerm - (D - d0)) on one channel.
double mean_paper_light(std::span<const float> density, Film::Channel channel, float d0, float printEvTerm);

struct PrintColorParams {
    HDCurve curve;
    float printEvTerm = 0.0f;
    Vec3f flareAdd{};
    Film::LookOp look;
    Vec3f tone{1.0f, 1.0f, 1.0f};
};

/// Density difference to the display-linear positive: flare, paper curve, knobs, look, tone, clamp to 0...1.
void print_color(RGBImage& db, const PrintColorParams& params);

} // namespace tamlo
