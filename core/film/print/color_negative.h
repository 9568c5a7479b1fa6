// The middle of the darkroom: a linear scene through a three-layer colour negative and onto a colour paper.
// Order: softness, halation, exposure, curves, uneven development, couplers, retained silver, edge effects,
// grain; then the grey anchor is removed per layer (the base, the mask and the layers' different grey
// densities drop out, as a printer's filtration does), and the paper, the look and the tone follow.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>
#include <span>

namespace tamlo {

/// Couplers as the curve pass takes them, about the layers' mean of D - d0, so that a neutral stays as it is.
struct GPUCouplers {
    enum class Mode { none, scalar, matrix };
    Mode mode = Mode::none;
    float csF = 1.0f;
    std::array<Vec3f, 3> a{};

    GPUCouplers() = default;
    /// allowNegative: a negative saturation acts. allowMatrix: `matrix` acts. interlayer: `matrix_ds` acts
    /// when there is no `matrix` to act. In place of one that is not 3 × 3, `saturation` acts.
    GPUCouplers(const std::optional<Couplers>& couplers, bool allowNegative, bool allowMatrix,
                bool interlayer);
};

namespace Film {

/// A colour negative: db = D - d0 per layer, the anchors d0 and the curves.
struct ColorNegative {
    RGBImage db;
    Vec3f d0{};
    std::array<HDCurve, 3> curves;
};

/// Domain: the light at the emulsion in, density difference out, in place. Units: pxUm micrometres of film a
/// pixel. Errors: ProfileError "color film without 'layers'".
ColorNegative colorNegativeDb(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                              double pxUm);

/// One channel of an interleaved picture.
struct Channel {
    std::int64_t stride = 3;
    std::int64_t offset = 0;
};

/// The enlarger's veiling light on one channel: flare × mean of 10^(printEvTerm - (D - d0)) over the frame,
/// grain included. The mean is summed in 64-bit floats in fixed chunks. 0 for no flare.
double enlargerFlareAdd(double flare, std::span<const float> density, Channel channel, float d0,
                        float printEvTerm);

/// Light at the emulsion to the display-linear positive, 0...1, in place.
RGBImage renderColor(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                     const RenderOptions& options, double pxUm);

} // namespace Film

} // namespace tamlo
