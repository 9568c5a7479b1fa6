#include "app/export/export_task.h"

#include "core/text/loc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace tamlo {
namespace {

constexpr double kLeastKnown = 0.1, kLeastSeconds = 1.0, kStepSeconds = 5.0;

std::string clockText(double seconds)
{
    const auto whole = static_cast<long>(seconds);
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%ld:%02ld", whole / 60, whole % 60);
    return text.data();
}

} // namespace

double ExportTask::fraction() const
{
    return total == 0 ? 0.0 : (static_cast<double>(done) + frameFraction) / static_cast<double>(total);
}

std::optional<double> ExportTask::singleSeconds(double now) const
{
    const double p = fraction(), elapsed = now - startedAt;
    if (total != 1 || p < kLeastKnown || p >= 1 || elapsed < kLeastSeconds) return std::nullopt;
    return std::round(elapsed * (1 - p) / p);
}

std::string ExportTask::etaText(double now) const
{
    if (frameTimes.empty()) {
        const auto seconds = singleSeconds(now);
        return seconds ? clockText(*seconds) : "";
    }
    const double mean =
        std::accumulate(frameTimes.begin(), frameTimes.end(), 0.0) / static_cast<double>(frameTimes.size());
    return clockText(std::round(mean * static_cast<double>(total - std::min(done, total)) / kStepSeconds) *
                     kStepSeconds);
}

std::string ExportTask::caption(double now) const
{
    if (cancelling) return T("export.stopping");
    if (waiting) return T("export.waiting");
    const std::string eta = etaText(now);
    return T("export.caption", {{"n", std::min(done + 1, total)}, {"total", total}}) +
           (eta.empty() ? "" : " · ~" + eta);
}

} // namespace tamlo
