#include "platform/text_line.h"

#include "platform/carried_fonts.h"
#include "platform/platform_error.h"
#include "platform/text_runs.h"

#include <ft2build.h>
#include <hb-ot.h>
#include <hb.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace tamlo::platform {
namespace {

constexpr int kFaces = 2;
constexpr double kLargestEmPx = 50'000.0; // with its reach below the end of FreeType's coordinates, 262,144

// The box for a letter that no face has, in ems; taste: a capital's height and stroke.
constexpr double kBoxAdvance = 0.66, kBoxLeft = 0.08, kBoxRight = 0.58, kBoxTop = 0.72, kBoxStroke = 0.08;

void check(FT_Error error, const char* what)
{
    if (error != 0)
        throw PlatformError(std::string("FreeType could not ") + what + " (error " + std::to_string(error) +
                            ")");
}

/// Both libraries' view of one carried face.
class Face {
public:
    Face(FT_Library library, std::span<const std::uint8_t> bytes)
    {
        const auto size = static_cast<FT_Long>(bytes.size());
        check(FT_New_Memory_Face(library, bytes.data(), size, 0, &outlines_), "open a carried face");
        hb_blob_t* blob =
            hb_blob_create(reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size()),
                           HB_MEMORY_MODE_READONLY, nullptr, nullptr);
        hb_face_t* face = hb_face_create(blob, 0);
        shaper_ = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }
    ~Face()
    {
        hb_font_destroy(shaper_);
        FT_Done_Face(outlines_);
    }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    bool has(char32_t c) const { return FT_Get_Char_Index(outlines_, c) != 0; }
    hb_font_t* shaper() const { return shaper_; }
    FT_Face outlines() const { return outlines_; }
    double unitEm() const { return 1.0 / static_cast<double>(outlines_->units_per_EM); }

private:
    FT_Face outlines_ = nullptr;
    hb_font_t* shaper_ = nullptr;
};

struct LibraryCloser {
    void operator()(FT_Library library) const noexcept { FT_Done_FreeType(library); }
};

struct BufferCloser {
    void operator()(hb_buffer_t* buffer) const noexcept { hb_buffer_destroy(buffer); }
};

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
    struct Glyph {
        int face;       ///< -1: the box
        unsigned index; ///< in that face
        double xEm, yEm;
    };

    std::unique_ptr<FT_LibraryRec_, LibraryCloser> library;
    std::array<std::unique_ptr<Face>, kFaces> faces;
    std::vector<Glyph> set;
    double widthEm = 0.0;

    Glyphs()
    {
        FT_Library made = nullptr;
        check(FT_Init_FreeType(&made), "start");
        library.reset(made);
        faces[0] = std::make_unique<Face>(made, CarriedFonts::herosBold());
        faces[1] = std::make_unique<Face>(made, CarriedFonts::liberationSansBold());
    }

    const Face& face(int i) const { return *faces[static_cast<std::size_t>(i)]; }

    void setRun(const std::u16string& text, const TextRun& run)
    {
        if (run.face < 0) {
            set.push_back({-1, 0, widthEm, 0.0});
            widthEm += kBoxAdvance;
            return;
        }
        const std::unique_ptr<hb_buffer_t, BufferCloser> buffer(hb_buffer_create());
        hb_buffer_add_utf16(buffer.get(), reinterpret_cast<const std::uint16_t*>(text.data()),
                            static_cast<int>(text.size()), static_cast<unsigned>(run.begin),
                            static_cast<int>(run.end - run.begin));
        hb_buffer_set_direction(buffer.get(), run.rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_language(buffer.get(), hb_language_from_string("und", -1)); // not the machine's
        hb_buffer_guess_segment_properties(buffer.get());
        hb_shape(face(run.face).shaper(), buffer.get(), nullptr, 0);
        if (!hb_buffer_allocation_successful(buffer.get())) throw PlatformError("HarfBuzz failed: no memory");

        unsigned count = 0;
        const hb_glyph_info_t* info = hb_buffer_get_glyph_infos(buffer.get(), &count);
        const hb_glyph_position_t* place = hb_buffer_get_glyph_positions(buffer.get(), &count);
        const double unit = face(run.face).unitEm();
        for (unsigned i = 0; i < count; ++i) {
            set.push_back(
                {run.face, info[i].codepoint, widthEm + unit * place[i].x_offset, unit * place[i].y_offset});
            widthEm += unit * place[i].x_advance;
        }
    }

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
        check(FT_Outline_Render(library.get(), &view, &params), "draw a letter");
    }
};

TextLine::TextLine(std::string_view text) : glyphs_(std::make_unique<Glyphs>())
{
    const TextRuns runs = textRuns(text, kLongestLine, kFaces,
                                   [&](int face, char32_t c) { return glyphs_->face(face).has(c); });
    for (const TextRun& run : runs.visual) glyphs_->setRun(runs.text, run);
}

TextLine::~TextLine() = default;
TextLine::TextLine(TextLine&&) noexcept = default;
TextLine& TextLine::operator=(TextLine&&) noexcept = default;

double TextLine::widthEm() const noexcept
{
    return glyphs_->widthEm;
}

std::vector<std::uint8_t> TextLine::draw(std::size_t width, std::size_t height,
                                         const TextPlacement& place) const
{
    if (!(place.emPx <= kLargestEmPx)) throw PlatformError("letters of more than 50000 pixels");
    Bitmap bitmap{std::vector<std::uint8_t>(width * height), width, height};
    for (const Glyphs::Glyph& glyph : glyphs_->set) {
        const double x = place.originX + glyph.xEm * place.emPx, y = place.baselineY + glyph.yEm * place.emPx;
        // Nothing of a letter reaches further than this from its origin.
        constexpr double kReachEm = 4.0;
        if (x + kReachEm * place.emPx < 0.0 || x - kReachEm * place.emPx > static_cast<double>(width))
            continue;
        if (glyph.face < 0) {
            glyphs_->draw(PixelOutline(place.emPx, x, y), bitmap);
            continue;
        }
        const Face& face = glyphs_->face(glyph.face);
        check(FT_Load_Glyph(face.outlines(), glyph.index, FT_LOAD_NO_SCALE), "load a letter");
        const FT_Outline& outline = face.outlines()->glyph->outline;
        if (outline.n_points > 0)
            glyphs_->draw(PixelOutline(outline, place.emPx * face.unitEm(), x, y), bitmap);
    }
    return std::move(bitmap.rows);
}

} // namespace tamlo::platform
