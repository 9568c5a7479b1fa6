// Text as people write it, in UTF-8: letters of every script, not bytes. Invalid bytes count as U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tamlo::platform {

/// Whether the bytes are text at all: valid UTF-8.
bool isUtf8(std::string_view bytes);

/// The text itself where it is UTF-8; else its bytes as Latin-1.
std::string asUtf8(std::string_view text);

/// Lower case by the Unicode rules of no language in particular.
std::string lowerCased(std::string_view text);
std::string upperCased(std::string_view text);

/// Without white space and line feeds at both ends.
std::string trimmed(std::string_view text);

/// Each run of white space becomes one replacement.
std::string whiteSpaceReplaced(std::string_view text, std::string_view replacement);

/// The first `count` characters as a reader counts them: a letter with its accents is one.
std::string firstCharacters(std::string_view text, std::size_t count);
std::string lastCharacters(std::string_view text, std::size_t count);
std::size_t characterCount(std::string_view text);

/// Bytes whose order is the natural order of texts (Unicode collation): case and accents count last, and a
/// run of digits counts as its number, "Delta 400" before "Delta 3200".
std::string naturalSortKey(std::string_view text);

} // namespace tamlo::platform
