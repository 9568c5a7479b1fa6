// The recipe inside a print: told by `tamlo show recipe`, and taken by --like for another photograph.
#pragma once

#include "cli/arguments.h"
#include "core/io/recipe.h"
#include "core/pipeline/backend.h"
#include "core/profiles/presets/process_settings.h"

#include <iosfwd>
#include <set>

namespace tamlo::cli {

/// What --like lays below everything else that the command line says.
struct LikePrint {
    ProcessSettings frame;
    std::optional<std::string> fit;
    std::set<std::string> given; ///< keys that the recipe decides, also those at their defaults
    JSONValue embedded;          ///< profiles that travel in the print, and stand before the user's own
    std::vector<std::string> notes;
};

/// The print of --like. Another film than the recipe's brings its own format, where the recipe's film had
/// its own too. Errors: those of readRecipe, and of a travelling profile that is none.
LikePrint readLike(const RenderArguments& arguments, const ProfileStore& store);

/// Profiles of a recipe that are not carried in the program. The ids are the recipe's.
JSONValue travellingProfiles(const Recipe& recipe, const RenderChoices& render, const ProfileStore& store);

/// Film, lens, paper, seed, version and every option off its default, with the command line that makes the
/// same print; with --json the recipe as it stands. Errors: those of readRecipe.
void showRecipe(const ShowArguments& arguments, const ProfileStore& store, std::ostream& out);

} // namespace tamlo::cli
