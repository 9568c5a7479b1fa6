// MainWindow: the frame that the screens stand in: menu bar, messages, questions, one of three screens,
// status line. It shows what the session says and starts what a command asks for; the session decides.
#pragma once

#include "app/shell/application.h"
#include "ui/desktop/menus.h"
#include "ui/desktop/project_flow.h"
#include "ui/desktop/qt_desktop.h"
#include "ui/screens/desk.h"

#include <QMainWindow>

class QStackedWidget;

namespace tamlo::ui {

class DevelopScreen;
class EmptyScreen;
class GridScreen;
class MessageBars;
class SheetHost;
class StatusLine;
class WindowQuestions;

class MainWindow : public QMainWindow, private WindowActions {
public:
    /// The application and the questions outlive the window.
    MainWindow(Application& application, WindowQuestions& questions);
    ~MainWindow() override;

    /// Files as the command line names them.
    void take(std::vector<std::string> paths) { flow_->take(std::move(paths)); }
    /// All texts anew, in the language in force.
    void retranslate();
    /// What the window's commands act on.
    const Desk& desk() const { return desk_; }
    GridScreen& grid() { return *grid_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void newProject() override { flow_->newProject(); }
    void openProject() override { flow_->openProject(); }
    void openFile(const std::string& path) override { flow_->openFile(path); }
    void addPhotographs() override { flow_->addPhotographs(); }
    void addFolder() override { flow_->addFolder(); }
    void addFiles(std::vector<std::string> paths) override { flow_->take(std::move(paths)); }
    void save() override { flow_->save(); }
    void saveAs() override { flow_->saveAs(); }
    void restoreBackup() override;
    void locateFile() override { flow_->locateFile(); }
    void locateFolder() override { flow_->locateFolder(); }
    void showUnreadable() override;
    void quit() override { close(); }
    void showHistory() override;
    void showPalette() override;
    void showKeys() override;
    void showAbout() override;
    void toggleFullScreen() override;
    bool isFullScreenOn() const override { return isFullScreen(); }
    void toggleStrip() override;
    bool showsStrip() const override;
    void toggleOriginals() override;
    bool showsOriginals() const override { return showsOriginals_; }
    void focusNextRegion(int direction) override;
    void zoomTiles(int direction) override;
    void focusCard(PresetBlock block) override;
    void openShelf(ShelfKind kind) override;
    void copyBlock() override;
    bool hasFocusedCard() const override;
    void showExport() override;
    void exportAgain() override;
    void runExport(const ExportDraft& draft, const std::string& folder) override;
    void chooseFolder(const char* titleKey, std::function<void(std::string)> take) override
    {
        flow_->chooseFolder(titleKey, std::move(take));
    }
    void showPreferences() override;

    void build();
    void follow(const ChangeSet& change);
    void watchProgress();
    void showScreen();
    void showTitle();
    void restorePlace();
    void storePlace();
    QList<QWidget*> regions() const;

    Application& application_;
    WindowQuestions& questions_;
    Desk desk_;
    bool showsOriginals_ = false, mayClose_ = false;

    SheetHost* sheets_;
    MessageBars* bars_ = nullptr;
    QStackedWidget* screens_ = nullptr;
    EmptyScreen* empty_ = nullptr;
    GridScreen* grid_ = nullptr;
    DevelopScreen* develop_ = nullptr;
    StatusLine* status_ = nullptr;
    std::unique_ptr<ProjectFlow> flow_;
    std::unique_ptr<Menus> menus_;
    QtDesktop desktop_;
    platform::Timer progress_;
    Subscription subscription_;
};

} // namespace tamlo::ui
