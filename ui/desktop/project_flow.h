// ProjectFlow: projects and photographs come and go: the dialogues, and what is asked before a roll is left.
// The session itself stands in app/shell.
#pragma once

#include "app/shell/app_model.h"
#include "core/text/loc.h"
#include "ui/desktop/file_dialogs.h"
#include "ui/screens/sheet.h"

#include <QPointer>

#include <functional>
#include <memory>

namespace tamlo::ui {

class ProjectFlow {
public:
    using Then = std::function<void()>;

    ProjectFlow(AppModel& model, SheetHost& sheets, QWidget& window);

    void newProject();
    void openProject();
    void openFile(const std::string& path);
    void addPhotographs();
    void addFolder();
    /// Photographs and folders, or one project, as they are dropped or named at the start.
    void take(std::vector<std::string> paths);
    /// `then`: when the project stands in its file.
    void save(Then then = {});
    void saveAs(Then then = {});
    void locateFile();
    void locateFolder();
    void chooseFolder(const char* titleKey, std::function<void(std::string)> take);

    /// Makes sure that nothing is lost, asking where it has to, and goes on. Not called when the user stays.
    void leave(Then go);

private:
    bool isWorthSaving() const;
    void leaveExport(Then go);
    void leaveProject(Then go);
    void askLeaving(std::unique_ptr<Sheet> sheet);
    void write(const std::filesystem::path& to, Saver::Over over, Then then);
    void confirm(const char* titleKey, const Loc::Args& args, const char* noteKey, const char* yesKey,
                 Then yes);

    AppModel& model_;
    SheetHost& sheets_;
    FileDialogs dialogs_;
    QPointer<Sheet> leaving_; ///< asks whether the roll may be left
};

} // namespace tamlo::ui
