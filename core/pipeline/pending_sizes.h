// What the stages that are not built yet will add to a picture's size, all in this one place. Each adds
// nothing, as its placeholder in core/pipeline/pending_stages.h draws nothing; a stage that comes replaces
// both.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Pending {

/// Size of a picture with its rebate.
inline Size withRebate(Size picture)
{
    return picture;
}
/// Long side of a photographed screen: it prints as large as any print.
inline double screenLongCm(const RenderOptions& options)
{
    return options.printCm;
}

} // namespace tamlo::Pending
