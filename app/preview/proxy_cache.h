// ProxyCache: the folder in which previews outlive the program, a proxy a source and a tile a view, and its
// housekeeping. A cache is never a source of errors: what can't be read is a miss, what can't be written is
// not written, and a folder that can't be made leaves everything working with nothing kept. From any thread.
#pragma once

#include "app/preview/proxy_file.h"
#include "app/preview/proxy_index.h"
#include "app/preview/proxy_trim.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace tamlo {

class ProxyCache {
public:
    using Path = std::filesystem::path;

    struct Config {
        Path folder = defaultFolder();
        /// The wall clock, seconds since 1970.
        std::function<double()> date;
        const ProjectRegistry* registry = nullptr; ///< none: no project is known
        /// Told when so much has been stored since the last trim that another is due. On the storing thread.
        std::function<void()> onGrown = {};
    };

    /// The path of TAMLO_PROXY_DIR, else "proxies" in the user's folder of caches.
    static Path defaultFolder();

    explicit ProxyCache(Config config);
    ~ProxyCache();

    const Path& directory() const { return config_.folder; }
    ProxyIndex& index() { return index_; }

    /// Files that are stored from now on belong to this project.
    void setOpenProject(std::optional<std::string> id);
    std::optional<std::string> openProject() const;

    // Proxies, by ProxyFile::key.

    void store(const FrameSource& source, const std::string& key);
    std::optional<FrameSource> read(const std::string& key);
    /// From the first 72 bytes.
    std::optional<SourceShape> readShape(const std::string& key) const;
    /// Whether a proxy has the shape of its file, as that says of itself: a turn that was written into the
    /// file later changes it. Always of a RAW file, and where the file doesn't say.
    static bool shapeMatches(const FrameSource& source, const Path& file);

    /// A file that was written beside the proxies: its entry, and its part in the growth.
    void noteWritten(const std::string& key, std::int64_t tier, std::int64_t bytes);

    void touch(const std::string& key) { index_.touch(key, config_.date()); }

    // Housekeeping.

    struct Amount {
        std::int64_t files = 0, bytes = 0;
    };
    Amount usage() const;
    std::int64_t openProjectBytes();
    /// capBytes: none for no limit.
    Amount trim(std::optional<std::int64_t> capBytes, std::optional<std::int64_t> freeBytes, double now);
    /// Everything but what the open project uses.
    Amount clear();
    /// What no finished or living project is likely to want soon, whatever the cap.
    Amount clearCold(double now);
    void flush(double minIntervalSeconds = 0) { index_.flush(minIntervalSeconds, config_.date()); }

    /// The limit of a preference in GB; none below 1.
    static std::optional<std::int64_t> capBytes(std::optional<double> preferenceGB);

private:
    ProxyTrim::Input reconciled(double now);
    Amount remove(const std::vector<std::string>& keys, const ProxyIndex::Entries& entries);

    Config config_;
    double sessionStart_;
    ProxyIndex index_;
    mutable std::mutex mutex_; ///< of the open project
    std::optional<std::string> open_;
    std::atomic<std::int64_t> grown_{0};
};

/// The bytes of an ordinary file; absent where it can't be read whole.
std::optional<std::vector<std::uint8_t>> cacheBytes(const std::filesystem::path& file,
                                                    std::int64_t mostBytes);

} // namespace tamlo
