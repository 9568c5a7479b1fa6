// What the pictures of a run are developed with: the profiles and options that the command line and its
// option file name, resolved and checked before any picture is opened.
#pragma once

#include "cli/arguments.h"
#include "core/io/recipe.h"
#include "core/pipeline/backend.h"
#include "core/profiles/catalogue/profile_store.h"

#include <set>
#include <string>
#include <vector>

namespace tamlo::cli {

struct DevelopChoices {
    RenderChoices render;
    /// The seed is one for all pictures; else each takes that of its file name.
    bool seedIsGiven = false;
    std::string film, lens, paper, preset; ///< ids
    std::optional<std::string> fit;        ///< how the film's frame takes a picture in, where that was chosen
    /// What a print remembers: all but the options, which a picture's own seed completes.
    Recipe recipe;
    /// Keys of the options that the user gave by hand or in a file, beside the preset's.
    std::set<std::string> asked;
    /// What could not be taken as it is, and what was asked for and can't act.
    std::vector<std::string> notes;
};

/// Options, from the lowest to the highest: the defaults, the film's own format, the preset or the recipe of
/// a print, the option file, --set in order, options by a name of their own and --seed. A key may stand in
/// the file in its older camelCase spelling; one that nobody knows is noted. Errors: UsageError: an unknown
/// film, lens, paper or filter (names the nearest), a filter in another's slot, a setting that is not
/// allowed; TamloError io: an option file that can't be read or does not hold options.
DevelopChoices resolveChoices(const RenderArguments& arguments, const ProfileStore& store);

} // namespace tamlo::cli
