// FrameStore: the one owner of decoded pixels. A bounded set of proxies, two details of at most 4,096 pixels
// and one larger one. It decides how a proxy is made, how many decodes run at a time and which pictures stay.
// Called on the main thread, answers there; decodes run on queues, and no lock is held meanwhile.
#pragma once

#include "app/preview/proxy_cache.h"
#include "app/preview/source_decode.h"
#include "app/project/roll.h"
#include "platform/job_queue.h"
#include "platform/main_loop.h"

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace tamlo {

class FrameStore {
public:
    using SourceRef = std::shared_ptr<const FrameSource>;

    /// How a load ended: the source, or why there is none. Neither: the frame was forgotten meanwhile.
    struct Loaded {
        SourceRef source;
        std::optional<std::string> problem;
    };

    /// Who makes pixels; tests script it.
    struct Decoders {
        std::function<FrameSource(const std::filesystem::path&, WBMode)> proxy = SourceDecode::proxy;
        std::function<RGBImage(const std::filesystem::path&, std::int64_t, WBMode)> detail =
            SourceDecode::detail;
        std::function<RGBImage(const std::filesystem::path&, std::int64_t, WBMode)> full = SourceDecode::full;
    };

    /// cache: null for none. memoryBytes: what this process may use.
    FrameStore(platform::MainLoop& loop, ProxyCache* cache, std::int64_t memoryBytes, Decoders decoders);
    FrameStore(platform::MainLoop& loop, ProxyCache* cache);
    ~FrameStore();
    FrameStore(const FrameStore&) = delete;
    FrameStore& operator=(const FrameStore&) = delete;

    /// Limits for so much memory.
    static std::int64_t sourceCapBytes(std::int64_t memoryBytes);
    static std::size_t loadConcurrency(std::int64_t memoryBytes);
    std::size_t loadConcurrency() const { return concurrency_; }

    /// The proxy in memory, now the last to go; null where there is none.
    SourceRef source(const FrameID& id);
    /// From memory, from the cache or from the file. Requests of one frame share one decode.
    void load(const FrameRef& frame, WBMode wb, std::function<void(Loaded)> completion);
    /// From memory or from the cache, for a frame whose file is away.
    void loadCachedProxy(const FrameRef& frame, WBMode wb, std::function<void(Loaded)> completion);

    /// The same on the calling thread, any one, and nothing of it is kept; null where the cache alone is
    /// asked and has none. Errors: those of ImageLoader.
    SourceRef loadHere(const Frame& frame, bool hasFile);

    struct Detail {
        std::int64_t longSide = 0;
        std::int64_t capLongPx = 0; ///< of the source; 0 for none
        bool isMaster = false;      ///< decoded as for an export
        WBMode wb = WBMode::film;
        bool operator==(const Detail&) const = default;
    };
    /// A picture of at least that long side. The completion gets none after a failure, and is dropped where
    /// a later request takes its place; one for the same picture goes on with the decode that is under way.
    void loadDetail(const FrameRef& frame, const Detail& detail,
                    std::function<void(std::optional<RGBImage>)> completion);
    /// Forgets the detail that is being decoded, if any.
    void cancelDetail();

    /// What an export multiplies a RAW frame by comes from here: what was measured for its preview, else of
    /// the decoded picture. Absent for a picture that is no RAW file. From any thread.
    std::optional<SourceExposure::Stats> exportStats(const Frame& frame, WBMode wb, const RGBImage& decoded);

    /// The same of what the lights of a display picture lack; empty for a RAW file.
    DisplayLights::Map exportLights(const Frame& frame, const RGBImage& decoded);

    /// Forgets all pictures of a frame, and what is being loaded of it.
    void evict(const FrameID& id);
    /// Frees the large slot, unless it is this frame's.
    void dropBigDetail(const std::optional<FrameID>& keeping);
    /// Forgets everything.
    void clear();
    /// These stay, whatever the limit.
    void setPins(std::set<FrameID> pins);

    std::int64_t sourceBytes() const;
    std::size_t loading() const;

private:
    struct Slot {
        FrameID id;
        WBMode wb = WBMode::film;
        std::int64_t asked = 0; ///< long side; the decode may be a pixel short of it
        bool isMaster = false;
        RGBImage image;
        bool serves(const FrameID& frame, std::int64_t longSide, const Detail& detail) const;
    };
    struct Running {
        std::shared_ptr<std::atomic<bool>> cancelled = std::make_shared<std::atomic<bool>>(false);
        std::vector<std::function<void(Loaded)>> completions;
    };
    using DetailTaker = std::function<void(std::optional<RGBImage>)>;
    struct RunningDetail {
        FrameID id;
        Detail detail;
        std::int64_t generation = 0;
        std::atomic<bool> cancelled{false};
        DetailTaker completion; ///< under the store's lock
    };
    using LoadKey = std::tuple<FrameID, std::int64_t, WBMode, bool>; ///< frame, generation, wb, cache only

    void beginLoad(const FrameRef& frame, WBMode wb, bool cacheOnly, std::function<void(Loaded)> completion);
    FrameSource decodeProxy(const Frame& frame, WBMode wb);
    std::optional<FrameSource> cachedProxy(const Frame& frame, WBMode wb, bool fileIsThere);
    Loaded loadNow(const Frame& frame, WBMode wb, bool cacheOnly);
    void finishLoad(const LoadKey& key, Loaded loaded);
    void keep(const FrameID& id, const SourceRef& source);
    void trimToCap(const FrameID& keeping);
    void keepDetail(Slot slot);
    void decodeDetail(const FrameRef& frame, std::int64_t longSide, RunningDetail& running);
    void cancelDetailLocked();
    std::optional<RGBImage> detailInMemory(const FrameID& id, std::int64_t longSide, const Detail& detail);
    void complete(std::function<void()> completion);

    platform::MainLoop& loop_;
    ProxyCache* cache_;
    Decoders decoders_;
    std::int64_t capBytes_;
    std::size_t concurrency_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    const std::weak_ptr<bool> isAlive_ = alive_; ///< the same for other threads, which never see it change

    mutable std::mutex mutex_;                         ///< of everything below but the queues
    std::list<std::pair<FrameID, SourceRef>> sources_; ///< the first is the next to go
    std::set<FrameID> pins_;
    std::unordered_map<FrameID, std::int64_t> generations_;
    std::map<LoadKey, Running> running_;
    std::list<Slot> fine_; ///< the first is the next to go
    std::optional<Slot> big_;
    std::shared_ptr<RunningDetail> detail_; ///< the latest that was asked for and is not there yet

    platform::JobQueue loadQueue_;
    platform::SerialQueue fineQueue_; // last: joined before the rest goes
};

/// The fingerprint of the file as it lies there now: the frame's where size and time agree with it, else read
/// anew; absent for no file that can be read.
std::optional<Fingerprint> presentFingerprint(const Frame& frame);

} // namespace tamlo
