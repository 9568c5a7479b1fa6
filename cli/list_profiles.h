// tamlo list and tamlo show: what the catalogue holds, on standard output.
#pragma once

#include "cli/arguments.h"
#include "core/profiles/catalogue/profile_store.h"

#include <iosfwd>

namespace tamlo::cli {

/// A line for each profile, in the order of a picker: id, group, how well grounded it is and name in columns;
/// with --json an array of objects with the keys "id", "name", "group", and where it has them "type",
/// "fidelity"; for presets "order", "film", "lens", "paper" and "builtin". A file of the user that can't be
/// read is told on standard error.
/// Errors: UsageError for an unknown kind; those of the store.
void listProfiles(const ListArguments& arguments, const ProfileStore& store, std::ostream& out);

/// The profile's JSON as the catalogue holds it.
/// Errors: UsageError for an unknown kind or id.
void showProfile(const ShowArguments& arguments, const ProfileStore& store, std::ostream& out);

} // namespace tamlo::cli
