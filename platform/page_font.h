// The face of a sheet's letters as Cairo draws it, and lines set in it.
#pragma once

#include "platform/page_canvas.h"
#include "platform/set_line.h"

#include <cairo.h>

#include <string>
#include <string_view>
#include <vector>

namespace tamlo::platform {

/// Letters of one line that Cairo draws at once, with what they stand for.
struct PageGlyphs {
    std::string utf8;
    std::vector<cairo_glyph_t> glyphs;
    std::vector<cairo_text_cluster_t> clusters;
    bool rightToLeft = false;
};

class PageLetters {
public:
    /// Errors: PlatformError when a library fails.
    PageLetters();
    ~PageLetters();
    PageLetters(const PageLetters&) = delete;
    PageLetters& operator=(const PageLetters&) = delete;

    cairo_font_face_t* face() const { return face_; }
    double width(std::string_view utf8, const PageFont& font) const;
    /// The line from (x, y) on, its baseline's left end, in pieces of one direction.
    std::vector<PageGlyphs> line(std::string_view utf8, double x, double y, const PageFont& font) const;

private:
    LetterCase letters_;
    cairo_font_face_t* face_ = nullptr;
};

} // namespace tamlo::platform
