#include "app/preview/frame_store.h"

#include "core/image/cancellation.h"
#include "core/image/tamlo_error.h"
#include "core/io/decode_rules.h"
#include "platform/file_info.h"
#include "platform/memory.h"
#include "platform/platform_error.h"
#include "platform/raw_engine.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20, kGiB = std::int64_t{1} << 30;
/// Longest side of a detail that is not a large one, and how many of those stay.
constexpr std::int64_t kFineLong = 4096;
constexpr std::size_t kMostFine = 2;

std::int64_t bytesOf(const FrameSource& source)
{
    return static_cast<std::int64_t>((source.proxy.data.size() + source.lights.missing.data.size()) *
                                     sizeof(float));
}

bool sameFile(const std::optional<platform::FileInfo>& a, const std::optional<platform::FileInfo>& b)
{
    return a && b && a->size == b->size && a->mtime == b->mtime;
}

} // namespace

std::optional<Fingerprint> presentFingerprint(const Frame& frame)
{
    const auto info = platform::fileInfo(frame.url);
    if (!info) return std::nullopt;
    if (frame.fingerprint && frame.fingerprint->size == info->size &&
        frame.fingerprint->mtime == info->mtime && info->mtime != 0)
        return frame.fingerprint;
    return Fingerprint::read(frame.url);
}

std::int64_t FrameStore::sourceCapBytes(std::int64_t memoryBytes)
{
    return std::clamp(memoryBytes / 16, 768 * kMiB, 6 * kGiB);
}

std::size_t FrameStore::loadConcurrency(std::int64_t memoryBytes)
{
    return memoryBytes < 12 * kGiB ? 2 : memoryBytes < 28 * kGiB ? 3 : 4;
}

FrameStore::FrameStore(platform::MainLoop& loop, ProxyCache* cache, std::int64_t memoryBytes,
                       Decoders decoders)
    : loop_(loop),
      cache_(cache),
      decoders_(std::move(decoders)),
      capBytes_(sourceCapBytes(memoryBytes)),
      concurrency_(loadConcurrency(memoryBytes)),
      loadQueue_("tamlo.load", concurrency_),
      fineQueue_("tamlo.fine")
{}

FrameStore::FrameStore(platform::MainLoop& loop, ProxyCache* cache)
    : FrameStore(loop, cache, platform::memoryLimitBytes(), Decoders())
{}

FrameStore::~FrameStore()
{
    alive_.reset();
    clear();
}

void FrameStore::complete(std::function<void()> completion)
{
    loop_.post([alive = isAlive_, completion = std::move(completion)] {
        if (!alive.expired()) completion();
    });
}

FrameStore::SourceRef FrameStore::source(const FrameID& id)
{
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find_if(sources_, [&](const auto& entry) { return entry.first == id; });
    if (found == sources_.end()) return nullptr;
    sources_.splice(sources_.end(), sources_, found);
    return found->second;
}

void FrameStore::load(const FrameRef& frame, WBMode wb, std::function<void(Loaded)> completion)
{
    const SourceRef known = source(frame->id);
    if (known && (known->wb == wb || !known->isRAW))
        return complete([known, completion = std::move(completion)] { completion({known, {}}); });
    beginLoad(frame, wb, false, std::move(completion));
}

void FrameStore::loadCachedProxy(const FrameRef& frame, WBMode wb, std::function<void(Loaded)> completion)
{
    if (const SourceRef known = source(frame->id))
        return complete([known, completion = std::move(completion)] { completion({known, {}}); });
    beginLoad(frame, wb, true, std::move(completion));
}

void FrameStore::beginLoad(const FrameRef& frame, WBMode wb, bool cacheOnly,
                           std::function<void(Loaded)> completion)
{
    LoadKey key;
    std::shared_ptr<std::atomic<bool>> cancelled;
    {
        const std::lock_guard lock(mutex_);
        key = {frame->id, generations_[frame->id], wb, cacheOnly};
        const auto [running, isNew] = running_.try_emplace(key);
        running->second.completions.push_back(std::move(completion));
        if (!isNew) return;
        cancelled = running->second.cancelled;
    }
    loadQueue_.submit([this, frame, key, cancelled, wb, cacheOnly] {
        platform::useOneRawThread(); // as many decodes at a time as there is room for; each has its own core
        const CancellationScope scope([cancelled] { return cancelled->load(); });
        finishLoad(key, *cancelled ? Loaded() : loadNow(*frame, wb, cacheOnly));
    });
}

FrameStore::Loaded FrameStore::loadNow(const Frame& frame, WBMode wb, bool cacheOnly)
{
    try {
        if (!cacheOnly) return {std::make_shared<const FrameSource>(decodeProxy(frame, wb)), {}};
        std::optional<FrameSource> cached = cachedProxy(frame, wb, false);
        return {cached ? std::make_shared<const FrameSource>(std::move(*cached)) : nullptr, {}};
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) return {};
        return {nullptr, error.what()};
    } catch (const std::exception& error) {
        return {nullptr, error.what()};
    }
}

