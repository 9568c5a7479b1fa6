// Completion scripts for bash, zsh and fish, written from the commands as --help tells them, the option table
// and the catalogue: commands, options, ids of films, lenses, papers, filters and recipes, keys and values of
// --set.
#pragma once

#include "core/profiles/catalogue/profile_store.h"

#include <string>

namespace tamlo::cli {

/// Errors: UsageError for another shell.
std::string completionScript(const std::string& shell, const ProfileStore& store);

} // namespace tamlo::cli
