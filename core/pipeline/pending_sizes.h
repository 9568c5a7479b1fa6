// What the stages that are not built yet will add to a picture's size, all in this one place. Each adds
// nothing, as its placeholder in core/pipeline/pending_stages.h draws nothing; a stage that comes replaces
// both.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Pending {

/// Size of an instant picture with its card.
inline Size withCard(Size picture)
{
    return picture;
}

} // namespace tamlo::Pending
