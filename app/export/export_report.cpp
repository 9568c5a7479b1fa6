#include "app/export/export_report.h"

#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {
namespace {

constexpr std::size_t kFirstNames = 3;

std::string headOf(const ExportReport& report)
{
    const ExportOutcome& outcome = report.outcome;
    const auto count = static_cast<std::int64_t>(outcome.written.size());
    if (outcome.targetFault) return T("export.failed", {{"error", *outcome.targetFault}});
    if (outcome.stopped) return Loc::string("export.stopped", count);
    if (!report.singleLabel.empty() && count == 1)
        return T("export.frameDone", {{"label", report.singleLabel}});
    return T("export.doneFrames", {{"frames", Loc::string("project.frames", count)}});
}

void addTail(std::string& text, const std::string& words, const std::vector<std::string>& names)
{
    if (!names.empty()) text += words + firstNames(names);
}

} // namespace

std::string firstNames(const std::vector<std::string>& names)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kFirstNames); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    if (names.size() > kFirstNames) text += T("export.andMore", {{"n", names.size() - kFirstNames}});
    return text;
}

std::string ExportReport::text() const
{
    std::string text = headOf(*this);
    addTail(text, T("export.skippedTail"), skipped);
    addTail(text, T("export.changedTail"), changed);
    std::vector<std::string> gpu, failed;
    for (const FrameRef& frame : outcome.gpuFrames) gpu.push_back(frame->fileName());
    for (const FailedFrame& one : outcome.failed)
        if (std::ranges::find(outcome.gpuFrames, one.frame) == outcome.gpuFrames.end())
            failed.push_back(one.frame->fileName() + " (" + one.why + ")");
    addTail(text, T("export.failedTail"), failed);
    if (outcome.gpuFault)
        addTail(
            text,
            T("export.gpuTail", {{"reason", T(std::string("gpu.abort.") + rawText(outcome.gpuFault->kind))}}),
            gpu);
    if (outcome.besides) text += " · " + T("export.socialFallback", {{"dir", *outcome.besides}});
    return text;
}

} // namespace tamlo
