// Which of the options that were asked for can't act with a film, a lens and a paper: an option for another
// kind of material, one whose companion is not chosen, one that another decides over. Whoever takes choices
// from a user asks here, so that nothing is left out in silence. The rules stand in one table; a test renders
// each of them.
#pragma once

#include "core/pipeline/backend.h"

#include <set>
#include <string>
#include <vector>

namespace tamlo::Pipeline {

struct IdleOption {
    std::string key;
    std::string reasonKey; ///< key of the text that tells why
};

/// The options of `asked` that differ from their default and still change nothing, in the order of the option
/// table.
std::vector<IdleOption> idleOptions(const RenderChoices& choices, const std::set<std::string>& asked);

} // namespace tamlo::Pipeline
