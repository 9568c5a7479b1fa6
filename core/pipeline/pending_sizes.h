// What the stages that are not built yet will add to a picture's size, all in this one place. Each adds
// nothing, as its placeholder in core/film/pending_stages.h draws nothing; a stage that comes replaces both.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/film_profile.h"
#include "core/profiles/paper_profile.h"
#include "core/profiles/render_options.h"

namespace tamlo::Pending {

/// Size of a picture with its rebate.
inline Size withRebate(Size picture)
{
    return picture;
}
/// Size of an instant picture with its card.
inline Size withCard(Size picture)
{
    return picture;
}
/// Size of a sheet in its mat.
inline Size withMat(Size sheet)
{
    return sheet;
}
/// Size of a sheet on its table.
inline Size withTable(Size sheet)
{
    return sheet;
}
/// Long side of a photographed screen: it prints as large as any print.
inline double screenLongCm(const RenderOptions& options)
{
    return options.printCm;
}
/// What a reproduction's structure asks for: how much it enlarges the picture, how far above the output it is
/// computed, and what of it can be seen.
struct ReproRaster {
    double enlargement = 1.0;
    int supersample = 1;
    bool dotsDrawn = false;
    bool linesDrawn = false;
};
inline ReproRaster reproRaster()
{
    return {};
}
/// Distance from the picture to the plate mark, pixels.
inline double plateEdgePx()
{
    return 0.0;
}

} // namespace tamlo::Pending
