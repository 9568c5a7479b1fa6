// One line of text as a picture, in the bold sans-serif faces that the program carries: the same letters on
// every machine, since no font of the machine is ever asked for. Shaped by HarfBuzz with the bidirectional
// order of Unicode, drawn by FreeType from unhinted outlines, so that a line is the same shape at every size.
// What both faces lack is drawn as a box. Lengths are in ems until a line is drawn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace tamlo::platform {

/// Where a line stands in a bitmap, in pixels.
struct TextPlacement {
    double emPx = 0.0;
    double originX = 0.0;   ///< left end of the line
    double baselineY = 0.0; ///< height of the baseline above the bitmap's bottom
};

class TextLine {
public:
    /// Letters beyond this many are not set: no sheet is wide enough for them.
    static constexpr std::size_t kLongestLine = 16'384;

    /// UTF-8; invalid bytes count as U+FFFD. Line ends and tabs count as spaces, other control characters as
    /// nothing. Errors: PlatformError when a library fails.
    explicit TextLine(std::string_view text);
    ~TextLine();
    TextLine(TextLine&&) noexcept;
    TextLine& operator=(TextLine&&) noexcept;

    /// Advance width of the whole line.
    double widthEm() const noexcept;

    /// Coverage 0...255, row after row from the top; what lies outside the bitmap is left out.
    /// Errors: PlatformError for letters of more than 50,000 pixels.
    std::vector<std::uint8_t> draw(std::size_t width, std::size_t height, const TextPlacement& place) const;

private:
    struct Glyphs;
    std::unique_ptr<Glyphs> glyphs_;
};

} // namespace tamlo::platform
