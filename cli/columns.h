// Words of any alphabet in the columns of a table. Characters are counted, not bytes, as a terminal counts
// them, near enough: no letter of our texts is wide or composed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace tamlo::cli {

inline std::size_t columnsOf(const std::string& text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

/// Filled up with spaces at its right or its left; a longer text stays whole.
inline std::string leftAligned(const std::string& text, std::size_t width)
{
    return text + std::string(width - std::min(width, columnsOf(text)), ' ');
}
inline std::string rightAligned(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, columnsOf(text)), ' ') + text;
}

} // namespace tamlo::cli
