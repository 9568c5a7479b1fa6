#include "platform/page_font.h"

#include "platform/carried_fonts.h"
#include "platform/platform_error.h"

#include <cairo-ft.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <new>

namespace tamlo::platform {
namespace {

/// No file name is longer.
constexpr std::size_t kLongestLine = 1024;
/// Of the box that stands for a missing letter: that of every letter of the face.
constexpr double kLetterEm = 1233.0 / 2048.0;

/// What Cairo draws a face from; goes with Cairo's last use of it.
struct DrawnFace {
    DrawnFace() { checkFreeType(FT_Init_FreeType(&library), "start"); }
    ~DrawnFace()
    {
        FT_Done_Face(face);
        FT_Done_FreeType(library);
    }

    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

std::string utf8Of(const std::u16string& text, std::size_t begin, std::size_t end)
{
    std::string out;
    icu::UnicodeString(text.data() + begin, static_cast<std::int32_t>(end - begin)).toUTF8String(out);
    return out;
}

/// Letters that follow each other and stand for the same text.
std::size_t clusterEnd(const std::vector<SetLetter>& letters, std::size_t at, std::size_t end)
{
    std::size_t next = at;
    while (next < end && letters[next].cluster == letters[at].cluster) ++next;
    return next;
}

double kerned(double widthEm, std::size_t gaps, const PageFont& font)
{
    return widthEm * font.sizePt + static_cast<double>(gaps) * font.kerningPt;
}

} // namespace

PageLetters::PageLetters() : letters_({CarriedFonts::dejaVuSansMono()}, kLetterEm)
{
    auto drawn = std::make_unique<DrawnFace>();
    const auto bytes = CarriedFonts::dejaVuSansMono();
    checkFreeType(
        FT_New_Memory_Face(drawn->library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &drawn->face),
        "open a carried face");
    static const cairo_user_data_key_t key{};
    face_ = cairo_ft_font_face_create_for_ft_face(drawn->face, FT_LOAD_NO_HINTING);
    const auto destroy = [](void* data) { delete static_cast<DrawnFace*>(data); };
    if (cairo_font_face_set_user_data(face_, &key, drawn.get(), destroy) != CAIRO_STATUS_SUCCESS) {
        cairo_font_face_destroy(face_);
        throw std::bad_alloc();
    }
    drawn.release();
}

PageLetters::~PageLetters()
{
    cairo_font_face_destroy(face_);
}

double PageLetters::width(std::string_view utf8, const PageFont& font) const
{
    const SetLine line = letters_.set(utf8, kLongestLine);
    return line.letters.empty() ? 0.0 : kerned(line.widthEm, line.letters.size() - 1, font);
}

std::vector<PageGlyphs> PageLetters::line(std::string_view utf8, double x, double y,
                                          const PageFont& font) const
{
    const SetLine line = letters_.set(utf8, kLongestLine);
    std::vector<PageGlyphs> out;
    for (std::size_t at = 0; at < line.letters.size();) {
        const std::size_t run = line.letters[at].run;
        std::size_t end = at;
        while (end < line.letters.size() && line.letters[end].run == run) ++end;
        const SetLine::Run& piece = line.runs[run];
        PageGlyphs glyphs;
        glyphs.rightToLeft = piece.rightToLeft;
        glyphs.utf8 = utf8Of(line.text, piece.begin, piece.end);
        for (std::size_t first = at; first < end;) {
            const std::size_t next = clusterEnd(line.letters, first, end);
            std::size_t textEnd = piece.end;
            if (piece.rightToLeft)
                textEnd = first == at ? piece.end : line.letters[first - 1].cluster;
            else if (next < end)
                textEnd = line.letters[next].cluster;
            const auto bytes = utf8Of(line.text, line.letters[first].cluster, textEnd).size();
            glyphs.clusters.push_back({static_cast<int>(bytes), static_cast<int>(next - first)});
            for (; first < next; ++first) {
                const SetLetter& letter = line.letters[first];
                glyphs.glyphs.push_back(
                    {letter.index, x + kerned(letter.xEm, first, font), y - letter.yEm * font.sizePt});
            }
        }
        if (piece.rightToLeft) std::ranges::reverse(glyphs.clusters); // always in the order of reading
        at = end;
        out.push_back(std::move(glyphs));
    }
    return out;
}

} // namespace tamlo::platform
