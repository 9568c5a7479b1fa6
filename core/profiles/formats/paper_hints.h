// What is allowed in a paper's profile but hardly meant: told beside a check, and never a reason to refuse
// it.
#pragma once

#include "core/profiles/formats/paper_profile.h"

#include <string>
#include <vector>

namespace tamlo::ProfileValidator {

/// A sentence for each doubtful value: coats whose pigment doesn't hold back the light that they print from,
/// a press that takes over so little ink that most shadows go solid.
std::vector<std::string> hints(const PaperProfile& paper);

} // namespace tamlo::ProfileValidator
