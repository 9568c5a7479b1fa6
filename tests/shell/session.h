// A session for tests: a loop whose clock is turned by hand, scripted answers, and a record of what would be
// shown.
#pragma once

#include "app/shell/app_model.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <thread>

namespace tamlo::test {

struct RecordingViews : FrameViews {
    void renderThumbs(const std::vector<FrameID>& ids) override { rendered += ids.size(); }
    void load(const FrameID&) override { ++loaded; }
    void renderAB(const ProcessSettings&) override { ++renderedB; }
    void openedFrame(const FrameID& id) override { opened = id; }
    void backToGrid() override { opened.reset(); }
    void setZoom(double to) override { zoom = to; }
    std::size_t rendered = 0, loaded = 0, renderedB = 0;
    std::optional<FrameID> opened; ///< on the develop screen
    double zoom = 1;
};

/// The user's root for as long as it lives: before a store is made, which asks for it once.
struct UserRoot : ScratchFolder {
    UserRoot() { setenv("TAMLO_USER_DIR", path().c_str(), 1); }
    ~UserRoot() { unsetenv("TAMLO_USER_DIR"); }
};

class SessionTest : public testing::Test {
protected:
    SessionTest() { Loc::setOverride(Loc::Lang::en); }
    ~SessionTest() override { Loc::setOverride(std::nullopt); }

    /// Turns the loop until work elsewhere has come back.
    void settle(const std::function<bool()>& done)
    {
        while (!done()) {
            loop_.runPosted();
            std::this_thread::yield();
        }
    }
    void open(unsigned frames) { model_.saver.adopt(rollOf(frames)); }
    const Roll& roll() const { return model_.project().frames; }
    std::vector<FrameID> ids(std::initializer_list<std::size_t> places) const
    {
        std::vector<FrameID> out;
        for (const std::size_t place : places) out.push_back(roll()[place].id);
        return out;
    }
    std::vector<FrameID> all() const
    {
        std::vector<FrameID> out;
        for (const Frame& frame : roll()) out.push_back(frame.id);
        return out;
    }
    std::size_t steps() const { return model_.history().undoStack().size(); }
    std::string topName() const { return steps() ? model_.history().undoStack().back().name : ""; }

    UserRoot userFolder_;
    VirtualLoop loop_;
    ProfileStore store_;
    HeadlessQuestions questions_;
    RecordingViews views_;
    platform::SessionClipboard clipboard_;
    FakeVolumes volumes_;
    MapPreferences preferences_;
    ProjectRegistry registry_{userFolder_.path()};
    Size sourceSize_{6000, 4000};
    RecordingDesktop desktop_;
    AppModel model_{{loop_, store_, questions_, views_, clipboard_, volumes_, preferences_, &registry_,
                     [this](const Frame&) { return std::optional(sourceSize_); }, &desktop_}};
};

} // namespace tamlo::test
