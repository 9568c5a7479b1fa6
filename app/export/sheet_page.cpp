#include "app/export/sheet_page.h"

#include "app/preview/reduced.h"
#include "core/io/jpeg_encoder.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace tamlo::SheetExporter {
namespace {

using platform::PageCanvas;
using platform::PageColor;
using platform::PageFont;
using platform::PageRect;

constexpr PageFont kHeaderFont{8, 1.2}, kNumberFont{6.5, 0.6}, kNameFont{6, 0.3}, kFooterFont{7.5, 1.0};
constexpr double kHeaderTop = 30, kFooterTop = 804;
constexpr double kCaptionDrop = 1.5; ///< from a cell to its caption
constexpr double kBetweenTexts = 4;  ///< at least, on one line
constexpr double kRejectedOpacity = 0.42;
constexpr int kTileQuality = 85;

/// "24 NOV 26" by the local clock, in English in every language.
std::string dateText(double date)
{
    constexpr std::array kMonths{"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                 "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    const auto moment = static_cast<std::time_t>(std::floor(date));
    std::tm parts{};
    if (!localtime_r(&moment, &parts)) return {};
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%d %s %02d", parts.tm_mday,
                  kMonths[static_cast<std::size_t>(parts.tm_mon)], (parts.tm_year + 1900) % 100);
    return text.data();
}

class Drawer {
public:
    Drawer(PageCanvas& canvas, const SheetPlan& plan) : canvas_(canvas), plan_(plan) {}

    void header() const
    {
        std::string right = dateText(plan_.date) + " · " + std::to_string(plan_.cells.size()) + " EXP";
        if (!plan_.filter.empty()) right += " · " + platform::upperCased(plan_.filter);
        const double rightWidth = canvas_.textWidth(right, kHeaderFont);
        const std::string tail = " · " + plan_.summary, head = "TAMLO · ";
        const double fixed = canvas_.textWidth(head + tail, kHeaderFont) + 2 * kHeaderFont.kerningPt;
        const std::string name = fitted(platform::upperCased(plan_.projectName),
                                        kUsableWidth - rightWidth - kBetweenTexts - fixed, kHeaderFont);
        line(head + name + tail, kMargin, kHeaderTop, kHeaderFont, Palette::accentSoft);
        line(right, kPageWidth - kMargin - rightWidth, kHeaderTop, kHeaderFont, Palette::accentSoft);
    }

    void footer(std::size_t page) const
    {
        const std::string text = T("sheet.page", {{"n", page}, {"total", plan_.pages()}});
        const double width = canvas_.textWidth(text, kFooterFont);
        line(text, (kPageWidth - width) / 2, kFooterTop, kFooterFont, Palette::dim);
    }

    void cell(const SheetPlan::Cell& cell, std::size_t place, const TileOf& tileOf) const
    {
        const Layout& layout = plan_.layout;
        const auto column = static_cast<double>(place % static_cast<std::size_t>(layout.cols));
        const auto row = static_cast<double>(place / static_cast<std::size_t>(layout.cols));
        const PageRect box{kMargin + column * (layout.cw + kGap), kRowsTop + row * layout.rowH, layout.cw,
                           layout.cw};
        canvas_.fill(box, Palette::cell);
        const Frame& frame = *cell.frame;
        const bool rejected = frame.mark == Mark::rejected;
        if (const auto image = tileOf(frame)) tile(*image, box, rejected ? kRejectedOpacity : 1.0);
        marks(frame, box);
        caption(cell, box, rejected);
    }

private:
    /// y: the line's top.
    void line(const std::string& text, double x, double y, const PageFont& font, const PageColor& color) const
    {
        canvas_.text(text, x, y + PageCanvas::ascent(font), font, color);
    }

