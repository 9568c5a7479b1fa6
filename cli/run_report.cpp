#include "cli/run_report.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <ostream>

namespace tamlo::cli {
namespace {

using nlohmann::ordered_json;

double secondsSince(std::chrono::steady_clock::time_point start)
{
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return std::round(passed.count() * 1000.0) / 1000.0;
}

/// On one line; bytes of a file's name that are no text become U+FFFD.
std::string inOneLine(const ordered_json& object)
{
    return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace

RunReport::RunReport(std::ostream& out, std::size_t total, bool json) : out_(out), total_(total), json_(json)
{}

void RunReport::begin()
{
    ++n_;
    pictureStart_ = Clock::now();
}

void RunReport::finished(const DevelopJob& job)
{
    ++finished_;
    if (json_)
        tell("frame", job, "");
    else if (!job.toStandardOutput)
        out_ << job.output.string() << std::endl;
}

void RunReport::skipped(const DevelopJob& job)
{
    ++skipped_;
    if (json_) tell("skipped", job, "");
}

void RunReport::failed(const DevelopJob& job, const std::string& error)
{
    ++failed_;
    if (json_) tell("failed", job, error);
}

void RunReport::done(bool stopped)
{
    if (!json_) return;
    ordered_json object{{"event", "done"},     {"n", finished_},    {"total", total_},
                        {"skipped", skipped_}, {"failed", failed_}, {"seconds", secondsSince(start_)}};
    if (stopped) object["stopped"] = true;
    out_ << inOneLine(object) << std::endl;
}

void RunReport::tell(const char* event, const DevelopJob& job, const std::string& error) const
{
    ordered_json object{{"event", event},
                        {"n", n_},
                        {"total", total_},
                        {"input", job.input.string()},
                        {"file", job.output.string()},
                        {"seconds", secondsSince(pictureStart_)}};
    if (!error.empty()) object["error"] = error;
    out_ << inOneLine(object) << std::endl;
}

} // namespace tamlo::cli
