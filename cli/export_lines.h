// What an export tells on standard output: paths, or with --json one object a line.
#pragma once

#include "app/export/export_run.h"

#include <chrono>
#include <cmath>
#include <iosfwd>
#include <string>

namespace tamlo::cli {

class ExportLines {
public:
    using Clock = std::chrono::steady_clock;

    ExportLines(std::ostream& out, std::size_t total, bool json) : out_(out), total_(total), json_(json) {}

    void frame(const ExportedFrame& one, std::size_t place);
    void skipped(const std::string& file, std::size_t place, const std::string& reason);
    void failed(const std::string& file, std::size_t place, const std::string& why);
    void done(const ExportOutcome& outcome, bool stopped, Clock::time_point start);

private:
    std::ostream& out_;
    std::size_t total_;
    bool json_;
};

/// Thousandths of a second are as fine as a machine's run repeats itself.
inline double roundedSeconds(std::chrono::duration<double> passed)
{
    return std::round(passed.count() * 1000.0) / 1000.0;
}

} // namespace tamlo::cli
