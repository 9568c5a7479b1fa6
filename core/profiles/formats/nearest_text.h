// "Did you mean": the nearest of some known texts by edit distance.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tamlo {

/// Number of single-character insertions, deletions and replacements from one text to the other
/// (Levenshtein), by bytes, upper and lower case of ASCII alike.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The nearest of the known texts, the first of equals; nothing when none shares at least half of the word.
std::optional<std::string> nearestText(std::string_view word, std::span<const std::string> known);

} // namespace tamlo
