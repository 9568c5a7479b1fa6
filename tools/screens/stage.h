// Stage: the program's own window over a roll of photographs, led through its states by keys and commands as
// a hand would lead it, and photographed.
#pragma once

#include "app/shell/application.h"
#include "core/profiles/catalogue/profile_store.h"
#include "ui/desktop/main_window.h"
#include "ui/desktop/qt_clipboard.h"
#include "ui/desktop/qt_loop.h"
#include "ui/desktop/window_questions.h"

#include <QPixmap>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tamlo::screens {

class Stage {
public:
    /// Nothing of the user's is read or written.
    explicit Stage(QSize size);
    ~Stage();

    AppModel& model() { return application_.model(); }
    LiveViews& views() { return application_.views(); }
    ui::MainWindow& window() { return *window_; }

    /// Photographs, or folders of them; waits until they stand on the grid with their tiles.
    void add(const std::vector<std::string>& paths);
    /// Turns the loop until nothing is under way, or so many seconds have passed.
    void settle(double mostSeconds = 60);
    void wait(double seconds);
    void key(int key, Qt::KeyboardModifiers modifiers = {});
    /// A command by the key of its text.
    void run(const char* command);
    /// The widget of a class, by its name without namespaces; null where there is none that can be seen.
    QWidget* find(const char* className);
    /// Puts away dialogs, menus and sheets, and shows the grid or the develop screen at the fit.
    void home(Screen screen);

    /// The window with everything that stands over it.
    QPixmap photograph();

private:
    ui::QtLoop loop_;
    ui::WindowQuestions questions_;
    ui::QtClipboard clipboard_;
    Application application_;
    std::unique_ptr<ui::MainWindow> window_;
};

} // namespace tamlo::screens
