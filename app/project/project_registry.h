// ProjectRegistry: the one small file that knows every project ever opened here: for the list of recent ones,
// and for the caches, which ask which projects are still alive and how finished they were left. Every change
// reads, changes and writes the file under a lock that all programs of this user share.
#pragma once

#include "platform/preferences.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

/// All times are seconds since 1970.
class ProjectRegistry {
public:
    struct Entry {
        std::string id;
        std::string path; ///< of the project's file
        std::string name; ///< its name without extension
        double lastOpened = 0;
        std::optional<double> lastClosed;
        bool settledAtClose = false; ///< every frame with a process had been exported
        std::int64_t frameCount = 0;

        bool operator==(const Entry&) const = default;
    };
    using Entries = std::map<std::string, Entry>; ///< by id

    struct RecentItem {
        std::string title;
        std::string url;
        bool operator==(const RecentItem&) const = default;
    };

    /// folder: the user's own.
    explicit ProjectRegistry(std::filesystem::path folder);

    /// The entries that can be read. Errors: TamloError where there is a file and the disk doesn't give it.
    Entries load() const;
    /// Newest first. A file that was not wholly understood is kept beside it as "projects.json.damaged".
    /// Errors: TamloError; the old file still stands.
    void save(const Entries& entries);
    /// Whether this session met a damaged registry. Projects that it doesn't name may be alive all the same.
    bool metDamage() const { return metDamage_; }

    /// Each returns whether it could be written down.
    bool opened(const std::filesystem::path& url, std::int64_t frames, double now);
    bool closed(const std::filesystem::path& url, std::int64_t frames, bool settled, double now);
    /// After a write: place and name.
    bool update(const std::filesystem::path& url, double now);

    /// The id under which a project stands, or will stand: its tag; sixteen digits where a living project of
    /// another place has that.
    static std::string idFor(const Entries& entries, const std::filesystem::path& url,
                             const std::function<bool(const std::string&)>& exists);

    /// Newest first, without the open one, those that are gone, and those before clearedAt; titles that occur
    /// twice tell their folders.
    static std::vector<RecentItem> recent(const Entries& entries, const std::optional<std::string>& current,
                                          std::optional<double> clearedAt,
                                          const std::function<bool(const std::string&)>& exists,
                                          std::size_t limit);
    /// The ten of the menu. clearRecent: from now on only what is opened later. Errors: PlatformError.
    std::vector<RecentItem> recentMenu(const std::optional<std::string>& current,
                                       const platform::Preferences& preferences) const;
    static void clearRecent(platform::Preferences& preferences, double now);

private:
    bool change(const std::filesystem::path& url, double now, const std::function<void(Entry&)>& edit);

    std::filesystem::path file_;
    std::atomic<bool> metDamage_{false};
};

} // namespace tamlo
