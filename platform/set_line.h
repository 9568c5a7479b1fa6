// A line of text set in carried faces: which letter of which face stands where, in ems. Shaped by HarfBuzz
// with the bidirectional order of Unicode. What draws it is the caller's.
#pragma once

#include <ft2build.h>
#include <hb.h>
#include FT_FREETYPE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo::platform {

/// Both libraries' view of one carried face.
class CarriedFace {
public:
    /// Errors: PlatformError.
    CarriedFace(FT_Library library, std::span<const std::uint8_t> bytes);
    ~CarriedFace();
    CarriedFace(const CarriedFace&) = delete;
    CarriedFace& operator=(const CarriedFace&) = delete;

    bool has(char32_t c) const { return FT_Get_Char_Index(outlines_, c) != 0; }
    hb_font_t* shaper() const { return shaper_; }
    FT_Face outlines() const { return outlines_; }
    double unitEm() const { return 1.0 / static_cast<double>(outlines_->units_per_EM); }

private:
    FT_Face outlines_ = nullptr;
    hb_font_t* shaper_ = nullptr;
};

/// A letter of the line, left to right.
struct SetLetter {
    int face = -1;      ///< -1: no face has it
    unsigned index = 0; ///< in that face
    double xEm = 0, yEm = 0;
    /// What it stands for begins here in SetLine::text; letters of one cluster begin at the same place.
    std::size_t cluster = 0;
    std::size_t run = 0; ///< the piece of the line that it belongs to
};

struct SetLine {
    struct Run {
        std::size_t begin = 0, end = 0; ///< in the text
        bool rightToLeft = false;
    };
    std::u16string text;
    std::vector<Run> runs; ///< left to right
    std::vector<SetLetter> letters;
    double widthEm = 0;
};

/// Faces to set lines in, the first that has a letter before the others.
class LetterCase {
public:
    /// missingEm: the width of a letter that no face has. Errors: PlatformError when a library fails.
    LetterCase(const std::vector<std::span<const std::uint8_t>>& faces, double missingEm);

    FT_Library library() const { return library_.get(); }
    const CarriedFace& face(int i) const { return *faces_[static_cast<std::size_t>(i)]; }
    /// UTF-8; at most so many letters. Errors: PlatformError when a library fails.
    SetLine set(std::string_view utf8, std::size_t longest) const;

private:
    struct LibraryCloser {
        void operator()(FT_Library library) const noexcept { FT_Done_FreeType(library); }
    };

    std::unique_ptr<FT_LibraryRec_, LibraryCloser> library_;
    std::vector<std::unique_ptr<CarriedFace>> faces_;
    double missingEm_;
};

/// Throws what FreeType could not do.
void checkFreeType(FT_Error error, const char* what);

} // namespace tamlo::platform
