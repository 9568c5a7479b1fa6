// What a run of tamlo develop tells of each picture on standard output: the path of the finished file, or
// with --json one object a line.
#pragma once

#include "cli/develop_jobs.h"

#include <chrono>
#include <iosfwd>

namespace tamlo::cli {

class RunReport {
public:
    /// json: one object a line, {"event": "frame" | "skipped" | "failed" | "done", "n", "total", "input",
    /// "file", "seconds"}, "failed" with "error". n counts the pictures from 1; of "done" it is how many were
    /// finished.
    RunReport(std::ostream& out, std::size_t total, bool json);

    void begin();
    void finished(const DevelopJob& job);
    void skipped(const DevelopJob& job);
    void failed(const DevelopJob& job, const std::string& error);
    /// The run's last word. stopped: it was interrupted.
    void done(bool stopped);

private:
    void tell(const char* event, const DevelopJob& job, const std::string& error) const;

    using Clock = std::chrono::steady_clock;
    std::ostream& out_;
    std::size_t total_, n_ = 0, finished_ = 0, skipped_ = 0, failed_ = 0;
    bool json_;
    Clock::time_point start_ = Clock::now(), pictureStart_ = start_;
};

} // namespace tamlo::cli
