// SheetExporter: a contact sheet, A4 and dark as a light table: every visible frame as its tile, its marks
// drawn on it. The plan is a value that knows every text and place, so that a preview, a PDF and a test draw
// the same pages. Lengths are points, y downward.
#pragma once

#include "app/project/project.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tamlo {

namespace SheetExporter {

inline constexpr double kPageWidth = 595, kPageHeight = 842;
inline constexpr double kMargin = 30, kUsableWidth = kPageWidth - 2 * kMargin;
inline constexpr double kRowsTop = 64, kRowsHeight = 734;
inline constexpr double kGap = 7, kCaption = 9;
inline constexpr int kMostCols = 6;

struct Layout {
    int cols = kMostCols;
    double cw = 0;   ///< side of a square cell
    double rowH = 0; ///< from one row's top to the next
    int rows = 1;

    std::size_t perPage() const { return static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows); }
};
/// cols: 1 to 5, anything else counts as 6.
Layout layout(int cols);

} // namespace SheetExporter

struct SheetPlan {
    struct Cell {
        FrameRef frame;
        std::string number; ///< place in the whole roll
        std::string name;   ///< of the file, without its extension
    };

    SheetExporter::Layout layout;
    std::vector<Cell> cells; ///< of all pages
    std::string projectName;
    std::string summary; ///< what the sheet shows
    std::string filter;  ///< its name, empty where all frames are shown
    double date = 0;     ///< seconds since 1970

    std::size_t pages() const;
    /// The cells [first, end) of a page, counted from 1.
    std::pair<std::size_t, std::size_t> cellsOf(std::size_t page) const;
};

namespace SheetExporter {

/// The visible frames. originals: as untouched pictures. date: seconds since 1970.
SheetPlan plan(const Project& project, int cols, bool originals, double date);
/// "198 frames · 42 per page · 5 pages".
std::string note(std::size_t frames, int cols);
/// "Berlin_contact.pdf".
std::string defaultName(const Project& project);
/// "○", "×", or nothing.
std::string signOf(Mark mark);

} // namespace SheetExporter
} // namespace tamlo
