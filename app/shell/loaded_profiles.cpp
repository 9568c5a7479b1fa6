#include "app/shell/loaded_profiles.h"

#include "app/project/process_rules.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/profile_error.h"

namespace tamlo {

namespace {

template <typename Load>
auto loaded(Load&& load) -> std::optional<decltype(load())>
{
    try {
        return load();
    } catch (const ProfileError&) {
        return std::nullopt;
    } catch (const TamloError&) {
        return std::nullopt;
    }
}

} // namespace

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
