#include "platform/text_line.h"

#include "platform/carried_fonts.h"
#include "platform/platform_error.h"
#include "platform/set_line.h"

#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <string>

namespace tamlo::platform {
namespace {

constexpr double kLargestEmPx = 50'000.0; // with its reach below the end of FreeType's coordinates, 262,144

// The box for a letter that no face has, in ems; taste: a capital's height and stroke.
constexpr double kBoxAdvance = 0.66, kBoxLeft = 0.08, kBoxRight = 0.58, kBoxTop = 0.72, kBoxStroke = 0.08;

/// A letter's outline in pixels of the bitmap, y upward; FreeType reads it as it reads its own.
class PixelOutline {
public:
    /// units: pixels a font unit.
    PixelOutline(const FT_Outline& from, double units, double x, double y)
        : points_(from.points, from.points + from.n_points),
          tags_(from.tags, from.tags + from.n_points),
          contours_(from.contours, from.contours + from.n_contours),
          flags_(from.flags)
    {
        for (FT_Vector& point : points_) {
            point.x = std::lround((x + static_cast<double>(point.x) * units) * 64.0);
            point.y = std::lround((y + static_cast<double>(point.y) * units) * 64.0);
        }
    }

    /// A hollow box that stands on the baseline.
    PixelOutline(double emPx, double x, double y) : tags_(8, FT_CURVE_TAG_ON), contours_{3, 7}, flags_(0)
    {
        const auto corner = [&](double cx, double cy) {
            points_.push_back({std::lround((x + cx * emPx) * 64.0), std::lround((y + cy * emPx) * 64.0)});
        };
        const double l = kBoxLeft, r = kBoxRight, t = kBoxTop, s = kBoxStroke;
        corner(l, 0.0), corner(l, t), corner(r, t), corner(r, 0.0);
        corner(l + s, s), corner(r - s, s), corner(r - s, t - s), corner(l + s, t - s);
    }

    FT_Outline view()
    {
        return {static_cast<short>(contours_.size()),
                static_cast<short>(points_.size()),
                points_.data(),
                tags_.data(),
                contours_.data(),
                flags_};
    }

private:
    std::vector<FT_Vector> points_;
    std::vector<char> tags_;
    std::vector<short> contours_;
    int flags_;
};

struct Bitmap {
    std::vector<std::uint8_t> rows;
    std::size_t width, height;
};

/// FreeType's spans of one scan line, y upward; where letters touch, the greater coverage stays.
void addSpans(int y, int count, const FT_Span* spans, void* user)
{
    Bitmap& bitmap = *static_cast<Bitmap*>(user);
    std::uint8_t* row = bitmap.rows.data() + (bitmap.height - 1 - static_cast<std::size_t>(y)) * bitmap.width;
    for (const FT_Span* span = spans; span != spans + count; ++span)
        for (int x = span->x; x < span->x + span->len; ++x) row[x] = std::max(row[x], span->coverage);
}

} // namespace

struct TextLine::Glyphs {
    LetterCase letters{{CarriedFonts::herosBold(), CarriedFonts::liberationSansBold()}, kBoxAdvance};
    SetLine line;

    void draw(PixelOutline outline, Bitmap& bitmap) const
    {
        FT_Outline view = outline.view();
        FT_BBox box;
        FT_Outline_Get_CBox(&view, &box);
        const auto right = static_cast<FT_Pos>(bitmap.width), top = static_cast<FT_Pos>(bitmap.height);
        if (box.xMax <= 0 || box.yMax <= 0 || box.xMin >= right * 64 || box.yMin >= top * 64) return;
        FT_Raster_Params params{};
        params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
        params.gray_spans = addSpans;
        params.user = &bitmap;
        params.clip_box = {0, 0, right, top};
        checkFreeType(FT_Outline_Render(letters.library(), &view, &params), "draw a letter");
    }
};

TextLine::TextLine(std::string_view text) : glyphs_(std::make_unique<Glyphs>())
{
    glyphs_->line = glyphs_->letters.set(text, kLongestLine);
}

TextLine::~TextLine() = default;
TextLine::TextLine(TextLine&&) noexcept = default;
TextLine& TextLine::operator=(TextLine&&) noexcept = default;

double TextLine::widthEm() const noexcept
{
    return glyphs_->line.widthEm;
}

std::vector<std::uint8_t> TextLine::draw(std::size_t width, std::size_t height,
                                         const TextPlacement& place) const
{
    if (!(place.emPx <= kLargestEmPx)) throw PlatformError("letters of more than 50000 pixels");
    Bitmap bitmap{std::vector<std::uint8_t>(width * height), width, height};
    for (const SetLetter& glyph : glyphs_->line.letters) {
        const double x = place.originX + glyph.xEm * place.emPx, y = place.baselineY + glyph.yEm * place.emPx;
        // Nothing of a letter reaches further than this from its origin.
        constexpr double kReachEm = 4.0;
        if (x + kReachEm * place.emPx < 0.0 || x - kReachEm * place.emPx > static_cast<double>(width))
            continue;
        if (glyph.face < 0) {
            glyphs_->draw(PixelOutline(place.emPx, x, y), bitmap);
            continue;
        }
        const CarriedFace& face = glyphs_->letters.face(glyph.face);
        checkFreeType(FT_Load_Glyph(face.outlines(), glyph.index, FT_LOAD_NO_SCALE), "load a letter");
        const FT_Outline& outline = face.outlines()->glyph->outline;
        if (outline.n_points > 0)
            glyphs_->draw(PixelOutline(outline, place.emPx * face.unitEm(), x, y), bitmap);
    }
    return std::move(bitmap.rows);
}

} // namespace tamlo::platform
