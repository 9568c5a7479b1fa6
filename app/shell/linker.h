// Linker: frames and their source files. How each file stands, files found again, frames bound to others.
// A lost file never changes what the user has done to its frame.
#pragma once

#include "app/project/file_fields.h"
#include "app/project/file_state.h"
#include "app/project/project.h"
#include "app/shell/background.h"

#include <filesystem>
#include <functional>
#include <unordered_map>
#include <vector>

namespace tamlo {

class AppModel;

class Linker {
public:
    using Path = std::filesystem::path;
    using FrameIDs = std::vector<FrameID>;

    explicit Linker(AppModel& model);

    FileState state(const FrameID& id) const;
    /// Goes up with each change of a state.
    std::int64_t fileStateGen() const { return fileStateGen_; }
    void setFileState(const FrameID& id, FileState state);
    /// Frames whose file is missing or on a volume that is away.
    FrameIDs lostFrames() const;
    void clear();

    /// Finds the frame's file and notes how it stands; a file that has moved is followed silently.
    void prepare(const FrameID& id);
    void prepareAll();
    /// After volumes have come or gone: looks again at what is not at hand.
    void recheckLostFrames();
    /// Reads in the background what frames of older projects lack of their files. No undo step.
    void fillMissingFileFields(std::function<void()> done = {});

    /// Binds a frame to a file, as one step. With `confirm`, a file that is another picture is asked about.
    void linkFile(const FrameID& id, const Path& file, bool confirm);
    /// Looks through a folder for the lost files and links what it finds, as one step. `done` gets how many.
    void findFolder(const Path& folder, std::function<void(std::size_t found)> done = {});

    void removeLostFrames();
    void removeUnreadableFrames();

private:
    using Files = std::vector<std::pair<FrameID, FileFields>>;

    Path projectFolder() const;
    FrameIDs framesOf(const std::function<bool(FileState)>& passes) const;
    void linkNow(const Files& files);
    void tellFound(std::size_t found, const std::vector<std::string>& missing);

    AppModel& model_;
    std::unordered_map<FrameID, FileState> states_;
    std::int64_t fileStateGen_ = 0;
    Background background_;
};

} // namespace tamlo
