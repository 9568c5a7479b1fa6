// Rows of the materials' page: a film or a paper measured, in numbers rounded to what they mean, with its
// plot and with what is off its profile.
#pragma once

#include "core/profiles/catalogue/profile_store.h"

#include <string>
#include <vector>

namespace tamlo::Materials {

struct Row {
    std::string id;
    std::string text; ///< one line of a table
    std::string plot; ///< SVG
    std::vector<std::string> faults;
};

std::string filmHead();
std::string paperHead();
/// A film, and its print of a grey card on the paper that it starts with. Errors: those of a measurement.
Row filmRow(const ProfileStore& store, const std::string& id);
/// A paper, printed from a usual film that suits it.
Row paperRow(const ProfileStore& store, const std::string& id);

} // namespace tamlo::Materials
