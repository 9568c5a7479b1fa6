// How the catalogue is grouped and ordered for whoever picks from it: a group is the key of its title's text,
// or empty for what stands before all groups.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/filter_profile.h"
#include "core/profiles/formats/paper_profile.h"

#include <string>
#include <string_view>

namespace tamlo::CatalogueGroups {

/// A place in a picker's list: groups in their order, then places within, then names.
struct Place {
    std::string_view group; ///< key of the title
    int groupOrder = 0;
    int order = 0;
};

/// Neutral first, then black and white (films that see colours as no panchromatic film does apart), colour,
/// slide, instant, three-colour, glass plates.
Place ofFilm(const FilmProfile& film);
/// Lenses have no field for it: by id.
Place ofLens(std::string_view id);
Place ofPaper(const PaperProfile& paper, std::string_view id);
Place ofFilter(const FilterProfile& filter, std::string_view id);

/// The brand that a film's name begins with, in lower case, renamed brands under their later name.
std::string filmBrand(std::string_view name);

} // namespace tamlo::CatalogueGroups
