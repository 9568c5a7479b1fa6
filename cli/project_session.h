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

/// Size of a frame's source, upright; none where it can't be had.
std::optional<Size> sourceSizeOf(const Frame& frame);

/// An open roll that a verb works on.
class RollSession {
public:
    using Path = std::filesystem::path;

    virtual ~RollSession() = default;

    virtual AppModel& model() = 0;
    virtual const AppModel& model() const = 0;
    virtual HeadlessQuestions& questions() = 0;
    virtual const Path& roll() const = 0;
    /// What a verb does when it has changed the roll. Errors: std::runtime_error with the sentence for the
    /// user; Interrupted.
    virtual void save() = 0;
    /// Runs the session until something is done. Errors: Interrupted when the user stops it.
    virtual void waitUntil(const std::function<bool()>& done) = 0;

    const Project& project() const { return model().project(); }
    /// What FRAMES and FRAME mean. Errors: UsageError.
    std::vector<FrameID> frames(const std::string& text) const;
    FrameID frame(const std::string& text) const;
    FileState stateOf(const Frame& frame) const;
};

/// The roll of one command: opened, changed, saved, closed.
class ProjectSession : public RollSession {
public:
    /// write: no other program may write the roll until the session ends.
    using Access = Saver::Access;

    /// Errors: UsageError for a roll that is not there; std::runtime_error for one that can't be opened, or
    /// that another program has open.
    static std::unique_ptr<ProjectSession> open(const Path& named, Access access);
    /// A roll that is about to be made. Errors: UsageError where a file stands in its place.
    static std::unique_ptr<ProjectSession> fresh(const Path& named);

    AppModel& model() override { return model_; }
    const AppModel& model() const override { return model_; }
    HeadlessQuestions& questions() override { return questions_; }
    const Path& roll() const override { return roll_; }

    /// Writes the roll, with a backup of what stood there.
    void save() override;
    void waitUntil(const std::function<bool()>& done) override;

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
