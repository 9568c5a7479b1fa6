// AppModel: the one object of a session. It holds the open project and its history, and knows the one way in
// which a project is edited: find the targets, record one undo step, change, render what changed. Every
// workflow stands in a room of its own, a small class a concern. Main thread only.
#pragma once

#include "app/project/history.h"
#include "app/shell/copying.h"
#include "app/shell/cropping.h"
#include "app/shell/exporter.h"
#include "app/shell/frame_views.h"
#include "app/shell/importer.h"
#include "app/shell/linker.h"
#include "app/shell/lists.h"
#include "app/shell/marks.h"
#include "app/shell/observers.h"
#include "app/shell/ordering.h"
#include "app/shell/preset_files.h"
#include "app/shell/presets.h"
#include "app/shell/printers_eye.h"
#include "app/shell/profile_files.h"
#include "app/shell/questions.h"
#include "app/shell/rack.h"
#include "app/shell/recents.h"
#include "app/shell/removal.h"
#include "app/shell/saver.h"
#include "app/shell/selection.h"
#include "app/shell/sheets.h"
#include "app/shell/sides.h"
#include "app/shell/spreading.h"
#include "app/shell/turns.h"
#include "app/shell/zoom.h"

#include "platform/clipboard.h"
#include "platform/desktop.h"
#include "platform/preferences.h"
#include "platform/volumes.h"

#include <filesystem>
#include <unordered_map>

namespace tamlo {

class ProfileStore;

/// What a session stands on; all of it outlives the session.
struct AppSeams {
    platform::MainLoop& loop;
    ProfileStore& store;
    Questions& questions;
    FrameViews& views;
    platform::Clipboard& clipboard;
    platform::Volumes& volumes;
    platform::Preferences& preferences;
    ProjectRegistry* registry = nullptr; ///< none: this session remembers no project
    /// Size of a frame's source, upright; none when it can't be had.
    std::function<std::optional<Size>(const Frame&)> sourceSize = {};
    platform::Desktop* desktop = nullptr; ///< none: nobody is told of progress and ends
};

class AppModel {
public:
    using FrameIDs = std::vector<FrameID>;
    using Path = std::filesystem::path;

    explicit AppModel(AppSeams seams);
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    const Project& project() const { return project_; }
    const std::optional<Path>& projectURL() const { return projectURL_; }
    const History& history() const { return history_; }
    const AppSeams& seams() const { return seams_; }
    ProfileStore& store() const { return seams_.store; }

    /// The line that tells what happened last, and whether it was a failure.
    const std::string& status() const { return status_; }
    bool lastActionFailed() const { return lastActionFailed_; }
    void tell(std::string text);
    void tellFailure(std::string text);
    /// The user does something: what failed before is no longer the last action.
    void beginAction() { lastActionFailed_ = false; }

    /// Goes up with each change of a frame, and of the project as a whole.
    std::int64_t frameGen(const FrameID& id) const;
    std::int64_t rollGen() const { return rollGen_; }

    // Editing.

    /// Changes frames as one undo step: `change` gets a copy of each target, and those that come out equal
    /// are left alone. When all do, there is no step. A frame whose process, crop or turn changes is no
    /// longer exported. Returns the frames that changed.
    FrameIDs editFrames(History::Change step, const FrameIDs& targets,
                        const std::function<void(Frame&)>& change);
    /// Changes the roll as a whole as one undo step. Returns whether anything changed.
    bool editProject(History::Change step, const std::function<void(Project&)>& change);
    /// Records a step that changes nothing of the project: what it does is all in its closures, which tell of
    /// a failure themselves.
    void recordBeside(History::Change step);
    /// Changes what is no step: the filter, files found again, the record of an export.
    void amendProject(const std::function<void(Project&)>& change)
    {
        change(project_);
        observers.note(Concern::roll);
    }
    void endGesture() { history_.endGesture(); }

    bool undo();
    bool redo();
    /// Undoes, or does again, until so many steps stand, for a list on screen.
    void undoTo(std::size_t stepsLeft);

    /// From now on as a session does that stays open: saves by itself and keeps watch over the sources.
    void stayOpen();

    /// Makes another project the open one; history, selection and all that is known of its frames begin anew.
    void adopt(Project project, std::optional<Path> url);
    void setProjectURL(std::optional<Path> url)
    {
        projectURL_ = std::move(url);
        observers.note(Concern::document);
    }

    /// `tell` is called once a turn of the loop with what has changed of the concerns.
    Subscription subscribe(ConcernSet concerns, Observers::Tell tell)
    {
        return observers.subscribe(concerns, std::move(tell));
    }

private:
    void touch(const FrameIDs& ids);
    bool apply(std::optional<History::Step> step);
    void applySnapshot(const History::Step& step);

    AppSeams seams_;
    Project project_ = Project::untitled();
    std::optional<Path> projectURL_;
    History history_;
    std::string status_;
    bool lastActionFailed_ = false;
    std::unordered_map<FrameID, std::int64_t> frameGen_;
    std::int64_t rollGen_ = 0;

public:
    // The rooms, and who hears of them.
    Observers observers{*this};
    Selection selection{*this};
    Marks marks{*this};
    Lists lists{*this};
    Rack rack{*this};
    Presets presets{*this};
    PresetFiles presetFiles{*this};
    ProfileFiles profileFiles{*this};
    Copying copying{*this};
    Spreading spreading{*this};
    Turns turns{*this};
    Ordering ordering{*this};
    Cropping cropping{*this};
    Sides sides{*this};
    Zoom zoom{*this};
    Removal removal{*this};
    Linker linker{*this};
    Importer importer{*this};
    Recents recents{*this};
    Saver saver{*this};
    Exporter exporter{*this};
    Sheets sheets{*this};
    PrintersEye printersEye{*this};
};

} // namespace tamlo
