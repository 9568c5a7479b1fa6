// What every verb of `tamlo project` stands on: one roll opened in a session without a screen, questions that
// options have answered, and a save that keeps a copy of what it replaces.
#pragma once

#include "app/shell/app_model.h"
#include "platform/main_loop.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::cli {

/// The path of a roll as the user names it: absolute, and with the name extension of projects.
std::filesystem::path rollPath(const std::filesystem::path& named);

class ProjectSession {
public:
    using Path = std::filesystem::path;

    /// write: no other program may write the roll until the session ends.
    using Access = Saver::Access;

    /// Errors: UsageError for a roll that is not there; std::runtime_error for one that can't be opened, or
    /// that another program has open.
    static std::unique_ptr<ProjectSession> open(const Path& named, Access access);
    /// A roll that is about to be made. Errors: UsageError where a file stands in its place.
    static std::unique_ptr<ProjectSession> fresh(const Path& named);

    AppModel& model() { return model_; }
    const AppModel& model() const { return model_; }
    const Project& project() const { return model_.project(); }
    HeadlessQuestions& questions() { return questions_; }
    const Path& roll() const { return roll_; }

    /// What FRAMES and FRAME mean. Errors: UsageError.
    std::vector<FrameID> frames(const std::string& text) const;
    FrameID frame(const std::string& text) const;
    FileState stateOf(const Frame& frame) const;

    /// Writes the roll, with a backup of what stood there. Errors: std::runtime_error with the sentence for
    /// the user; Interrupted.
    void save();
    /// Runs the session until something is done. Errors: Interrupted when the user stops it.
    void waitUntil(const std::function<bool()>& done);

private:
    ProjectSession(Path roll, Access access);

    Path roll_;
    platform::HeadlessLoop loop_;
    HeadlessQuestions questions_;
    FrameViews noViews_;
    platform::SessionClipboard clipboard_;
    platform::SystemVolumes volumes_;
    platform::FilePreferences preferences_;
    ProjectRegistry registry_;
    AppModel model_;
};

} // namespace tamlo::cli