    /// Whole where it fits, else without its middle; empty where not even that fits.
    std::string fitted(const std::string& text, double width, const PageFont& font) const
    {
        if (canvas_.textWidth(text, font) <= width) return text;
        const auto cut = [&](std::size_t kept) {
            return platform::firstCharacters(text, (kept + 1) / 2) + "…" +
                   platform::lastCharacters(text, kept / 2);
        };
        std::size_t fits = 0, above = platform::characterCount(text);
        while (above - fits > 1) {
            const std::size_t middle = (fits + above) / 2;
            (canvas_.textWidth(cut(middle), font) <= width ? fits : above) = middle;
        }
        return fits > 0 ? cut(fits) : "";
    }

    /// In the middle of its cell, on the canvas's own pixels.
    void tile(const ReadyImage& image, const PageRect& box, double opacity) const
    {
        if (image.width < 1 || image.height < 1) return;
        const double pixels = canvas_.pixelsPerPoint(), side = std::round(box.width * pixels);
        const ReadyImage small = reduced(image, std::max(static_cast<std::int64_t>(side), std::int64_t{1}));
        const double grown = side / static_cast<double>(std::max(small.width, small.height));
        const double width = std::round(static_cast<double>(small.width) * grown),
                     height = std::round(static_cast<double>(small.height) * grown);
        const PageRect into{std::round(box.x * pixels + (box.width * pixels - width) / 2) / pixels,
                            std::round(box.y * pixels + (box.width * pixels - height) / 2) / pixels,
                            width / pixels, height / pixels};
        std::vector<std::uint8_t> jpeg;
        if (canvas_.takesJpeg()) jpeg = tileJpeg(small);
        const std::span<const std::uint8_t> rgba =
            jpeg.empty() ? std::span<const std::uint8_t>(small.rgba) : std::span<const std::uint8_t>();
        canvas_.picture({rgba, jpeg, small.width, small.height}, into, opacity);
    }

    void marks(const Frame& frame, const PageRect& box) const
    {
        constexpr double kGoldWidth = 1.4, kGoldInset = 0.7, kRedWidth = 1.2, kDot = 4, kDotInset = 7;
        const double maxX = box.x + box.width, maxY = box.y + box.height;
        if (frame.mark == Mark::selected)
            canvas_.stroke({box.x + kGoldInset, box.y + kGoldInset, box.width - 2 * kGoldInset,
                            box.height - 2 * kGoldInset},
                           Palette::gold, kGoldWidth);
        if (frame.mark == Mark::rejected) {
            canvas_.line(box.x, box.y, maxX, maxY, Palette::red, kRedWidth);
            canvas_.line(maxX, box.y, box.x, maxY, Palette::red, kRedWidth);
        }
        if (frame.exportedAt) canvas_.disc({maxX - kDotInset, maxY - kDotInset, kDot, kDot}, Palette::ok);
    }

    void caption(const SheetPlan::Cell& cell, const PageRect& box, bool rejected) const
    {
        const double baseline = box.y + box.height + kCaptionDrop + PageCanvas::ascent(kNumberFont);
        canvas_.text(cell.number, box.x, baseline, kNumberFont,
                     rejected ? Palette::rejectedNumber : Palette::dim);
        const double room = box.width - canvas_.textWidth(cell.number, kNumberFont) - kBetweenTexts;
        const std::string name = fitted(cell.name, room, kNameFont);
        canvas_.text(name, box.x + box.width - canvas_.textWidth(name, kNameFont), baseline, kNameFont,
                     Palette::dim);
    }

    PageCanvas& canvas_;
    const SheetPlan& plan_;
};

} // namespace

std::vector<std::uint8_t> tileJpeg(const ReadyImage& tile)
{
    return JPEGEncoder::encode({ImageWriter::rgbBytes(tile), tile.width, tile.height}, kTileQuality);
}

void drawPage(PageCanvas& canvas, const SheetPlan& plan, std::size_t page, const TileOf& tileOf)
{
    const Drawer drawer(canvas, plan);
    canvas.fill({0, 0, kPageWidth, kPageHeight}, Palette::bg);
    drawer.header();
    const auto [first, end] = plan.cellsOf(page);
    for (std::size_t i = first; i < end; ++i) drawer.cell(plan.cells[i], i - first, tileOf);
    drawer.footer(page);
}

} // namespace tamlo::SheetExporter
