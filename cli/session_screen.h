// What the lines of `tamlo session` do beside the verbs of a roll: everything that a screen would do.
#pragma once

#include "app/shell/application.h"
#include "cli/project_arguments.h"
#include "cli/project_session.h"
#include "platform/main_loop.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tamlo::cli {

/// A session that stays open over many lines. It saves by itself, and when it ends.
class LiveSession : public RollSession {
public:
    LiveSession();
    ~LiveSession() override;

    AppModel& model() override { return application_.model(); }
    const AppModel& model() const override { return application_.model(); }
    HeadlessQuestions& questions() override { return questions_; }
    const Path& roll() const override { return roll_; }
    LiveViews& views() { return application_.views(); }
    platform::HeadlessLoop& loop() { return loop_; }

    /// Nothing: a session that stays open saves later.
    void save() override {}
    void waitUntil(const std::function<bool()>& done) override;

    /// Errors: std::runtime_error with the sentence for the user.
    void openRoll(const Path& named);
    /// Leaves the open roll, saved, for one that `begin` makes and whose file is not there yet. Errors: those
    /// of openRoll, and of `begin`.
    void newRoll(const Path& named, const std::function<void()>& begin);
    /// The room for the picture, "1600x1000" points of one pixel. Errors: UsageError.
    void setFit(const std::string& text);
    /// Waits for "proxy", "screen" or "master" of the open frame, or until no more can come. Returns whether
    /// it is there. Errors: std::runtime_error where there is no picture at all; Interrupted.
    bool waitForTier(const std::string& tier);
    /// Writes the open roll. Errors: std::runtime_error; Interrupted.
    void saveNow();
    /// Lets everything run that is ready.
    void turn();

private:
    platform::HeadlessLoop loop_;
    HeadlessQuestions questions_;
    platform::SessionClipboard clipboard_;
    Application application_;
    Path roll_;
};

/// Runs a line of the screen's own; false where its first word is none of them.
/// Errors: UsageError; std::runtime_error; Interrupted.
bool runScreenVerb(LiveSession& session, const std::vector<std::string>& words, std::ostream& results);

/// A verb of `tamlo project` that a session does in its own way; nothing for the others. Errors: as above.
std::optional<int> runInSession(LiveSession& session, const ProjectCommand& command, std::ostream& results);

/// The words that runScreenVerb knows, for a message.
std::vector<std::string> screenVerbs();

} // namespace tamlo::cli
