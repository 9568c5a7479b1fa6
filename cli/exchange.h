// tamlo check, import and export: profiles and presets that come from elsewhere or go there.
#pragma once

#include "cli/arguments.h"
#include "core/profiles/catalogue/profile_store.h"

#include <iosfwd>

namespace tamlo::cli {

/// A line for each file that is a profile or a preset; what is wrong with the others on standard error.
/// Returns the exit status: 1 when a file has a fault.
int checkFiles(const CheckArguments& arguments, const ProfileStore& store, std::ostream& results);

/// Takes files into the user's root, each whole or not at all. Returns the exit status.
int importFiles(const ImportArguments& arguments, ProfileStore& store, std::ostream& results);

/// Writes a profile or a preset to a file and tells its path.
/// Errors: UsageError for an unknown kind or id; those of the store.
void exportOne(const ExportArguments& arguments, const ProfileStore& store, std::ostream& results);

} // namespace tamlo::cli
