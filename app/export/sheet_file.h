// A contact sheet as a file: a PDF of all pages, one page as a picture, or an HTML page. What is cancelled or
// fails leaves no file, and what stood under its name stays.
#pragma once

#include "app/export/sheet_page.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tamlo::SheetExporter {

struct Order {
    SheetPlan plan;
    std::filesystem::path url;       ///< ".pdf", ".html" or ".htm", ".png"; all else is a JPEG
    std::optional<std::size_t> page; ///< only this one, from 1; a picture's first where absent
    std::string software;
};
struct Events {
    std::function<void(std::size_t page, std::size_t pages)> page; ///< it begins
    std::function<bool()> cancelled;                               ///< asked before each page and cell
};

/// Its extension is one of those, or a JPEG's.
bool isSheetName(const std::filesystem::path& url);

/// Returns whether the file was written, and not cancelled.
/// Errors: PlatformError when drawing fails, TamloError when writing does.
bool writeSheet(const Order& order, const TileOf& tileOf, const Events& events);

/// A page of so many pixels a point.
ReadyImage pageImage(const SheetPlan& plan, std::size_t page, double pixelsPerPoint, const TileOf& tileOf);

/// ".png" gives a PNG, everything else a JPEG of this quality, 0 to 1.
/// Errors: TamloError io "sheet bitmap" for no picture, "sheet encode" where no data comes of it, and those
/// of writing a file.
void write(const ReadyImage& image, const std::filesystem::path& url, double quality,
           const std::string& software);

} // namespace tamlo::SheetExporter
