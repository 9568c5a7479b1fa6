// Parsing of JSON text at the door, with the system's error in place of the library's.
#pragma once

#include "core/profiles/json_codec.h"

#include <string_view>

namespace tamlo {

/// Errors: ProfileError invalid "not JSON: …".
Json parseJsonText(std::string_view text);

} // namespace tamlo
