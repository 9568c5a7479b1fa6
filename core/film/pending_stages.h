// Stages of the darkroom that are not built yet, all in this one place. Each passes its input through
// unchanged, so that the order of the pipeline stands complete from the start; a stage that comes replaces
// its placeholder here and at its call.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/developed_film.h"
#include "core/profiles/render_options.h"

#include <optional>
#include <utility>

namespace tamlo::Pending {

/// Age, loading and intensification of a film.
struct FilmStateResult {
    FilmProfile film;
    std::optional<Vec3d> layerEV; // stops
    double exposureShift = 0.0;   // stops
};
inline FilmStateResult filmState(const FilmProfile& film, const RenderOptions&)
{
    return {film, std::nullopt, 0.0};
}

// Stages of the driver, in the order of the pipeline.

/// Cuts the tilted crop from the source.
inline RGBImage rotateCropInput(RGBImage image)
{
    return image;
}
/// Cuts an instant picture to its card's aspect.
inline RGBImage cropToCard(RGBImage image)
{
    return image;
}
/// Graduated filter.
inline RGBImage applyGrad(RGBImage image)
{
    return image;
}
/// Ray filter.
inline RGBImage applyRays(RGBImage image)
{
    return image;
}
/// The lens.
inline RGBImage applyOptics(RGBImage image)
{
    return image;
}
/// Colour-cut filter.
inline RGBImage applyCut(RGBImage image)
{
    return image;
}
/// Diffusion filter.
inline RGBImage applyDiffusion(RGBImage image)
{
    return image;
}
/// The film's edge, drawn ahead of the emulsion.
inline RGBImage drawRebate(RGBImage image)
{
    return image;
}
/// Takes the halation ring from a plate on an opaque base.
inline DevelopedFilm withoutGlassOnOpaque(DevelopedFilm film)
{
    return film;
}
/// Slide onto reversal paper.
inline RGBImage renderSlidePrint(RGBImage light)
{
    return light;
}
/// Slide as a transparency.
inline RGBImage renderSlide(RGBImage light)
{
    return light;
}
/// A positive under the scanner.
inline RGBImage scanPositive(RGBImage positive)
{
    return positive;
}
/// Three plates through three filters.
inline RGBImage renderTricolor(RGBImage light)
{
    return light;
}
/// A plate seen as itself.
inline RGBImage viewPlate(RGBImage light)
{
    return light;
}
/// Instant film of one silver layer.
inline RGBImage renderInstantMono(RGBImage light)
{
    return light;
}
/// Instant film of three dye layers.
inline RGBImage renderInstant(RGBImage light)
{
    return light;
}
/// A negative in an alternative process.
inline RGBImage renderAlt(RGBImage light)
{
    return light;
}
/// A silver negative and its print.
inline RGBImage renderBW(RGBImage light)
{
    return light;
}
/// A colour negative on black-and-white paper.
inline RGBImage renderColorOnBWPaper(RGBImage light)
{
    return light;
}
/// Offset, inkjet, the screen, and added surface structure.
inline RGBImage applyRepro(RGBImage positive)
{
    return positive;
}
/// The scanner's optics, ceiling, sharpening and clip.
inline RGBImage applyScan(RGBImage positive)
{
    return positive;
}
/// Lays the rebate onto the paper.
inline RGBImage compositeWindow(RGBImage positive)
{
    return positive;
}
/// Presses the plate mark into the sheet.
inline RGBImage embossPlate(RGBImage sheet)
{
    return sheet;
}
/// Mat, embossed line, stamps, table.
inline RGBImage finishSheet(RGBImage sheet)
{
    return sheet;
}
/// The card round an instant picture.
inline RGBImage addInstantFrame(RGBImage picture)
{
    return picture;
}

} // namespace tamlo::Pending
