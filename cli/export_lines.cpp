#include "cli/export_lines.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace tamlo::cli {
namespace {

using nlohmann::ordered_json;

void tellLine(std::ostream& out, const ordered_json& line)
{
    out << line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << std::endl;
}

} // namespace

void ExportLines::frame(const ExportedFrame& one, std::size_t place)
{
    if (!json_) return void(out_ << one.file.string() << std::endl);
    tellLine(out_, {{"event", "frame"},
                    {"n", place},
                    {"total", total_},
                    {"file", one.file.string()},
                    {"seconds", roundedSeconds(std::chrono::duration<double>(one.seconds))}});
}

void ExportLines::skipped(const std::string& file, std::size_t place, const std::string& reason)
{
    if (!json_) return;
    tellLine(out_,
             {{"event", "skipped"}, {"n", place}, {"total", total_}, {"file", file}, {"reason", reason}});
}

void ExportLines::failed(const std::string& file, std::size_t place, const std::string& why)
{
    if (!json_) return;
    tellLine(out_, {{"event", "failed"}, {"n", place}, {"total", total_}, {"file", file}, {"error", why}});
}

void ExportLines::done(const ExportOutcome& outcome, bool stopped, Clock::time_point start)
{
    if (!json_) return;
    ordered_json line{{"event", "done"}, {"n", outcome.written.size()}, {"total", total_}};
    line["failed"] = outcome.failed.size();
    line["seconds"] = roundedSeconds(Clock::now() - start);
    if (stopped) line["stopped"] = true;
    if (outcome.targetFault) line["error"] = *outcome.targetFault;
    tellLine(out_, line);
}

} // namespace tamlo::cli
