// Numbers as text for the user.
#pragma once

#include <string>

namespace tamlo::Fmt {

/// At most `digits` digits after the point, without trailing zeros: 1.50 gives "1.5", 2.00 gives "2".
std::string number(double value, int digits);

} // namespace tamlo::Fmt
