// Stages of the darkroom that are not built yet, all in this one place. Each passes its input through
// unchanged, so that the order of the pipeline stands complete from the start, and knows when it would have
// acted, so that whoever asked for it is told. A stage that comes takes the place of its placeholder where
// that is called; with the placeholder and its line in kPlaceholders the note goes too.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Pending {

struct Placeholder {
    const char* textKey; ///< what is left out
    /// The choices ask for it.
    bool (*leftOut)(const FilmProfile&, const PaperProfile&, const RenderOptions&);
    RGBImage operator()(RGBImage image) const { return image; }
};

/// The film's edge, drawn ahead of the emulsion.
inline constexpr Placeholder drawRebate{
    "stage.rebate", [](const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options) {
        return options.frameStyle != FrameStyle::none && !film.isInstant() && paper.repro != "crt";
    }};
/// Three plates through three filters.
inline constexpr Placeholder renderTricolor{
    "stage.tricolor",
    [](const FilmProfile& film, const PaperProfile&, const RenderOptions&) { return film.isTricolor(); }};
/// A plate seen as itself.
inline constexpr Placeholder viewPlate{
    "stage.plateView", [](const FilmProfile& film, const PaperProfile& paper, const RenderOptions&) {
        return film.isCollodion() && paper.isPlate();
    }};
/// The television screen, photographed again.
inline constexpr Placeholder showOnScreen{
    "stage.screen",
    [](const FilmProfile&, const PaperProfile& paper, const RenderOptions&) { return paper.repro == "crt"; }};
/// Every placeholder that the user would miss.
inline constexpr const Placeholder* kPlaceholders[] = {&drawRebate, &renderTricolor, &viewPlate,
                                                       &showOnScreen};

/// Lays the rebate onto the paper; there is none to lay until it is drawn.
inline RGBImage compositeWindow(RGBImage positive)
{
    return positive;
}
/// Takes the halation ring from a plate on an opaque base.
inline DevelopedFilm withoutGlassOnOpaque(DevelopedFilm film)
{
    return film;
}

} // namespace tamlo::Pending
