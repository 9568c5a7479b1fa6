#include "app/export/sheet_file.h"

#include "app/preview/reduced.h"
#include "core/image/tamlo_error.h"
#include "core/io/contact_sheet.h"
#include "core/io/image_writer.h"
#include "core/io/jpeg_encoder.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/platform_error.h"
#include "platform/unicode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace tamlo::SheetExporter {
namespace {

namespace fs = std::filesystem;

constexpr double kPicturePixelsPerPoint = 2, kPictureQuality = 0.92;
constexpr double kCssPixelsPerPoint = 2;     ///< what a page shows of an A4 page's points
constexpr double kTilePixelsPerCssPixel = 2; ///< for dense screens

struct Cancelled {};

std::string extensionOf(const fs::path& url)
{
    return platform::lowerCased(url.extension().string());
}

void writeBytes(const fs::path& url, const std::vector<std::uint8_t>& bytes)
{
    try {
        platform::writeWhole(url.string(), bytes);
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(error.what());
    }
}

/// "2026-11-24" by the local clock.
std::string isoDate(double date)
{
    const auto moment = static_cast<std::time_t>(std::floor(date));
    std::tm parts{};
    if (!localtime_r(&moment, &parts)) return "1970-01-01";
    std::array<char, 16> text;
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d", &parts)};
}

/// The tiles, as long as nobody cancels.
TileOf cancellable(const TileOf& tileOf, const Events& events)
{
    return [&](const Frame& frame) {
        if (events.cancelled && events.cancelled()) throw Cancelled();
        return tileOf(frame);
    };
}

std::pair<std::size_t, std::size_t> pagesOf(const Order& order)
{
    return order.page ? std::pair(*order.page, *order.page) : std::pair(std::size_t{1}, order.plan.pages());
}

void begin(const Order& order, std::size_t page, const Events& events)
{
    if (events.cancelled && events.cancelled()) throw Cancelled();
    if (events.page) events.page(page, order.plan.pages());
}

void writePdf(const Order& order, const TileOf& tileOf, const Events& events)
{
    platform::PdfPages pdf(kPageWidth, kPageHeight,
                           {order.plan.projectName, order.software, isoDate(order.plan.date)});
    const auto [first, last] = pagesOf(order);
    for (std::size_t page = first; page <= last; ++page) {
        begin(order, page, events);
        drawPage(pdf.canvas(), order.plan, page, tileOf);
        pdf.endPage();
    }
    writeBytes(order.url, pdf.finish());
}

void writeHtml(const Order& order, const TileOf& tileOf, const Events& events)
{
    const double shownPx = order.plan.layout.cw * kCssPixelsPerPoint;
    const auto tileLong = static_cast<std::int64_t>(std::lround(shownPx * kTilePixelsPerCssPixel));
    std::vector<ContactSheet::Row> rows;
    const auto [first, last] = pagesOf(order);
    for (std::size_t page = first; page <= last; ++page) {
        begin(order, page, events);
        ContactSheet::Row row{T("sheet.page", {{"n", page}, {"total", order.plan.pages()}}), {}};
        const auto [cell, end] = order.plan.cellsOf(page);
        for (std::size_t i = cell; i < end; ++i) {
            const SheetPlan::Cell& one = order.plan.cells[i];
            const auto tile = tileOf(*one.frame);
            row.figures.push_back({one.number + " " + one.name,
                                   tile ? ContactSheet::dataUrl(tileJpeg(reduced(*tile, tileLong))) : ""});
        }
        rows.push_back(std::move(row));
    }
    ContactSheet::write(order.url, rows, order.plan.projectName + " · " + order.plan.summary,
                        static_cast<int>(std::lround(shownPx)));
}

void writePicture(const Order& order, const TileOf& tileOf, const Events& events)
{
    const std::size_t page = order.page.value_or(1);
    begin(order, page, events);
    write(pageImage(order.plan, page, kPicturePixelsPerPoint, tileOf), order.url, kPictureQuality,
          order.software);
}

} // namespace

bool isSheetName(const fs::path& url)
{
    constexpr std::array<std::string_view, 6> kKnown{".pdf", ".html", ".htm", ".png", ".jpg", ".jpeg"};
    return std::ranges::find(kKnown, extensionOf(url)) != kKnown.end();
}

bool writeSheet(const Order& order, const TileOf& tileOf, const Events& events)
{
    const std::string extension = extensionOf(order.url);
    const TileOf asked = cancellable(tileOf, events);
    try {
        if (extension == ".pdf")
            writePdf(order, asked, events);
        else if (extension == ".html" || extension == ".htm")
            writeHtml(order, asked, events);
        else
            writePicture(order, asked, events);
        return true;
    } catch (const Cancelled&) {
        return false;
    }
}

ReadyImage pageImage(const SheetPlan& plan, std::size_t page, double pixelsPerPoint, const TileOf& tileOf)
{
    platform::RasterPage raster(kPageWidth, kPageHeight, pixelsPerPoint);
    drawPage(raster.canvas(), plan, page, tileOf);
    return {raster.width(), raster.height(), raster.rgba()};
}

void write(const ReadyImage& image, const fs::path& url, double quality, const std::string& software)
{
    if (image.width < 1 || image.height < 1) throw TamloError::io("sheet bitmap");
    const int percent = static_cast<int>(std::lround(quality * 100));
    const std::string extension = extensionOf(url);
    if (extension == ".png" || extension == ".jpg" || extension == ".jpeg")
        return ImageWriter::save(image, url.string(), percent, OutputMetadata::plain(software));
    const std::vector<std::uint8_t> bytes =
        JPEGEncoder::encode({ImageWriter::rgbBytes(image), image.width, image.height}, percent);
    if (bytes.empty()) throw TamloError::io("sheet encode");
    writeBytes(url, bytes);
}

} // namespace tamlo::SheetExporter
