// A negative printed by hand in one coat: salt, albumen, cyanotype, Van Dyke, platinum, palladium, gum,
// carbon, collotype, bromoil. It stands where a silver paper stands. Order: the negative's density, the
// amount of colourant, its shape and texture, the press, the coat, the colour, the relief. Domain: light at
// the emulsion in; display-linear positive out. A brushed coat makes the print larger than the picture.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo {

namespace AltPrint {

/// What a negative is printed on and how.
struct Job {
    const PaperProfile& paper;
    const RenderOptions& options;
    /// Coverage of the picture window in the film's rebate; null without one.
    const Plane* windowMask = nullptr;
};

/// A negative as a handmade process sees it.
struct Negative {
    Plane density;   ///< of a silver negative, absolute; empty for a colour negative
    float d0 = 0.0f; ///< the silver negative's density of a grey card
    RGBImage db;     ///< of a colour negative, each layer's distance from its grey card
};

/// Units: pxUm micrometres of film a pixel. Errors: those of the film stages.
Negative developNegative(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                         double pxUm);

/// Prints one plane of density in one coat; d0 is the density of a grey card.
RGBImage printOneCoat(Plane density, float d0, const Job& job);

} // namespace AltPrint

namespace Film {

/// The whole print. Units: pxUm micrometres of film a pixel; the print's own scale is options.printPxUm.
RGBImage renderAlt(RGBImage light, const DevelopedFilm& film, const AltPrint::Job& job, double pxUm);

} // namespace Film

} // namespace tamlo