FrameStore::SourceRef FrameStore::loadHere(const Frame& frame, bool hasFile)
{
    const WBMode wb = ProxyFile::wbOf(frame);
    const SourceRef known = source(frame.id);
    if (known && (known->wb == wb || !known->isRAW || !hasFile)) return known;
    if (hasFile) return std::make_shared<const FrameSource>(decodeProxy(frame, wb));
    std::optional<FrameSource> cached = cachedProxy(frame, wb, false);
    return cached ? std::make_shared<const FrameSource>(std::move(*cached)) : nullptr;
}

std::optional<FrameSource> FrameStore::cachedProxy(const Frame& frame, WBMode wb, bool fileIsThere)
{
    if (!cache_ || !frame.fingerprint) return std::nullopt;
    std::optional<FrameSource> source = cache_->read(ProxyFile::key(*frame.fingerprint, wb));
    const bool isRAW = ImageLoader::isRAW(frame.url);
    if (!source || source->isRAW != isRAW || (isRAW && source->wb != wb)) return std::nullopt;
    if (fileIsThere && !ProxyCache::shapeMatches(*source, frame.url)) return std::nullopt;
    return source;
}

FrameSource FrameStore::decodeProxy(const Frame& frame, WBMode wb)
{
    const auto before = platform::fileInfo(frame.url);
    Frame present = frame; // what lies there now may be another picture than the frame remembers
    present.fingerprint = cache_ ? presentFingerprint(frame) : std::nullopt;
    if (std::optional<FrameSource> cached = cachedProxy(present, wb, true)) return std::move(*cached);
    FrameSource source = decoders_.proxy(frame.url, wb);
    // Kept only where the file was the same all the while.
    if (present.fingerprint && sameFile(before, platform::fileInfo(frame.url)))
        cache_->store(source, ProxyFile::key(*present.fingerprint, source.wb));
    return source;
}

void FrameStore::finishLoad(const LoadKey& key, Loaded loaded)
{
    std::vector<std::function<void(Loaded)>> completions;
    {
        const std::lock_guard lock(mutex_);
        const auto running = running_.find(key);
        if (running == running_.end()) return;
        completions = std::move(running->second.completions);
        const bool isForgotten = *running->second.cancelled;
        running_.erase(running);
        if (isForgotten) loaded = {};
        if (loaded.source) keep(std::get<FrameID>(key), loaded.source);
    }
    for (auto& completion : completions)
        complete([loaded, completion = std::move(completion)] { completion(loaded); });
}

void FrameStore::keep(const FrameID& id, const SourceRef& source)
{
    std::erase_if(sources_, [&](const auto& entry) { return entry.first == id; });
    sources_.emplace_back(id, source);
    trimToCap(id);
}

void FrameStore::trimToCap(const FrameID& keeping)
{
    std::int64_t total = 0;
    for (const auto& [id, source] : sources_) total += bytesOf(*source);
    for (auto entry = sources_.begin(); total > capBytes_ && entry != sources_.end();) {
        const auto next = std::next(entry);
        if (entry->first != keeping && !pins_.contains(entry->first)) {
            total -= bytesOf(*entry->second);
            sources_.erase(entry);
        }
        entry = next;
    }
}

bool FrameStore::Slot::serves(const FrameID& frame, std::int64_t longSide, const Detail& detail) const
{
    return id == frame && wb == detail.wb && (isMaster || !detail.isMaster) &&
           std::max(asked, image.longSide()) >= longSide;
}

std::optional<RGBImage> FrameStore::detailInMemory(const FrameID& id, std::int64_t longSide,
                                                   const Detail& detail)
{
    const std::lock_guard lock(mutex_);
    if (longSide <= kFineLong) {
        const auto found =
            std::ranges::find_if(fine_, [&](const Slot& slot) { return slot.serves(id, longSide, detail); });
        if (found != fine_.end()) {
            fine_.splice(fine_.end(), fine_, found);
            return found->image;
        }
    }
    if (big_ && big_->serves(id, longSide, detail)) return big_->image;
    return std::nullopt;
}

