// What the pictures of a run are developed with: the profiles and options that the command line and its
// option file name, resolved and checked before any picture is opened.
#pragma once

#include "cli/arguments.h"
#include "core/pipeline/backend.h"
#include "core/profiles/profile_store.h"

namespace tamlo::cli {

struct DevelopChoices {
    RenderChoices render;
    /// The seed is one for all pictures; else each takes that of its file name.
    bool seedIsGiven = false;
    std::vector<std::string> notes; ///< what the preset holds that could not be taken as it is
};

/// Options, from the lowest to the highest: the defaults, the film's own format, the preset, the option file,
/// --set in order, options by a name of their own and --seed. A key may stand in the file in its older
/// camelCase spelling. Errors: UsageError: an unknown film, lens, paper or filter (names the nearest), a
/// setting that is not allowed; TamloError io: an option file that can't be read or does not hold options.
DevelopChoices resolveChoices(const RenderArguments& arguments, const ProfileStore& store);

} // namespace tamlo::cli
