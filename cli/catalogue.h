// Names that a user types, looked up in the catalogue before any work begins. An id is taken as it is; a
// name, or the part of one that photographers say ("Tri-X", "tri-x 400", "Portra"), as the profile that it
// can only mean.
#pragma once

#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"

#include <string>
#include <vector>

namespace tamlo::cli {

/// The store's kind by what a user types: "film" or "films". Errors: UsageError naming what there is.
ProfileStore::Kind kindNamed(const std::string& text);

/// The words that stand for a kind, in the order of the catalogue: "film" and the like, or "films".
std::vector<std::string> singularKinds();
std::vector<std::string> pluralKinds();

/// What tamlo list takes beside the kinds.
inline constexpr std::string_view kOptionsWord = "options";
std::vector<std::string> listedKinds();

/// The id of the profile that a text names. Of several speeds of one film the program's own default is taken,
/// with a note. Errors: UsageError naming the nearest profile when there is none of this name, or all that it
/// may mean.
std::string profileNamed(const ProfileStore& store, ProfileStore::Kind kind, const std::string& text,
                         std::vector<std::string>& notes);
/// The same where a note has no place.
std::string profileNamed(const ProfileStore& store, ProfileStore::Kind kind, const std::string& text);

/// The paper that the command line prints a film on where nothing is said: a negative in colour goes to RA-4.
std::string defaultPaper(const FilmProfile& film);

/// A film's speed (ISO): what its profile says, else the number in its name; nothing where it has none.
std::optional<int> filmSpeed(const ProfileStore& store, const std::string& id);

/// The name of a profile in the language in force; its id where it has none.
template <typename Profile>
std::string titleOf(const Profile& profile, const std::string& id)
{
    return Loc::pick(profile.name.value_or(id), profile.nameEn);
}

} // namespace tamlo::cli
