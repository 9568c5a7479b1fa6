// ExportTask: how far a run of the export has come, and how long it may still take.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

struct ExportTask {
    std::size_t total = 0, done = 0;
    std::string currentName;
    double frameFraction = 0; ///< of the frame in hand, 0 to 1
    double startedAt = 0;     ///< seconds, of any clock
    std::vector<double> frameTimes;
    bool cancelling = false;
    bool waiting = false; ///< for an answer

    /// Of all frames, 0 to 1.
    double fraction() const;
    /// Seconds that a run of one frame still takes, from the time since its start; absent where it can't be
    /// told yet.
    std::optional<double> singleSeconds(double now) const;
    /// "1:05"; empty where nothing is known.
    std::string etaText(double now) const;
    std::string caption(double now) const;
};

} // namespace tamlo
