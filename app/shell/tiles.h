// Tiles: the pictures of the grid. Each view has a name that follows from all that decides how it looks; a
// tile of that name is shown from memory, from the print of the develop screen, from the disk, and only then
// rendered. No source is opened for a view that was seen before. Memory holds those that can be seen, and of
// the others as many as there is room for; the rest waits on the disk.
#pragma once

#include "app/project/project.h"
#include "app/shell/background.h"
#include "app/shell/frame_views.h"
#include "app/shell/previews.h"
#include "app/shell/source_loads.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tamlo {

class AppModel;

class Tiles {
public:
    using Image = std::shared_ptr<const ReadyImage>;
    using FrameIDs = std::vector<FrameID>;

    Tiles(Previews& previews, SourceLoads& loads);

    void attach(AppModel& model) { model_ = &model; }

    /// Null where there is none yet.
    Image tile(const FrameID& id) const;
    /// Goes up with each tile that is shown.
    std::int64_t shownGen() const { return shownGen_; }
    /// Tiles as untouched pictures, whatever the frames' processes.
    void setShowsOriginals(bool shows);
    bool showsOriginals() const { return showsOriginals_; }
    /// Without a grid on the screen no tile is made; the print of the develop screen is kept as one still.
    void setShowsGrid(bool shows) { showsGrid_ = shows; }
    void setDisplayScale(double scale) { displayScale_ = scale; }
    /// Tiles that can be seen: they come before the others, and stay in memory.
    void setVisible(const FrameIDs& ids);
    /// Of all tiles in memory.
    std::int64_t bytes() const { return bytes_; }

    void render(const FrameIDs& ids);
    void renderAll();
    void sourceArrived(const FrameID& id);
    /// The print that the develop screen shows of a frame under a process is its tile too.
    void adopt(const FrameID& id, const std::optional<ProcessSettings>& process, const Image& print);
    /// No such print can be made.
    void giveUp(const FrameID& id) { pending_.erase(id); }
    void forget(const FrameID& id);
    void clear();

    /// Frames whose tile is still to come, and can.
    std::size_t pendingCount() const { return pending_.size(); }
    bool isPending(const FrameID& id) const { return pending_.contains(id); }
    /// The tile as a sheet has it.
    FrameViews::SheetTile sheetTile(const FrameID& id) const;
    /// Writes what waits for the disk. wait: until it stands there.
    void flush(bool wait);

    /// The name of a view of a frame of the project; none where it has none. From any thread.
    static std::optional<std::string> viewKey(const Frame& frame, const Project& project, bool originals,
                                              const Previews& previews);

private:
    struct Print {
        std::string key;
        Image image;
    };
    struct Waiting {
        FrameID id;
        std::string key;
        Image image;
        ThumbCache::Raster raster;
    };

    std::optional<std::string> viewKey(const Frame& frame, bool originals) const;
    void renderOne(const FrameID& id);
    bool isOnScreen(const FrameID& id) const;
    bool isWanted(const FrameID& id, const std::string& key) const;
    bool waitsOnDisk(const FrameID& id, const std::string& key) const;
    bool isRoom() const;
    void pumpLooks();
    void lookOnDisk(const FrameID& id, const std::string& key);
    void keep(const FrameID& id, Image image);
    void drop(const FrameID& id);
    void renderFromSource(const FrameID& id, const std::string& key);
    void submit(const FrameRef& frame, const FrameStore::SourceRef& source, const std::string& key);
    void pumpSources();
    void show(const FrameID& id, const std::string& key, Image image, bool isStub);
    void reduceAndKeep(const FrameID& id, const std::string& key, const Image& image,
                       ThumbCache::Raster raster);
    void persist(const FrameID& id, const std::string& key, Image image, ThumbCache::Raster raster);
    bool mayPersist(const FrameID& id) const;

    Previews& previews_;
    SourceLoads& loads_;
    AppModel* model_ = nullptr;
    bool showsOriginals_ = false, showsGrid_ = true;
    double displayScale_ = 1;
    std::int64_t shownGen_ = 0;

    struct Kept {
        Image image;
        std::uint64_t age = 0; ///< when it was shown last, by count
    };
    std::unordered_map<FrameID, Kept> tiles_;
    std::map<std::uint64_t, FrameID> byAge_; ///< those in memory, the oldest first
    std::uint64_t lastAge_ = 0;
    std::int64_t bytes_ = 0;
    std::unordered_set<FrameID> visible_;
    std::deque<std::pair<FrameID, std::string>> looks_; ///< on disk, still to be begun
    std::size_t looking_ = 0;
    std::unordered_map<FrameID, std::string> wanted_, shown_, missedOnDisk_, persisted_;
    std::unordered_map<FrameID, bool> stubs_; ///< shown for now, wanting a better one
    std::set<FrameID> pending_;
    std::deque<FrameID> sourceQueue_;
    std::deque<Print> prints_; ///< of the develop screen, the newest last
    std::vector<Waiting> waiting_;
    std::set<std::string> unwritten_; ///< keys of tiles on their way to the disk
    platform::Timer flushTimer_;
    Background disk_;   ///< reads and reduces
    Background writer_; ///< last but for its queue's end: joined before the rest goes
};

} // namespace tamlo
