// LiveViews: the frames as a session with pictures shows them: the develop screen, the grid, the loads that
// feed both, and the caches behind them, joined to the session's edits. Made before the session and attached
// to it; the session must be gone, or at rest, before it goes.
#pragma once

#include "app/shell/frame_screen.h"
#include "app/shell/frame_views.h"
#include "app/shell/previews.h"
#include "app/shell/source_loads.h"
#include "app/shell/tiles.h"

#include <atomic>

namespace tamlo {

class LiveViews final : public FrameViews {
public:
    explicit LiveViews(Previews::Config config);
    ~LiveViews() override;

    /// Begins the daily housekeeping too.
    void attach(AppModel& model);

    FrameScreen& screen() { return screen_; }
    const FrameScreen& screen() const { return screen_; }
    Tiles& tiles() { return tiles_; }
    SourceLoads& loads() { return loads_; }
    Previews& previews() { return previews_; }

    /// Tiles that can be seen: their sources stay in memory.
    void setVisibleTiles(std::vector<FrameID> ids);
    /// Nothing is under way or planned.
    bool isSettled() const;

    void renderThumbs(const std::vector<FrameID>& ids) override { tiles_.render(ids); }
    void renderAllThumbs() override { tiles_.renderAll(); }
    void renderCurrent(double delaySeconds) override;
    void cancelPendingRenders() override { screen_.cancelPending(); }
    void renderAB(const ProcessSettings& process) override { screen_.setSideB(process); }
    void dropAB() override { screen_.setSideB(std::nullopt); }
    void setZoom(double zoom) override { screen_.setZoom(zoom); }
    void load(const FrameID& id) override { loads_.load(id); }
    void evict(const FrameID& id) override;
    void openedFrame(const FrameID& id) override;
    void backToGrid() override;
    void openedProject() override;
    void closingProject() override;
    void clear() override;
    bool showsOriginals() const override { return tiles_.showsOriginals(); }
    SheetTile sheetTile(const FrameID& id) override { return tiles_.sheetTile(id); }
    std::int64_t pictureGen() const override { return screen_.shownGen(); }

private:
    void syncPins();
    void trimLater();
    /// Notes, ahead of the next trim, that the open project's files are of this project.
    void bindLater(const std::string& id);
    void prepareGrain(const FrameID& id);

    Previews previews_;
    AppModel* model_ = nullptr;
    SourceLoads loads_;
    Tiles tiles_;
    FrameScreen screen_;
    std::vector<FrameID> visibleTiles_;
    std::optional<FrameID> onScreen_;
    platform::Timer daily_;
    std::atomic<bool> ends_{false};
    Background housekeeping_, preparation_; // last: joined before the rest goes
};

} // namespace tamlo
