// What an export notes in the roll: which frames were written, of those that still are as they were exported.
#pragma once

#include "app/export/export_run.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace tamlo::cli {

class ExportRecord {
public:
    /// records: false for a run that leaves the roll alone.
    ExportRecord(std::filesystem::path roll, bool records) : roll_(std::move(roll)), records_(records) {}

    void add(const ExportedFrame& frame);
    /// Why nothing could be noted; empty where all is.
    const std::string& problem() const { return problem_; }
    void flush();

private:
    using Clock = std::chrono::steady_clock;

    std::filesystem::path roll_;
    bool records_;
    Clock::time_point last_ = Clock::now();
    std::vector<ExportedFrame> waiting_;
    std::string problem_;
};

} // namespace tamlo::cli
