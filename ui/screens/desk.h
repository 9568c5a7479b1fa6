// Desk: what a command of the window acts on: the session, its pictures, and what only the window itself can
// do.
#pragma once

#include "app/shell/app_model.h"
#include "app/shell/live_views.h"

namespace tamlo::ui {

enum class ShelfKind;

/// Each opens something, or begins something that goes on by callbacks; none waits.
struct WindowActions {
    virtual ~WindowActions() = default;

    virtual void newProject() = 0;
    virtual void openProject() = 0;
    virtual void openFile(const std::string& path) = 0;
    virtual void addPhotographs() = 0;
    virtual void addFolder() = 0;
    virtual void addFiles(std::vector<std::string> paths) = 0;
    virtual void save() = 0;
    virtual void saveAs() = 0;
    virtual void restoreBackup() = 0;
    virtual void locateFile() = 0;
    virtual void locateFolder() = 0;
    virtual void showUnreadable() = 0;
    virtual void quit() = 0;
    virtual void showHistory() = 0;
    virtual void showPalette() = 0;
    virtual void showKeys() = 0;
    virtual void showAbout() = 0;
    virtual void toggleFullScreen() = 0;
    virtual bool isFullScreenOn() const = 0;
    virtual void toggleStrip() = 0;
    virtual bool showsStrip() const = 0;
    virtual void toggleOriginals() = 0;
    virtual bool showsOriginals() const = 0;
    virtual void focusNextRegion(int direction) = 0;
    virtual void zoomTiles(int direction) = 0;
    virtual void focusCard(PresetBlock block) = 0;
    virtual void openShelf(ShelfKind kind) = 0;
    /// Of the card of the rack that has the focus.
    virtual void copyBlock() = 0;
    virtual bool hasFocusedCard() const = 0;
    virtual void showExport() = 0;
    virtual void exportAgain() = 0;
    /// Begins the run, and tells and shows what came of it when it ends.
    virtual void runExport(const ExportDraft& draft, const std::string& folder) = 0;
    /// Asks for a folder.
    virtual void chooseFolder(const char* titleKey, std::function<void(std::string)> take) = 0;
    virtual void showPreferences() = 0;
};

struct Desk {
    AppModel& model;
    LiveViews& views;
    WindowActions& window;

    bool hasFrames() const { return !model.project().frames.empty(); }
    bool isOnGrid() const { return hasFrames() && model.selection.screen() == Screen::grid; }
    bool isOnDevelop() const { return model.selection.screen() == Screen::develop; }
    bool hasCursor() const { return model.selection.cursor().has_value(); }
};

} // namespace tamlo::ui
