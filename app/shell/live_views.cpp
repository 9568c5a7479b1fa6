#include "app/shell/live_views.h"

#include "app/shell/app_model.h"
#include "core/image/tamlo_error.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/memory.h"

#include <algorithm>
#include <utility>

namespace tamlo {
namespace {

constexpr double kDaySeconds = 86'400;
constexpr const char* kCapPreference = "proxyCacheCapGB";
constexpr double kOpenDelaySeconds = 0.25;

/// Keys of a project's proxies and tiles, by their paths in the cache.
std::vector<std::string> keysOf(const Project& project, const Previews& previews)
{
    std::vector<std::string> keys;
    for (const Frame& frame : project.frames) {
        if (frame.fingerprint)
            keys.push_back(ProxyFile::name(ProxyFile::key(*frame.fingerprint, ProxyFile::wbOf(frame))));
        for (const bool originals : {false, true})
            if (const auto key = Tiles::viewKey(frame, project, originals, previews))
                for (const auto raster : {ThumbCache::Raster::p, ThumbCache::Raster::t})
                    keys.push_back(ThumbCache::path(*key, raster));
    }
    return keys;
}

} // namespace

LiveViews::LiveViews(Previews::Config config)
    : previews_(std::move(config)),
      loads_(previews_,
             [this](const FrameID& id) {
                 tiles_.sourceArrived(id);
                 if (previews_.frames.source(id)) screen_.sourceArrived(id);
             }),
      tiles_(previews_, loads_),
      screen_(previews_, loads_,
              [this](const FrameID& id, const std::optional<ProcessSettings>& process,
                     const FrameScreen::Image& image) {
                  image ? tiles_.adopt(id, process, image) : tiles_.giveUp(id);
              }),
      housekeeping_(previews_.loop, "tamlo.cache", platform::Niceness::utility),
      preparation_(previews_.loop, "tamlo.grain")
{
    previews_.onGrown = [this] { trimLater(); };
}

LiveViews::~LiveViews()
{
    screen_.clear();
    previews_.renderer.cancel("");
    tiles_.flush(true);
    ends_ = true;
    housekeeping_.drain(); // whose files they are is written down
}

void LiveViews::attach(AppModel& model)
{
    model_ = &model;
    loads_.attach(model);
    tiles_.attach(model);
    screen_.attach(model);
    // An exported frame gets the exposure and the lights of its preview.
    FrameStore& frames = previews_.frames;
    model.exporter.setMeasured(
        [&frames](const Frame& frame, WBMode wb, const RGBImage& image) {
            return frames.exportStats(frame, wb, image);
        },
        [&frames](const Frame& frame, const RGBImage& image) { return frames.exportLights(frame, image); });
    model.printersEye.setSource(
        [&frames](const FrameRef& frame, bool hasFile) { return frames.loadHere(*frame, hasFile); });
    daily_ = previews_.loop.every(kDaySeconds, [this] { trimLater(); });
}

void LiveViews::trimLater()
{
    const auto cap = ProxyCache::capBytes(model_->seams().preferences.number(kCapPreference));
    housekeeping_.run(
        [&cache = previews_.cache, &ends = ends_, cap, now = previews_.loop.date()] {
            if (!ends) cache.trim(cap, platform::freeBytes(cache.directory()), now);
            return 0;
        },
        [](int) {});
}

bool LiveViews::isSettled() const
{
    return !screen_.isBusy() && tiles_.pendingCount() == 0 && loads_.loadingCount() == 0;
}

void LiveViews::renderCurrent(double delaySeconds)
{
    screen_.renderCurrent(delaySeconds);
    syncPins();
}

void LiveViews::setVisibleTiles(std::vector<FrameID> ids)
{
    visibleTiles_ = std::move(ids);
    tiles_.setVisible(visibleTiles_);
    syncPins();
}

void LiveViews::syncPins()
{
    std::set<FrameID> pins(visibleTiles_.begin(), visibleTiles_.end());
    if (const auto& cursor = model_->selection.cursor()) {
        const auto visible = model_->selection.visibleIDs();
        const auto at = std::ranges::find(visible, *cursor);
        pins.insert(*cursor);
        if (at != visible.end() && at != visible.begin()) pins.insert(*(at - 1));
        if (at != visible.end() && at + 1 != visible.end()) pins.insert(*(at + 1));
    }
    previews_.frames.setPins(std::move(pins));
}

void LiveViews::evict(const FrameID& id)
{
    previews_.frames.evict(id);
    loads_.forget(id);
    tiles_.forget(id);
    screen_.forget(id);
}

/// While a frame's source is read, the calibration that its render will ask for is looked up, or solved.
void LiveViews::prepareGrain(const FrameID& id)
{
    const FrameRef frame = model_->project().frame(id);
    if (!frame || !frame->process || previews_.isScripted || previews_.frames.source(id)) return;
    std::optional<Size> known;
    if (const auto shape = loads_.shape(id)) known = Size{shape->fullWidth, shape->fullHeight};
    preparation_.run(
        [&previews = previews_, known, frame,
         process = renderProcess(*frame->process, *frame, std::nullopt, model_->project().cropGate,
                                 &model_->project().frames)] {
            try {
                const auto size = known ? known : SourceDecode::fullPixelSize(frame->url);
                if (!size) return 0;
                const RenderChoices choices = choicesOf(process, previews.store);
                previews.calibrations.during(previews.store.data(ProfileKind::films, process.stock), [&] {
                    Pipeline::prepareGrain(resizedSize(*size, ProxyFile::kProxyLong), choices.film,
                                           choices.paper, choices.options);
                });
            } catch (const std::exception&) {
                // The render tells of it.
            }
            return 0;
        },
        [](int) {});
}

void LiveViews::openedFrame(const FrameID& id)
{
    prepareGrain(id);
    previews_.frames.dropBigDetail(id);
    previews_.frames.cancelDetail();
    if (const auto left = std::exchange(onScreen_, id); left && *left != id)
        tiles_.render({*left}); // its print may not have come
    renderCurrent(kOpenDelaySeconds);
}

void LiveViews::backToGrid()
{
    screen_.clear();
    onScreen_.reset();
    previews_.frames.dropBigDetail(std::nullopt);
    tiles_.renderAll();
}

void LiveViews::bindLater(const std::string& id)
{
    housekeeping_.run(
        [&previews = previews_, id, project = model_->project()] {
            previews.cache.index().bind(keysOf(project, previews), id);
            return 0;
        },
        [](int) {});
}

void LiveViews::openedProject()
{
    const AppSeams& seams = model_->seams();
    if (!seams.registry || !model_->projectURL()) return;
    std::optional<std::string> id;
    try {
        const auto exists = [](const std::string& path) {
            std::error_code ignored;
            return std::filesystem::exists(path, ignored);
        };
        id = ProjectRegistry::idFor(seams.registry->load(), *model_->projectURL(), exists);
    } catch (const TamloError&) {
        return; // a registry that can't be read: the files are nobody's for now
    }
    previews_.cache.setOpenProject(id);
    if (id) bindLater(*id);
    trimLater();
}

void LiveViews::closingProject()
{
    tiles_.flush(true);
    if (const auto id = previews_.cache.openProject()) bindLater(*id);
    previews_.cache.setOpenProject(std::nullopt);
    trimLater();
}

void LiveViews::clear()
{
    screen_.clear();
    tiles_.clear();
    loads_.clear();
    previews_.frames.clear();
    visibleTiles_.clear();
    onScreen_.reset();
}

} // namespace tamlo
