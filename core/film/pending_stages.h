// Stages of the darkroom that are not built yet, all in this one place. Each passes its input through
// unchanged, so that the order of the pipeline stands complete from the start; a stage that comes replaces
// its placeholder here and at its call.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/developed_film.h"

#include <utility>

namespace tamlo::Pending {

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
/// Offset, inkjet, the screen, and added surface structure.
inline RGBImage applyRepro(RGBImage positive)
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
