// Which program this is: previews that another build has made may look different.
#pragma once

#include <string>

namespace tamlo {

/// The version; in a development tree with the commit that it was configured at.
std::string programBuild();

} // namespace tamlo
