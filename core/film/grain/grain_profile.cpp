#include "core/film/grain/grain_profile.h"

namespace tamlo {

GrainParams Film::grainProfile(const FilmProfile& film, const RenderOptions& options)
{
    GrainParams grain = film.grain.value_or(GrainParams{});
    if (options.grainRms && grain.amountRms) grain.amount = grain.amountRms;
    return grain;
}

} // namespace tamlo
