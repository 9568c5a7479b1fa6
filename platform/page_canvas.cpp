#include "platform/page_canvas.h"

#include "platform/page_font.h"
#include "platform/platform_error.h"

#include <cairo-pdf.h>

#include <cmath>
#include <cstring>
#include <numbers>

namespace tamlo::platform {
namespace {

constexpr double kPrinterDpi = 300.0, kPointsPerInch = 72.0;
/// Of DejaVu Sans Mono, in ems.
constexpr double kAscentEm = 1901.0 / 2048.0;

void check(cairo_status_t status)
{
    if (status != CAIRO_STATUS_SUCCESS)
        throw PlatformError(std::string("Cairo failed: ") + cairo_status_to_string(status));
}

cairo_status_t append(void* bytes, const unsigned char* data, unsigned length)
{
    try {
        auto& to = *static_cast<std::vector<std::uint8_t>*>(bytes);
        to.insert(to.end(), data, data + length);
        return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

struct SurfaceCloser {
    void operator()(cairo_surface_t* surface) const noexcept { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceCloser>;

Surface madeSurface(cairo_surface_t* made)
{
    Surface surface(made);
    check(cairo_surface_status(made));
    return surface;
}

/// Pixels as Cairo wants them: one word each, red above green above blue.
Surface pixelSurface(const PagePicture& picture)
{
    Surface surface = madeSurface(cairo_image_surface_create(
        CAIRO_FORMAT_RGB24, static_cast<int>(picture.width), static_cast<int>(picture.height)));
    if (picture.rgba.empty()) return surface;
    cairo_surface_flush(surface.get());
    unsigned char* const rows = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    const std::uint8_t* from = picture.rgba.data();
    for (std::int64_t y = 0; y < picture.height; ++y)
        for (std::int64_t x = 0; x < picture.width; ++x, from += 4) {
            const std::uint32_t word = std::uint32_t{from[0]} << 16 | std::uint32_t{from[1]} << 8 | from[2];
            std::memcpy(rows + y * stride + x * 4, &word, sizeof word);
        }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

void attachJpeg(cairo_surface_t* surface, std::span<const std::uint8_t> jpeg)
{
    auto copy = std::make_unique<std::vector<std::uint8_t>>(jpeg.begin(), jpeg.end());
    const auto destroy = [](void* data) { delete static_cast<std::vector<std::uint8_t>*>(data); };
    check(cairo_surface_set_mime_data(surface, CAIRO_MIME_TYPE_JPEG, copy->data(), copy->size(), destroy,
                                      copy.get()));
    copy.release();
}

} // namespace

struct PageCanvas::Drawing {
    Drawing(Surface to, double pixels, bool jpeg)
        : surface(std::move(to)), cairo(cairo_create(surface.get())), pixelsPerPoint(pixels), takesJpeg(jpeg)
    {
        check(cairo_status(cairo));
        cairo_font_options_t* const options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_set_font_options(cairo, options);
        cairo_font_options_destroy(options);
        cairo_set_font_face(cairo, letters.face());
    }
    ~Drawing() { cairo_destroy(cairo); }
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

    void color(const PageColor& c) { cairo_set_source_rgb(cairo, c.red, c.green, c.blue); }
    void drawn() const { check(cairo_status(cairo)); }

    PageLetters letters;
    Surface surface;
    cairo_t* cairo;
    double pixelsPerPoint;
    bool takesJpeg;
};

PageCanvas::PageCanvas(std::unique_ptr<Drawing> drawing) : drawing_(std::move(drawing))
{}

PageCanvas::PageCanvas(PageCanvas&&) noexcept = default;
PageCanvas::~PageCanvas() = default;

double PageCanvas::pixelsPerPoint() const
{
    return drawing_->pixelsPerPoint;
}

bool PageCanvas::takesJpeg() const
{
    return drawing_->takesJpeg;
}

void PageCanvas::fill(const PageRect& rect, const PageColor& color)
{
    drawing_->color(color);
    cairo_rectangle(drawing_->cairo, rect.x, rect.y, rect.width, rect.height);
    cairo_fill(drawing_->cairo);
    drawing_->drawn();
}

void PageCanvas::stroke(const PageRect& rect, const PageColor& color, double lineWidth)
{
    drawing_->color(color);
    cairo_set_line_width(drawing_->cairo, lineWidth);
    cairo_rectangle(drawing_->cairo, rect.x, rect.y, rect.width, rect.height);
    cairo_stroke(drawing_->cairo);
    drawing_->drawn();
}

void PageCanvas::line(double x1, double y1, double x2, double y2, const PageColor& color, double lineWidth)
{
    drawing_->color(color);
    cairo_set_line_width(drawing_->cairo, lineWidth);
    cairo_move_to(drawing_->cairo, x1, y1);
    cairo_line_to(drawing_->cairo, x2, y2);
    cairo_stroke(drawing_->cairo);
    drawing_->drawn();
}

void PageCanvas::disc(const PageRect& rect, const PageColor& color)
{
    cairo_t* const cairo = drawing_->cairo;
    drawing_->color(color);
    cairo_save(cairo);
    cairo_translate(cairo, rect.x + rect.width / 2, rect.y + rect.height / 2);
    cairo_scale(cairo, rect.width / 2, rect.height / 2);
    cairo_new_path(cairo);
    cairo_arc(cairo, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(cairo);
    cairo_fill(cairo);
    drawing_->drawn();
}

void PageCanvas::picture(const PagePicture& picture, const PageRect& into, double opacity)
{
    cairo_t* const cairo = drawing_->cairo;
    const Surface surface = pixelSurface(picture);
    if (!picture.jpeg.empty()) attachJpeg(surface.get(), picture.jpeg);
    cairo_save(cairo);
    cairo_translate(cairo, into.x, into.y);
    cairo_scale(cairo, into.width / static_cast<double>(picture.width),
                into.height / static_cast<double>(picture.height));
    cairo_set_source_surface(cairo, surface.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_BEST);
    // Pixels must not blend with nothing at the edges; a PDF would lose its JPEG to that.
    if (picture.jpeg.empty()) cairo_pattern_set_extend(cairo_get_source(cairo), CAIRO_EXTEND_PAD);
    cairo_rectangle(cairo, 0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height));
    cairo_clip(cairo);
    opacity < 1.0 ? cairo_paint_with_alpha(cairo, opacity) : cairo_paint(cairo);
    cairo_restore(cairo);
    drawing_->drawn();
}

void PageCanvas::text(std::string_view utf8, double x, double y, const PageFont& font, const PageColor& color)
{
    drawing_->color(color);
    cairo_set_font_size(drawing_->cairo, font.sizePt);
    for (const PageGlyphs& piece : drawing_->letters.line(utf8, x, y, font))
        cairo_show_text_glyphs(drawing_->cairo, piece.utf8.data(), static_cast<int>(piece.utf8.size()),
                               piece.glyphs.data(), static_cast<int>(piece.glyphs.size()),
                               piece.clusters.data(), static_cast<int>(piece.clusters.size()),
                               piece.rightToLeft ? CAIRO_TEXT_CLUSTER_FLAG_BACKWARD
                                                 : static_cast<cairo_text_cluster_flags_t>(0));
    drawing_->drawn();
}

double PageCanvas::textWidth(std::string_view utf8, const PageFont& font) const
{
    return drawing_->letters.width(utf8, font);
}

double PageCanvas::ascent(const PageFont& font)
{
    return font.sizePt * kAscentEm;
}

PdfPages::PdfPages(double widthPt, double heightPt, const About& about)
    : bytes_(std::make_unique<std::vector<std::uint8_t>>()),
      canvas_(std::make_unique<PageCanvas::Drawing>(
          madeSurface(cairo_pdf_surface_create_for_stream(append, bytes_.get(), widthPt, heightPt)),
          kPrinterDpi / kPointsPerInch, true))
{
    cairo_surface_t* const pdf = canvas_.drawing_->surface.get();
    cairo_pdf_surface_restrict_to_version(pdf, CAIRO_PDF_VERSION_1_5);
    const std::string noon = about.date + "T12:00:00Z";
    cairo_pdf_surface_set_metadata(pdf, CAIRO_PDF_METADATA_TITLE, about.title.c_str());
    cairo_pdf_surface_set_metadata(pdf, CAIRO_PDF_METADATA_CREATOR, about.program.c_str());
    cairo_pdf_surface_set_metadata(pdf, CAIRO_PDF_METADATA_CREATE_DATE, noon.c_str());
    check(cairo_surface_status(pdf));
}

PdfPages::~PdfPages() = default;

void PdfPages::endPage()
{
    cairo_show_page(canvas_.drawing_->cairo);
    canvas_.drawing_->drawn();
}

std::vector<std::uint8_t> PdfPages::finish()
{
    cairo_surface_finish(canvas_.drawing_->surface.get());
    check(cairo_surface_status(canvas_.drawing_->surface.get()));
    return std::move(*bytes_);
}

RasterPage::RasterPage(double widthPt, double heightPt, double pixelsPerPoint)
    : width_(std::lround(widthPt * pixelsPerPoint)),
      height_(std::lround(heightPt * pixelsPerPoint)),
      canvas_(std::make_unique<PageCanvas::Drawing>(
          madeSurface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width_),
                                                 static_cast<int>(height_))),
          pixelsPerPoint, false))
{
    cairo_scale(canvas_.drawing_->cairo, pixelsPerPoint, pixelsPerPoint);
}

RasterPage::~RasterPage() = default;

std::vector<std::uint8_t> RasterPage::rgba() const
{
    cairo_surface_t* const surface = canvas_.drawing_->surface.get();
    cairo_surface_flush(surface);
    const unsigned char* const rows = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    std::vector<std::uint8_t> out(static_cast<std::size_t>(width_ * height_ * 4));
    std::uint8_t* to = out.data();
    for (std::int64_t y = 0; y < height_; ++y)
        for (std::int64_t x = 0; x < width_; ++x, to += 4) {
            std::uint32_t word = 0;
            std::memcpy(&word, rows + y * stride + x * 4, sizeof word);
            to[0] = static_cast<std::uint8_t>(word >> 16);
            to[1] = static_cast<std::uint8_t>(word >> 8);
            to[2] = static_cast<std::uint8_t>(word);
            to[3] = 255;
        }
    return out;
}

} // namespace tamlo::platform
