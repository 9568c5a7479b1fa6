// ProxyIndex: what is known of the files of the cache beside their names: how large they are, when they were
// last of use, and which projects use them. Kept in memory and in "index.json" of the cache's folder, which
// several programs may have open: each flush takes the other's news in. Losing it costs nothing but the order
// in which old files go. From any thread; no lock is held while a file is read or written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace tamlo {

class ProxyIndex {
public:
    struct Entry {
        std::string key;       ///< path of the file, seen from the cache's folder
        std::int64_t tier = 0; ///< 2048 for a proxy, 0 for a tile
        std::int64_t bytes = 0;
        double created = 0, lastUsed = 0;  ///< seconds since 1970
        std::vector<std::string> projects; ///< ids of those that use it, sorted

        bool operator==(const Entry&) const = default;
    };
    using Entries = std::map<std::string, Entry>; ///< by key

    /// sessionStart: when this run of the program began, seconds since 1970.
    ProxyIndex(std::filesystem::path folder, double sessionStart);

    /// The entries, read from disk at the first call. A missing or unreadable index is made anew from the
    /// files: then nothing is known of their owners, and `wasRebuilt` says so.
    Entries loaded();
    bool wasRebuilt();

    /// Adds or replaces; the owners that were known stay.
    void put(Entry entry);
    void remove(const std::vector<std::string>& keys);
    /// Notes a use: at most once an hour, and once a session.
    void touch(const std::string& key, double now);
    void bind(const std::vector<std::string>& keys, const std::string& project);

    /// Writes the index, unless nothing has changed or the last time was less than so many seconds ago.
    void flush(double minIntervalSeconds, double now);

private:
    void ensureLoaded();
    static Entries merged(Entries ours, const Entries& theirs, const std::set<std::string>& removed);

    std::filesystem::path folder_, file_;
    double sessionStart_;
    std::mutex loading_; ///< one reader of the file at a time
    std::mutex mutex_;
    bool isLoaded_ = false, wasRebuilt_ = false, hasNews_ = false;
    double lastFlush_ = 0;
    Entries entries_;
    std::set<std::string> removed_; ///< since the last flush
};

/// The files of a cache as the disk has them, as entries without owners.
ProxyIndex::Entries cacheFiles(const std::filesystem::path& folder);

} // namespace tamlo
