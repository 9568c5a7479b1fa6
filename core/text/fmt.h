// Numbers as text for the user.
#pragma once

#include <string>

namespace tamlo::Fmt {

/// At most `digits` digits after the point, without trailing zeros: 1.50 gives "1.5", 2.00 gives "2".
std::string number(double value, int digits);

/// Six significant digits, as short as it goes: 0.00001 gives "1e-05".
std::string significant(double value);

} // namespace tamlo::Fmt
