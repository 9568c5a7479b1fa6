// One page of a contact sheet, drawn on a canvas: the PDF, the picture of a page and the preview in a window
// are all this.
#pragma once

#include "app/export/sheet_plan.h"
#include "core/io/ready_image.h"
#include "platform/page_canvas.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tamlo::SheetExporter {

namespace Palette {
inline constexpr platform::PageColor bg{0.082, 0.075, 0.067};
inline constexpr platform::PageColor cell{0.063, 0.059, 0.051};
inline constexpr platform::PageColor accentSoft{0.706, 0.506, 0.235};
inline constexpr platform::PageColor dim{0.43, 0.4, 0.36};
inline constexpr platform::PageColor gold{0.91, 0.64, 0.24};
inline constexpr platform::PageColor red{0.81, 0.29, 0.24};
inline constexpr platform::PageColor ok{0.37, 0.62, 0.39};
inline constexpr platform::PageColor rejectedNumber{0.43, 0.35, 0.2};
} // namespace Palette

/// The tile of a frame; null leaves its cell empty. Asked for one cell at a time.
using TileOf = std::function<std::shared_ptr<const ReadyImage>(const Frame& frame)>;

/// A tile, reduced already, as sheets hold it.
std::vector<std::uint8_t> tileJpeg(const ReadyImage& tile);

/// page: from 1. Errors: PlatformError when a library fails.
void drawPage(platform::PageCanvas& canvas, const SheetPlan& plan, std::size_t page, const TileOf& tileOf);

} // namespace tamlo::SheetExporter
