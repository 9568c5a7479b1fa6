#include "app/shell/tiles.h"

#include "app/preview/reduced.h"
#include "app/preview/view_key.h"
#include "app/shell/app_model.h"
#include "core/image/tamlo_error.h"
#include "core/pipeline/output_plan.h"
#include "core/profiles/formats/profile_error.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <array>

namespace tamlo {
namespace {

using Raster = ThumbCache::Raster;

constexpr std::int64_t kTileLong = 1024;
constexpr std::array<std::int64_t, 2> kInputLongs{1024, 2048};
constexpr std::size_t kMostPrints = 6;
constexpr double kFlushSeconds = 0.5;
constexpr std::int64_t kMostBytes = 192LL << 20; // some seventy tiles: several screens full
constexpr std::size_t kLooksAtOnce = 4;          // the others stay in an order that can still change

std::int64_t bytesOf(const Tiles::Image& image)
{
    return static_cast<std::int64_t>(image->rgba.size());
}

} // namespace

Tiles::Tiles(Previews& previews, SourceLoads& loads)
    : previews_(previews),
      loads_(loads),
      disk_(previews.loop, "tamlo.tiles"),
      writer_(previews.loop, "tamlo.thumbs", platform::Niceness::utility)
{}

Tiles::Image Tiles::tile(const FrameID& id) const
{
    const auto found = tiles_.find(id);
    return found == tiles_.end() ? nullptr : found->second.image;
}

void Tiles::setVisible(const FrameIDs& ids)
{
    visible_ = {ids.begin(), ids.end()};
    const auto isVisible = [this](const FrameID& id) { return visible_.contains(id); };
    std::ranges::stable_partition(looks_, [&](const auto& look) { return isVisible(look.first); });
    std::ranges::stable_partition(sourceQueue_, isVisible);
    for (const FrameID& id : ids)
        if (!tiles_.contains(id) && !pending_.contains(id)) renderOne(id);
}

/// Nobody looks, and there is no room: it is read when it comes into view.
bool Tiles::waitsOnDisk(const FrameID& id, const std::string& key) const
{
    const auto there = persisted_.find(id);
    return !visible_.contains(id) && !tiles_.contains(id) && there != persisted_.end() &&
           there->second == key;
}

bool Tiles::isRoom() const
{
    return bytes_ < kMostBytes;
}

void Tiles::keep(const FrameID& id, Image image)
{
    drop(id);
    bytes_ += bytesOf(image);
    byAge_[++lastAge_] = id;
    tiles_[id] = {std::move(image), lastAge_};
    for (auto oldest = byAge_.begin(); bytes_ > kMostBytes && oldest != byAge_.end();) {
        const FrameID other = (oldest++)->second;
        if (other == id || visible_.contains(other)) continue;
        drop(other);
        shown_.erase(other);
        stubs_.erase(other);
    }
}

void Tiles::drop(const FrameID& id)
{
    const auto found = tiles_.find(id);
    if (found == tiles_.end()) return;
    bytes_ -= bytesOf(found->second.image);
    byAge_.erase(found->second.age);
    tiles_.erase(found);
}

void Tiles::setShowsOriginals(bool shows)
{
    if (shows == showsOriginals_) return;
    showsOriginals_ = shows;
    renderAll();
}

std::optional<std::string> Tiles::viewKey(const Frame& frame, bool originals) const
{
    return viewKey(frame, model_->project(), originals, previews_);
}

std::optional<std::string> Tiles::viewKey(const Frame& frame, const Project& project, bool originals,
                                          const Previews& previews)
{
    try {
        return ViewKey::key(ViewKey::inputsOf(frame, project.cropGate, originals, previews.store,
                                              previews.build, &project.frames));
    } catch (const TamloError&) {
    } catch (const platform::PlatformError&) {}
    return std::nullopt; // no name, no tile on disk
}

/// A file that is another picture than the frame remembers must not leave its tile under that one's name, and
/// one that can't be recognised has no name that will still be its own tomorrow.
bool Tiles::mayPersist(const FrameID& id) const
{
    const FrameRef frame = model_->project().frame(id);
    return frame && frame->fingerprint && model_->linker.state(id) != FileState::changed;
}

bool Tiles::isOnScreen(const FrameID& id) const
{
    const Selection& selection = model_->selection;
    return !showsOriginals_ && selection.screen() == Screen::develop && selection.cursor() == id;
}

bool Tiles::isWanted(const FrameID& id, const std::string& key) const
{
    const auto found = wanted_.find(id);
    return found != wanted_.end() && found->second == key;
}

void Tiles::render(const FrameIDs& ids)
{
    for (const FrameID& id : ids) renderOne(id);
}

void Tiles::renderAll()
{
    for (const FrameRef& frame : model_->project().visibleFrames()) renderOne(frame->id);
}

void Tiles::renderOne(const FrameID& id)
{
    const FrameRef frame = model_->project().frame(id);
    if (!frame || !showsGrid_) return;
    const std::optional<std::string> key = viewKey(*frame, showsOriginals_);
    if (!key) return;
    wanted_[id] = *key;
    if (const auto shown = shown_.find(id); shown != shown_.end() && shown->second == *key && !stubs_[id])
        return void(pending_.erase(id));
    if (waitsOnDisk(id, *key)) return void(pending_.erase(id));
    pending_.insert(id);
    const auto print = std::ranges::find_if(prints_, [&](const Print& one) { return one.key == *key; });
    if (print != prints_.end()) return reduceAndKeep(id, *key, print->image, Raster::p);
    if (const auto missed = missedOnDisk_.find(id); missed != missedOnDisk_.end() && missed->second == *key)
        return renderFromSource(id, *key);
    visible_.contains(id) ? looks_.emplace_front(id, *key) : looks_.emplace_back(id, *key);
    pumpLooks();
}

void Tiles::pumpLooks()
{
    while (!looks_.empty() && looking_ < kLooksAtOnce) {
        const auto [id, key] = looks_.front();
        looks_.pop_front();
        if (isWanted(id, key)) lookOnDisk(id, key);
    }
}

void Tiles::lookOnDisk(const FrameID& id, const std::string& key)
{
    struct Found {
        Image image;
        bool isStub = false, isStale = false, isThereUnread = false;
    };
    const bool mayRead = mayPersist(id), onlyAsks = !isRoom() && !visible_.contains(id);
    ++looking_;
    disk_.run(
        [&thumbs = previews_.thumbs, key, mayRead, onlyAsks, scale = displayScale_]() -> Found {
            if (!mayRead) return {};
            if (onlyAsks && thumbs.holds(key)) return {nullptr, false, false, true};
            if (auto tile = thumbs.read(key, Raster::p)) {
                const bool isStub = tile->raster == Raster::t && scale > 1;
                return {std::make_shared<const ReadyImage>(std::move(tile->image)), isStub, false};
            }
            auto stale = thumbs.readStale(key);
            return {stale ? std::make_shared<const ReadyImage>(std::move(*stale)) : nullptr, true, true};
        },
        [this, id, key](Found found) {
            --looking_;
            pumpLooks();
            const auto shown = shown_.find(id);
            const bool isThere = shown != shown_.end() && shown->second == key && !stubs_[id];
            if (!isWanted(id, key) || isThere) return; // the develop screen was quicker
            if (found.isThereUnread) {
                persisted_[id] = key;
                pending_.erase(id);
                if (visible_.contains(id)) renderOne(id); // it has come into view meanwhile
                return;
            }
            if (found.image) show(id, key, found.image, found.isStub);
            if (found.image && !found.isStale) {
                persisted_[id] = key;
                pending_.erase(id);
                return;
            }
            missedOnDisk_[id] = key;
            renderFromSource(id, key);
        });
}

void Tiles::renderFromSource(const FrameID& id, const std::string& key)
{
    const FrameRef frame = model_->project().frame(id);
    if (!frame || isOnScreen(id)) return; // the print that is being made there is its tile too
    if (const FrameStore::SourceRef source = previews_.frames.source(id)) return submit(frame, source, key);
    if (model_->linker.state(id) == FileState::unreadable) return void(pending_.erase(id));
    if (loads_.isLoading(id)) return; // its arrival comes back here
    if (std::ranges::find(sourceQueue_, id) == sourceQueue_.end()) sourceQueue_.push_back(id);
    pumpSources();
}

/// As many sources at a time as the store decodes: the rest stays in an order that can still change.
void Tiles::pumpSources()
{
    while (!sourceQueue_.empty() && loads_.loadingCount() < previews_.frames.loadConcurrency()) {
        const FrameID id = sourceQueue_.front();
        sourceQueue_.pop_front();
        if (model_->project().frame(id)) loads_.load(id);
    }
}

void Tiles::sourceArrived(const FrameID& id)
{
    const auto wanted = wanted_.find(id);
    if (wanted != wanted_.end() && pending_.contains(id)) {
        if (previews_.frames.source(id))
            renderOne(id);
        else
            pending_.erase(id); // it can't be had
    }
    pumpSources();
}

void Tiles::submit(const FrameRef& frame, const FrameStore::SourceRef& source, const std::string& key)
{
    KeyedRenderer::Request request;
    request.image = source->proxy;
    request.lights = source->lights;
    request.inputLong = kTileLong;
    request.gain = originalGain(source->stats);
    request.original = {frame->crop, frame->orient.rot * 90, frame->orient.mirror};
    if (frame->process && !showsOriginals_) {
        request.process = renderProcess(*frame->process, *frame, source->stats, model_->project().cropGate,
                                        &model_->project().frames);
        try {
            const RenderChoices choices = choicesOf(*request.process, previews_.store);
            request.inputLong = Pipeline::previewInputLong(source->proxy.size(), choices.film, choices.paper,
                                                           choices.options, kInputLongs);
        } catch (const ProfileError&) {
        } catch (const TamloError&) {
            // The render fails and tells.
        }
    }
    const FrameID id = frame->id;
    previews_.renderer.submit("thumb:" + id.text(), std::move(request),
                              [this, id, key](KeyedRenderer::Outcome outcome) {
                                  const auto* output = std::get_if<KeyedRenderer::Output>(&outcome);
                                  if (output && isWanted(id, key))
                                      reduceAndKeep(id, key, output->image, Raster::t);
                                  else if (std::holds_alternative<KeyedRenderer::Failure>(outcome))
                                      pending_.erase(id); // the tile stays as it was
                              });
}

void Tiles::adopt(const FrameID& id, const std::optional<ProcessSettings>& process, const Image& print)
{
    const FrameRef frame = model_->project().frame(id);
    if (!frame || showsOriginals_ || frame->process.operator bool() != process.has_value()) return;
    if (process && !(*frame->process == *process)) return;
    const std::optional<std::string> key = viewKey(*frame, false);
    if (!key) return;
    std::erase_if(prints_, [&](const Print& one) { return one.key == *key; });
    prints_.push_back({*key, print});
    if (prints_.size() > kMostPrints) prints_.pop_front();
    wanted_[id] = *key;
    previews_.renderer.cancel("thumb:" + id.text());
    reduceAndKeep(id, *key, print, Raster::p);
}

void Tiles::reduceAndKeep(const FrameID& id, const std::string& key, const Image& image, Raster raster)
{
    disk_.run([image] { return std::make_shared<const ReadyImage>(reduced(*image, kTileLong)); },
              [this, id, key, raster](Image tile) {
                  if (!isWanted(id, key)) return;
                  show(id, key, tile, false);
                  if (raster == Raster::p) previews_.renderer.cancel("thumb:" + id.text());
                  pending_.erase(id);
                  persist(id, key, std::move(tile), raster);
              });
}

void Tiles::show(const FrameID& id, const std::string& key, Image image, bool isStub)
{
    shown_[id] = key;
    stubs_[id] = isStub;
    keep(id, std::move(image));
    ++shownGen_;
    model_->observers.noteTile(id);
}

void Tiles::persist(const FrameID& id, const std::string& key, Image image, Raster raster)
{
    if (!mayPersist(id)) return;
    waiting_.push_back({id, key, std::move(image), raster});
    unwritten_.insert(key);
    flushTimer_ = previews_.loop.after(kFlushSeconds, [this] { flush(false); });
}

FrameViews::SheetTile Tiles::sheetTile(const FrameID& id) const
{
    using State = FrameViews::SheetTile::State;
    const FrameRef frame = model_->project().frame(id);
    const std::optional<std::string> key = frame ? viewKey(*frame, showsOriginals_) : std::nullopt;
    if (!key) return {};
    const auto shown = shown_.find(id);
    const auto stub = stubs_.find(id);
    const bool isShown =
        shown != shown_.end() && shown->second == *key && !(stub != stubs_.end() && stub->second);
    const Image inMemory = isShown ? tile(id) : nullptr;
    const bool isOnDisk = mayPersist(id) && previews_.thumbs.has(*key);
    // What is kept is waited for: read back it is the same in every sheet, which the print itself is not.
    if (!isOnDisk && (!inMemory || unwritten_.contains(*key)))
        return {pending_.contains(id) || inMemory ? State::coming : State::none, {}};
    return {State::ready, [&thumbs = previews_.thumbs, key = *key, inMemory, isOnDisk]() -> Image {
                auto read = isOnDisk ? thumbs.read(key, Raster::p) : std::nullopt;
                return read ? std::make_shared<const ReadyImage>(std::move(read->image)) : inMemory;
            }};
}

void Tiles::flush(bool wait)
{
    flushTimer_.cancel();
    std::unordered_map<std::string, int> inUse;
    for (const auto& [id, key] : wanted_) ++inUse[key];
    for (Waiting& tile : std::exchange(waiting_, {})) {
        std::string& earlier = persisted_[tile.id];
        const bool removes = !earlier.empty() && earlier != tile.key && !inUse.contains(earlier);
        writer_.run(
            [&thumbs = previews_.thumbs, tile, gone = removes ? earlier : std::string()] {
                if (!gone.empty())
                    for (const Raster raster : {Raster::p, Raster::t}) thumbs.removeFile(gone, raster);
                thumbs.store(tile.key, *tile.image, tile.raster);
                return 0;
            },
            [this, key = tile.key](int) { unwritten_.erase(key); });
        earlier = tile.key;
    }
    if (wait) writer_.drain();
}

void Tiles::forget(const FrameID& id)
{
    previews_.renderer.cancel("thumb:" + id.text());
    drop(id);
    stubs_.erase(id);
    pending_.erase(id);
    for (auto* map : {&wanted_, &shown_, &missedOnDisk_, &persisted_}) map->erase(id);
    std::erase(sourceQueue_, id);
    std::erase_if(looks_, [&](const auto& look) { return look.first == id; });
}

void Tiles::clear()
{
    previews_.renderer.cancel("thumb:");
    flush(false);
    tiles_.clear();
    byAge_.clear();
    bytes_ = 0;
    visible_.clear();
    looks_.clear();
    stubs_.clear();
    pending_.clear();
    for (auto* map : {&wanted_, &shown_, &missedOnDisk_, &persisted_}) map->clear();
    sourceQueue_.clear();
    prints_.clear();
}

} // namespace tamlo
