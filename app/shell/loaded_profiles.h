// The profiles that settings name, where they load: what is offered and how a crop follows must not fail for
// a profile that somebody deleted.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/presets/process_settings.h"

#include <optional>

namespace tamlo {

class ProfileStore;

std::optional<FilmProfile> filmOf(const ProcessSettings& settings, const ProfileStore& store);
std::optional<LensProfile> lensOf(const ProcessSettings& settings, const ProfileStore& store);
/// The paper that the print is really on.
std::optional<PaperProfile> paperOf(const ProcessSettings& settings, const ProfileStore& store);

} // namespace tamlo
