// Names that a user types, looked up in the catalogue before any work begins.
#pragma once

#include "core/profiles/profile_store.h"

#include <string>
#include <vector>

namespace tamlo::cli {

/// The store's kind by what a user types: "film" or "films". Errors: UsageError naming what there is.
ProfileStore::Kind kindNamed(const std::string& text);

/// The words that stand for a kind, in the order of the catalogue: "film" and the like, or "films".
std::vector<std::string> singularKinds();
std::vector<std::string> pluralKinds();

/// Errors: UsageError naming the nearest profile when there is none of this name.
void requireProfile(const ProfileStore& store, ProfileStore::Kind kind, const std::string& id);

} // namespace tamlo::cli
