// Linker: frames and their source files. How each file stands, files found again, frames bound to others.
// A lost file never changes what the user has done to its frame.
#pragma once

#include "app/project/file_fields.h"
#include "app/project/file_resolver.h"
#include "app/project/file_state.h"
#include "app/project/project.h"
#include "app/shell/background.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tamlo {

class AppModel;

class Linker {
public:
    using Path = std::filesystem::path;
    using FrameIDs = std::vector<FrameID>;

    explicit Linker(AppModel& model);
    ~Linker();

    FileState state(const FrameID& id) const;
    /// Goes up with each change of a state.
    std::int64_t fileStateGen() const { return fileStateGen_; }
    void setFileState(const FrameID& id, FileState state);
    /// Frames whose file is missing or on a volume that is away.
    FrameIDs lostFrames() const;
    void clear();

    /// Finds the frame's file and notes how it stands; a file that has moved is followed silently.
    void prepare(const FrameID& id) { prepare(id, FileResolver::Look::quick); }
    /// A new roll: looks at all of its files, and in a session that keeps watch goes on in the background.
    void begin();
    /// From now on, as a session does that stays open: after each opening reads the samples of all files in
    /// the background, and looks again at what is not at hand when volumes come or go and when the machine
    /// wakes.
    void keepWatch();
    /// Looks again at what is not at hand.
    void recheckLostFrames();
    /// Reads in the background what frames of older projects lack of their files. No undo step.
    void fillMissingFileFields(std::function<void()> done = {});
    /// Reads in the background the sample of every file that is there: another picture in a file's place is
    /// found whatever its size and time. No undo step.
    void examineAll(std::function<void()> done = {});

    /// Binds a frame to a file, as one step. With `confirm`, a file that is another picture is asked about.
    /// The other lost files are looked for in the same folder, and offered; `done` gets how many were found,
    /// and is not called where the frame was not linked.
    void linkFile(const FrameID& id, const Path& file, bool confirm,
                  std::function<void(std::size_t nearby)> done = {});
    /// Looks through a folder for the lost files and links what it finds, as one step. `done` gets how many.
    void findFolder(const Path& folder, std::function<void(std::size_t found)> done = {});

    void removeLostFrames();
    void removeUnreadableFrames();

private:
    using Files = std::vector<std::pair<FrameID, FileFields>>;

    /// Changes when another roll is opened, and at the end: what is being read for the last one is no longer
    /// wanted.
    using Epoch = std::shared_ptr<std::atomic<std::int64_t>>;

    Path projectFolder() const;
    FrameIDs framesOf(const std::function<bool(FileState)>& passes) const;
    std::vector<FrameRef> framesAt(const FrameIDs& ids) const;
    std::function<bool()> stillWanted() const;
    void prepare(const FrameID& id, FileResolver::Look look);
    void take(std::size_t place, const FileResolver::Resolution& found);
    void matchesIn(const Path& folder, std::function<void(Files)> take);
    void linkNow(const Files& files);
    void offerNearby(const Path& folder, std::function<void(std::size_t)> done);
    void tellFound(std::size_t found, const std::vector<std::string>& missing);
    void recheckAfterSleep();

    AppModel& model_;
    std::unordered_map<FrameID, FileState> states_;
    std::int64_t fileStateGen_ = 0;
    Epoch epoch_ = std::make_shared<std::atomic<std::int64_t>>(0);
    bool keepsWatch_ = false;
    std::unique_ptr<platform::VolumeWatch> volumeWatch_;
    platform::Timer sleepTimer_;
    double awakeNow_ = 0, awakeDate_ = 0; ///< both clocks at the last look
    Background background_;
    Background reading_; ///< of whole rolls, which takes minutes
};

} // namespace tamlo
