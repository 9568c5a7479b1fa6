// Stages of the darkroom that are not built yet, all in this one place. Each passes its input through
// unchanged, so that the order of the pipeline stands complete from the start, and knows when it would have
// acted, so that whoever asked for it is told. A stage that comes takes the place of its placeholder where
// that is called; with the placeholder and its line in kPlaceholders the note goes too.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Pending {

struct Placeholder {
    const char* textKey; ///< what is left out
    /// The choices ask for it.
    bool (*leftOut)(const FilmProfile&, const PaperProfile&, const RenderOptions&);
    RGBImage operator()(RGBImage image) const { return image; }
};

/// Instant film of one silver layer.
inline constexpr Placeholder renderInstantMono{
    "stage.instant",
    [](const FilmProfile& film, const PaperProfile&, const RenderOptions&) { return film.isMonoInstant(); }};
/// Instant film of three dye layers.
inline constexpr Placeholder renderInstant{
    "stage.instant", [](const FilmProfile& film, const PaperProfile&, const RenderOptions&) {
        return film.isInstant() && !film.isMonoInstant();
    }};
/// The card round an instant picture.
inline constexpr Placeholder addInstantFrame{
    "stage.card", [](const FilmProfile& film, const PaperProfile&, const RenderOptions& options) {
        return film.isInstant() && film.frame && options.instantFrame;
    }};

/// Every placeholder that the user would miss.
inline constexpr const Placeholder* kPlaceholders[] = {&renderInstantMono, &renderInstant, &addInstantFrame};

} // namespace tamlo::Pending
