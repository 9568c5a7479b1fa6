#include "app/project/project.h"

#include "core/text/loc.h"

#include <algorithm>
#include <cstdio>

namespace tamlo {

namespace {

template <typename Passes>
std::vector<FrameRef> framesThat(const Roll& roll, Passes&& passes)
{
    std::vector<FrameRef> out;
    for (const FrameRef& frame : roll.refs())
        if (passes(*frame)) out.push_back(frame);
    return out;
}

} // namespace

bool includes(GridFilter filter, Mark mark)
{
    if (filter == GridFilter::selected) return mark == Mark::selected;
    return filter == GridFilter::all || mark != Mark::rejected;
}

bool includes(ExportSet set, Mark mark)
{
    if (set == ExportSet::selected) return mark == Mark::selected;
    return set == ExportSet::all || mark != Mark::rejected;
}

Project Project::untitled()
{
    Project project;
    project.name = T("project.untitled");
    return project;
}

FrameRef Project::frame(const FrameID& id) const
{
    const auto place = frames.find(id);
    return place ? frames.ref(*place) : nullptr;
}

std::vector<FrameRef> Project::visibleFrames() const
{
    return framesThat(frames, [&](const Frame& frame) { return includes(filter, frame.mark); });
}

std::vector<FrameRef> Project::exportFrames(ExportSet set) const
{
    return framesThat(frames, [&](const Frame& frame) { return includes(set, frame.mark); });
}

std::size_t Project::count(ExportSet set) const
{
    return static_cast<std::size_t>(std::count_if(
        frames.begin(), frames.end(), [&](const Frame& frame) { return includes(set, frame.mark); }));
}

Project::MarkCounts Project::counts() const
{
    MarkCounts out;
    for (const Frame& frame : frames) {
        out.selected += frame.mark == Mark::selected;
        out.rejected += frame.mark == Mark::rejected;
    }
    return out;
}

std::size_t Project::framesWithoutProcess() const
{
    return static_cast<std::size_t>(
        std::count_if(frames.begin(), frames.end(), [](const Frame& frame) { return !frame.process; }));
}

std::string Project::label(const FrameID& id) const
{
    const auto place = frames.find(id);
    return place ? label(*place) : std::string();
}

std::string Project::label(std::size_t place)
{
    char text[24];
    std::snprintf(text, sizeof(text), "%02zu", place + 1);
    return text;
}

} // namespace tamlo