void FrameStore::loadDetail(const FrameRef& frame, const Detail& detail,
                            std::function<void(std::optional<RGBImage>)> completion)
{
    const bool isRAW = ImageLoader::isRAW(frame->url);
    const std::int64_t longSide =
        ImageLoader::decodeLong(detail.longSide, isRAW ? detail.capLongPx : 0, ImageLoader::rawDecodeMode());
    if (auto known = detailInMemory(frame->id, longSide, detail)) {
        cancelDetail();
        return complete([known, completion = std::move(completion)] { completion(known); });
    }
    auto running = std::make_shared<RunningDetail>();
    {
        const std::lock_guard lock(mutex_);
        const std::int64_t generation = generations_[frame->id];
        if (detail_ && detail_->id == frame->id && detail_->detail == detail &&
            detail_->generation == generation) {
            detail_->completion = std::move(completion);
            return;
        }
        cancelDetailLocked();
        running->id = frame->id;
        running->detail = detail;
        running->generation = generation;
        running->completion = std::move(completion);
        detail_ = running;
    }
    fineQueue_.submit([this, frame, longSide, running] { decodeDetail(frame, longSide, *running); });
}

void FrameStore::decodeDetail(const FrameRef& frame, std::int64_t longSide, RunningDetail& running)
{
    if (running.cancelled) return;
    const Detail& detail = running.detail;
    std::optional<RGBImage> image;
    try {
        const CancellationScope scope([&running] { return running.cancelled.load(); });
        image = detail.isMaster ? decoders_.full(frame->url, detail.capLongPx, detail.wb)
                                : decoders_.detail(frame->url, longSide, detail.wb);
    } catch (const std::exception&) {
        // No larger picture: the proxy stays on screen.
    }
    DetailTaker completion;
    {
        const std::lock_guard lock(mutex_);
        if (running.cancelled) return;
        if (image && generations_[frame->id] == running.generation)
            keepDetail({frame->id, detail.wb, longSide, detail.isMaster, *image});
        completion = std::move(running.completion);
        detail_.reset();
    }
    complete([image = std::move(image), completion = std::move(completion)] { completion(image); });
}

void FrameStore::keepDetail(Slot slot)
{
    if (std::max(slot.asked, slot.image.longSide()) > kFineLong) {
        big_ = std::move(slot);
        return;
    }
    std::erase_if(fine_, [&](const Slot& other) {
        return other.id == slot.id && other.wb == slot.wb && other.asked <= slot.asked;
    });
    fine_.push_back(std::move(slot));
    if (fine_.size() > kMostFine) fine_.pop_front();
}

void FrameStore::cancelDetail()
{
    const std::lock_guard lock(mutex_);
    cancelDetailLocked();
}

void FrameStore::cancelDetailLocked()
{
    fineQueue_.dropPending();
    if (detail_) detail_->cancelled = true;
    detail_.reset();
}

std::optional<SourceExposure::Stats> FrameStore::exportStats(const Frame& frame, WBMode wb,
                                                             const RGBImage& decoded)
{
    if (!ImageLoader::isRAW(frame.url)) return std::nullopt;
    if (const SourceRef known = source(frame.id); known && known->wb == wb && known->stats)
        return known->stats;
    const auto fingerprint = cache_ ? presentFingerprint(frame) : std::nullopt;
    if (fingerprint)
        if (const auto shape = cache_->readShape(ProxyFile::key(*fingerprint, wb)); shape && shape->stats)
            return shape->stats;
    return SourceExposure::stats(SourceExposure::luminance(decoded));
}

DisplayLights::Map FrameStore::exportLights(const Frame& frame, const RGBImage& decoded)
{
    if (ImageLoader::isRAW(frame.url)) return {};
    const SourceRef known = source(frame.id);
    return known ? known->lights : SourceDecode::lights(decoded);
}

void FrameStore::evict(const FrameID& id)
{
    const std::lock_guard lock(mutex_);
    ++generations_[id];
    for (auto& [key, running] : running_)
        if (std::get<FrameID>(key) == id) *running.cancelled = true;
    std::erase_if(sources_, [&](const auto& entry) { return entry.first == id; });
    std::erase_if(fine_, [&](const Slot& slot) { return slot.id == id; });
    if (big_ && big_->id == id) big_.reset();
    if (detail_ && detail_->id == id) cancelDetailLocked();
}

void FrameStore::dropBigDetail(const std::optional<FrameID>& keeping)
{
    const std::lock_guard lock(mutex_);
    if (big_ && big_->id != keeping) big_.reset();
}

void FrameStore::clear()
{
    cancelDetail();
    const std::lock_guard lock(mutex_);
    for (auto& [key, running] : running_) {
        *running.cancelled = true;
        ++generations_[std::get<FrameID>(key)];
    }
    sources_.clear();
    fine_.clear();
    big_.reset();
    pins_.clear();
}

void FrameStore::setPins(std::set<FrameID> pins)
{
    const std::lock_guard lock(mutex_);
    pins_ = std::move(pins);
}

std::int64_t FrameStore::sourceBytes() const
{
    const std::lock_guard lock(mutex_);
    std::int64_t total = 0;
    for (const auto& [id, source] : sources_) total += bytesOf(*source);
    return total;
}

std::size_t FrameStore::loading() const
{
    const std::lock_guard lock(mutex_);
    return running_.size();
}

} // namespace tamlo
