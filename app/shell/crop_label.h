// What a crop that is being made takes of the film, in words.
#pragma once

#include <string>

namespace tamlo {

class AppModel;

/// "Full frame · 24.1 × 16 mm", of the whole frame and of a card with their ratio; empty outside of a
/// session.
std::string cropLabel(const AppModel& model);

} // namespace tamlo
