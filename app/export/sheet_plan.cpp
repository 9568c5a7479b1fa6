#include "app/export/sheet_plan.h"

#include "app/export/export_naming.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <unordered_map>

namespace tamlo {
namespace {

std::size_t pagesFor(std::size_t frames, const SheetExporter::Layout& layout)
{
    return (frames + layout.perPage() - 1) / layout.perPage();
}

std::string summaryOf(const std::vector<FrameRef>& frames, bool originals)
{
    const auto developed =
        std::ranges::count_if(frames, [](const FrameRef& frame) { return bool(frame->process); });
    if (originals || developed == 0) return T("sheet.summary.originals");
    if (static_cast<std::size_t>(developed) == frames.size()) return T("sheet.summary.own");
    return T("sheet.summary.some", {{"n", developed}, {"all", frames.size()}});
}

std::string filterName(GridFilter filter)
{
    switch (filter) {
    case GridFilter::all:
        return "";
    case GridFilter::hideRejected:
        return T("filter.hideRejected");
    case GridFilter::selected:
        return T("filter.selected");
    }
    return "";
}

} // namespace

SheetExporter::Layout SheetExporter::layout(int cols)
{
    Layout layout;
    layout.cols = cols >= 1 && cols < kMostCols ? cols : kMostCols;
    layout.cw = (kUsableWidth - (layout.cols - 1) * kGap) / layout.cols;
    layout.rowH = layout.cw + kCaption + kGap;
    layout.rows = std::max(static_cast<int>(std::floor(kRowsHeight / layout.rowH)), 1);
    return layout;
}

std::size_t SheetPlan::pages() const
{
    return pagesFor(cells.size(), layout);
}

std::pair<std::size_t, std::size_t> SheetPlan::cellsOf(std::size_t page) const
{
    const std::size_t first = std::min((page - 1) * layout.perPage(), cells.size());
    return {first, std::min(first + layout.perPage(), cells.size())};
}

SheetPlan SheetExporter::plan(const Project& project, int cols, bool originals, double date)
{
    SheetPlan plan;
    plan.layout = layout(cols);
    plan.projectName = project.name;
    plan.filter = filterName(project.filter);
    plan.date = date;
    std::vector<FrameRef> shown;
    for (std::size_t i = 0; i < project.frames.size(); ++i) {
        const FrameRef& frame = project.frames.ref(i);
        if (!includes(project.filter, frame->mark)) continue;
        const std::string sign = signOf(frame->mark);
        const std::string stem = std::filesystem::path(frame->fileName()).stem().string();
        plan.cells.push_back(
            {frame, Project::label(i) + (sign.empty() ? "" : " " + sign), platform::asUtf8(stem)});
        shown.push_back(frame);
    }
    plan.summary = summaryOf(shown, originals);
    return plan;
}

std::string SheetExporter::note(std::size_t frames, int cols)
{
    const Layout page = layout(cols);
    return T("sheet.note",
             {{"frames", Loc::string("project.frames", static_cast<std::int64_t>(frames))},
              {"per", page.perPage()},
              {"pages", Loc::string("sheet.pages", static_cast<std::int64_t>(pagesFor(frames, page)))}});
}

std::string SheetExporter::defaultName(const Project& project)
{
    return ExportNaming::customStem(project.name) + "_contact.pdf";
}

std::string SheetExporter::signOf(Mark mark)
{
    return mark == Mark::selected ? "○" : mark == Mark::rejected ? "×" : "";
}

} // namespace tamlo
