// The vector instructions that the passes run on, chosen when the program starts.
#pragma once

#include <string>

namespace tamlo {

/// "AVX2", "SSE4" and so on.
std::string vectorSet();

} // namespace tamlo
