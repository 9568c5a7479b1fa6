// PageCanvas: a page measured in points, y downward, drawn into a PDF or into pixels by the same calls.
// Letters are of the one face that the program carries for sheets, set by HarfBuzz and drawn by Cairo; in a
// PDF they stay text that can be searched, also where the face lacks a letter and a box is drawn.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo::platform {

/// sRGB, 0 to 1.
struct PageColor {
    double red = 0, green = 0, blue = 0;
};

/// Points.
struct PageRect {
    double x = 0, y = 0, width = 0, height = 0;
};

struct PageFont {
    double sizePt = 0;
    double kerningPt = 0; ///< between two letters, beside their own
};

/// A picture for a page: its pixels, and for a PDF the same encoded.
struct PagePicture {
    std::span<const std::uint8_t> rgba; ///< rows top-down, the fourth byte unused; empty where jpeg stands
    std::span<const std::uint8_t> jpeg; ///< what a PDF holds
    std::int64_t width = 0, height = 0;
};

class PageCanvas {
public:
    PageCanvas(PageCanvas&&) noexcept;
    ~PageCanvas();

    /// What a picture is best reduced to: those of the raster, or of a good printer.
    double pixelsPerPoint() const;
    bool takesJpeg() const;

    // Errors of all: PlatformError when a library fails.
    void fill(const PageRect& rect, const PageColor& color);
    void stroke(const PageRect& rect, const PageColor& color, double lineWidth);
    void line(double x1, double y1, double x2, double y2, const PageColor& color, double lineWidth);
    /// The ellipse in a rectangle, filled.
    void disc(const PageRect& rect, const PageColor& color);
    /// opacity: 0 to 1.
    void picture(const PagePicture& picture, const PageRect& into, double opacity);
    /// From the left end; y: the baseline.
    void text(std::string_view utf8, double x, double y, const PageFont& font, const PageColor& color);
    double textWidth(std::string_view utf8, const PageFont& font) const;
    /// From a line's top to its baseline.
    static double ascent(const PageFont& font);

private:
    friend class PdfPages;
    friend class RasterPage;
    struct Drawing;
    explicit PageCanvas(std::unique_ptr<Drawing> drawing);

    std::unique_ptr<Drawing> drawing_;
};

/// Pages of one size as a PDF in memory. The same calls give the same bytes.
class PdfPages {
public:
    struct About {
        std::string title, program;
        std::string date; ///< "2026-11-24": the day it is from
    };

    /// Errors: PlatformError, as of all.
    PdfPages(double widthPt, double heightPt, const About& about);
    ~PdfPages();

    PageCanvas& canvas() { return canvas_; }
    /// The page is complete; the next one is blank.
    void endPage();
    /// The file. Nothing is drawn after it.
    std::vector<std::uint8_t> finish();

private:
    std::unique_ptr<std::vector<std::uint8_t>> bytes_;
    PageCanvas canvas_;
};

/// One page as pixels.
class RasterPage {
public:
    RasterPage(double widthPt, double heightPt, double pixelsPerPoint);
    ~RasterPage();

    PageCanvas& canvas() { return canvas_; }
    std::int64_t width() const { return width_; }
    std::int64_t height() const { return height_; }
    /// R, G, B and 255; rows top-down.
    std::vector<std::uint8_t> rgba() const;

private:
    std::int64_t width_, height_;
    PageCanvas canvas_;
};

} // namespace tamlo::platform
