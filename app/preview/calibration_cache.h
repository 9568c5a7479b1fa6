// CalibrationCache: what the grain of a film was found to need, kept from one run of the program to the next.
// Solving it takes longer than all the rest of a proxy. A file belongs to the bytes of a film's profile and
// to one build of the program; whatever else it holds, or a damaged one, is a miss. From any thread.
#pragma once

#include "core/film/grain/growth_calibration.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace tamlo {

class CalibrationCache {
public:
    CalibrationCache(std::filesystem::path folder, std::string build);

    /// Hands the process what is known of a film, by the bytes of its profile; the disk is asked once.
    /// Returns how much that was.
    std::size_t recall(const std::string& filmProfile);
    /// Runs work that renders on a film with what is known of it, and keeps what the work has asked for where
    /// any of it is new. What the work throws is passed on, and what it has asked for is kept all the same.
    void during(const std::string& filmProfile, const std::function<void()>& work);

private:
    void keep(const std::string& filmProfile, const std::vector<Grain::CalibrationRecord>& records);

    using Records = std::set<Grain::CalibrationRecord>;

    std::filesystem::path fileOf(const std::string& name) const;

    std::filesystem::path folder_;
    std::string build_;
    std::mutex mutex_;
    std::map<std::string, Records> known_; ///< by the hash of the profile
};

} // namespace tamlo
