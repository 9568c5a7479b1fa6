#include "platform/set_line.h"

#include "platform/platform_error.h"
#include "platform/text_runs.h"

#include <hb-ot.h>

namespace tamlo::platform {
namespace {

struct BufferCloser {
    void operator()(hb_buffer_t* buffer) const noexcept { hb_buffer_destroy(buffer); }
};
using Buffer = std::unique_ptr<hb_buffer_t, BufferCloser>;

Buffer shaped(const std::u16string& text, const TextRun& run, hb_font_t* shaper)
{
    Buffer buffer(hb_buffer_create());
    hb_buffer_add_utf16(buffer.get(), reinterpret_cast<const std::uint16_t*>(text.data()),
                        static_cast<int>(text.size()), static_cast<unsigned>(run.begin),
                        static_cast<int>(run.end - run.begin));
    hb_buffer_set_direction(buffer.get(), run.rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_language(buffer.get(), hb_language_from_string("und", -1)); // not the machine's
    hb_buffer_guess_segment_properties(buffer.get());
    hb_shape(shaper, buffer.get(), nullptr, 0);
    if (!hb_buffer_allocation_successful(buffer.get())) throw PlatformError("HarfBuzz failed: no memory");
    return buffer;
}

} // namespace

void checkFreeType(FT_Error error, const char* what)
{
    if (error != 0)
        throw PlatformError(std::string("FreeType could not ") + what + " (error " + std::to_string(error) +
                            ")");
}

CarriedFace::CarriedFace(FT_Library library, std::span<const std::uint8_t> bytes)
{
    const auto size = static_cast<FT_Long>(bytes.size());
    checkFreeType(FT_New_Memory_Face(library, bytes.data(), size, 0, &outlines_), "open a carried face");
    hb_blob_t* blob =
        hb_blob_create(reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size()),
                       HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* face = hb_face_create(blob, 0);
    shaper_ = hb_font_create(face);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
}

CarriedFace::~CarriedFace()
{
    hb_font_destroy(shaper_);
    FT_Done_Face(outlines_);
}

LetterCase::LetterCase(const std::vector<std::span<const std::uint8_t>>& faces, double missingEm)
    : missingEm_(missingEm)
{
    FT_Library made = nullptr;
    checkFreeType(FT_Init_FreeType(&made), "start");
    library_.reset(made);
    for (const auto& bytes : faces) faces_.push_back(std::make_unique<CarriedFace>(made, bytes));
}

SetLine LetterCase::set(std::string_view utf8, std::size_t longest) const
{
    TextRuns runs = textRuns(utf8, longest, static_cast<int>(faces_.size()),
                             [&](int i, char32_t c) { return face(i).has(c); });
    SetLine line;
    line.text = std::move(runs.text);
    for (const TextRun& run : runs.visual) {
        line.runs.push_back({run.begin, run.end, run.rightToLeft});
        const std::size_t number = line.runs.size() - 1;
        if (run.face < 0) {
            line.letters.push_back({-1, 0, line.widthEm, 0.0, run.begin, number});
            line.widthEm += missingEm_;
            continue;
        }
        const Buffer buffer = shaped(line.text, run, face(run.face).shaper());
        unsigned count = 0;
        const hb_glyph_info_t* info = hb_buffer_get_glyph_infos(buffer.get(), &count);
        const hb_glyph_position_t* place = hb_buffer_get_glyph_positions(buffer.get(), &count);
        const double unit = face(run.face).unitEm();
        for (unsigned i = 0; i < count; ++i) {
            line.letters.push_back({run.face, info[i].codepoint, line.widthEm + unit * place[i].x_offset,
                                    unit * place[i].y_offset, info[i].cluster, number});
            line.widthEm += unit * place[i].x_advance;
        }
    }
    return line;
}

} // namespace tamlo::platform
