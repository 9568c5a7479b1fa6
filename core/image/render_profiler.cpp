#include "core/image/render_profiler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace tamlo {
namespace {

struct Totals {
    std::mutex lock;
    RenderProfiler::Snapshot values;
};

Totals& totals()
{
    static Totals all;
    return all;
}

} // namespace

bool RenderProfiler::enabled()
{
    static const bool asked = std::getenv("TAMLO_PROFILE") != nullptr;
    return asked;
}

void RenderProfiler::book(const char* name, std::int64_t pixels, double seconds)
{
    Totals& all = totals();
    const std::lock_guard guard(all.lock);
    Entry& entry = all.values.cpu[name];
    ++entry.calls;
    entry.seconds += seconds;
    entry.pixels += pixels;
}

void RenderProfiler::reset()
{
    Totals& all = totals();
    const std::lock_guard guard(all.lock);
    all.values = {};
}

RenderProfiler::Snapshot RenderProfiler::snapshot()
{
    Totals& all = totals();
    const std::lock_guard guard(all.lock);
    return all.values;
}

std::string RenderProfiler::report(const std::string& title, double total, std::size_t top)
{
    const Snapshot all = snapshot();
    std::vector<std::pair<std::string, Entry>> rows(all.cpu.begin(), all.cpu.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.second.seconds > b.second.seconds; });
    if (rows.size() > top) rows.resize(top);

    char line[160];
    std::snprintf(line, sizeof line, "%s: %.3f s\n%-24s %6s %10s %7s %9s\n", title.c_str(), total, "stage",
                  "calls", "seconds", "share", "ns/pixel");
    std::string text = line;
    for (const auto& [name, entry] : rows) {
        const double share = total > 0.0 ? 100.0 * entry.seconds / total : 0.0;
        const double nsPerPixel =
            entry.pixels > 0 ? 1e9 * entry.seconds / static_cast<double>(entry.pixels) : 0.0;
        std::snprintf(line, sizeof line, "%-24s %6lld %10.3f %6.1f%% %9.2f\n", name.c_str(),
                      static_cast<long long>(entry.calls), entry.seconds, share, nsPerPixel);
        text += line;
    }
    return text;
}

} // namespace tamlo
