#include "app/shell/loaded_profiles.h"

#include "app/project/loaded.h"
#include "app/project/process_rules.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo {

std::optional<FilmProfile> filmOf(const ProcessSettings& settings, const ProfileStore& store)
{
    return loaded([&] { return store.film(settings.stock); });
}

std::optional<LensProfile> lensOf(const ProcessSettings& settings, const ProfileStore& store)
{
    return loaded([&] { return store.lens(settings.lens); });
}

std::optional<PaperProfile> paperOf(const ProcessSettings& settings, const ProfileStore& store)
{
    return loaded([&] { return store.paper(resolvedPaper(settings, store)); });
}

} // namespace tamlo
