// A line of text cut into pieces that one face sets in one direction, in the order in which they stand from
// left to right. Which face holds a letter is asked of the caller, so that this knows no font.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo::platform {

/// The piece [begin, end) of TextRuns::text.
struct TextRun {
    std::size_t begin = 0;
    std::size_t end = 0;
    int face = -1; ///< -1: no face has this letter
    bool rightToLeft = false;
};

struct TextRuns {
    std::u16string text; ///< composed, on one line, without control characters
    std::vector<TextRun> visual;
};

/// Cuts at changes of direction, face and script; a letter with its accents stays together, and one that no
/// face has is a run of its own. `has(face, c)` tells whether one of the `faces` draws a code point.
/// Errors: PlatformError when the Unicode library fails.
TextRuns textRuns(std::string_view utf8, std::size_t longest, int faces,
                  const std::function<bool(int face, char32_t c)>& has);

} // namespace tamlo::platform
