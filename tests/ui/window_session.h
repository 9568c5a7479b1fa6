// A window over a session of its own, in folders of its own, with a roll whose files are not there.
#pragma once

#include "app/shell/application.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"
#include "tests/ui/window_application.h"
#include "ui/desktop/main_window.h"
#include "ui/desktop/qt_clipboard.h"
#include "ui/desktop/qt_loop.h"
#include "ui/desktop/window_questions.h"

#include <QCoreApplication>

#include <cstdlib>

namespace tamlo::ui {

struct ScratchHome {
    ScratchHome()
    {
        setenv("TAMLO_USER_DIR", folder.path().c_str(), 1);
        setenv("XDG_CACHE_HOME", folder.path().c_str(), 1);
        Loc::setOverride(Loc::Lang::en);
    }
    ~ScratchHome()
    {
        unsetenv("TAMLO_USER_DIR");
        unsetenv("XDG_CACHE_HOME");
        Loc::setOverride(std::nullopt);
    }
    test::ScratchFolder folder;
};

class WindowSession : public WindowTest {
protected:
    void open(unsigned frames)
    {
        model().saver.adopt(test::rollOf(frames));
        turn();
    }
    AppModel& model() { return application_.model(); }
    const Roll& roll() { return model().project().frames; }
    /// What is posted by now runs, and what it leads to is shown.
    void turn()
    {
        bool isOver = false;
        loop_.post([&] { isOver = true; });
        while (!isOver) QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    ScratchHome home_;
    QtLoop loop_;
    ProfileStore store_;
    WindowQuestions questions_;
    platform::SessionClipboard clipboard_;
    Application application_{Application::Mode::service, {loop_, store_, questions_, clipboard_}, "test"};
    MainWindow window_{application_, questions_};
};

} // namespace tamlo::ui
