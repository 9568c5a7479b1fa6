#include "ui/desktop/project_flow.h"

#include "core/text/loc.h"
#include "ui/kit/words.h"

#include <algorithm>

namespace tamlo::ui {

ProjectFlow::ProjectFlow(AppModel& model, SheetHost& sheets, QWidget& window)
    : model_(model), sheets_(sheets), dialogs_(window)
{}

void ProjectFlow::confirm(const char* titleKey, const Loc::Args& args, const char* noteKey,
                          const char* yesKey, Then yes)
{
    auto sheet = std::make_unique<Sheet>(word(titleKey, args), noteKey ? word(noteKey) : QString());
    sheet->addCancel();
    sheet->addButton(yesKey, std::move(yes));
    sheets_.show(std::move(sheet));
}

bool ProjectFlow::isWorthSaving() const
{
    return model_.saver.hasChanges() && (model_.projectURL() || !model_.project().frames.empty());
}

void ProjectFlow::askLeaving(std::unique_ptr<Sheet> sheet)
{
    leaving_ = sheet.get();
    sheets_.show(std::move(sheet));
}

void ProjectFlow::leave(Then go)
{
    if (leaving_) return; // it is being asked
    leaveExport([this, go] { leaveProject(go); });
}

/// Going on with the export is what happens by default.
void ProjectFlow::leaveExport(Then go)
{
    if (!model_.exporter.isExporting()) return go();
    auto sheet = std::make_unique<Sheet>(word("quit.exporting"), word("quit.exportingNote"));
    sheet->addButton("quit.keepExporting", {});
    sheet->addButton("quit.stopExport", [this, go] {
        model_.exporter.stop();
        go();
    });
    askLeaving(std::move(sheet));
}

void ProjectFlow::leaveProject(Then go)
{
    if (!isWorthSaving()) return go();
    if (model_.projectURL() && !model_.saver.isChangedOnDisk())
        return write(*model_.projectURL(), Saver::Over::expected, std::move(go));
    auto sheet = std::make_unique<Sheet>(word("project.saveBeforeQuit"), word("quit.note"));
    sheet->addButton("menu.file.saveAs", [this, go] { saveAs(go); });
    sheet->addButton("quit.dontSave", go);
    sheet->addCancel();
    askLeaving(std::move(sheet));
}

void ProjectFlow::write(const std::filesystem::path& to, Saver::Over over, Then then)
{
    model_.saver.saveProject(
        to,
        [this, to, then = std::move(then)](const std::optional<std::string>& problem) {
            if (problem) return;
            model_.tell(T("project.saved", {{"file", to.filename().string()}}));
            if (then) then();
        },
        over);
}

void ProjectFlow::newProject()
{
    leave([this] { model_.saver.adopt(Project::untitled()); });
}

void ProjectFlow::openProject()
{
    dialogs_.project(word("menu.file.open"), [this](FileDialogs::Paths paths) { openFile(paths.front()); });
}

void ProjectFlow::openFile(const std::string& path)
{
    leave([this, path] { model_.saver.open(path); });
}

void ProjectFlow::addPhotographs()
{
    dialogs_.pictures(word("menu.file.add"),
                      [this](FileDialogs::Paths paths) { model_.importer.addFiles(std::move(paths)); });
}

void ProjectFlow::addFolder()
{
    dialogs_.folder(word("menu.file.addFolder"),
                    [this](FileDialogs::Paths paths) { model_.importer.addFiles(std::move(paths)); });
}

void ProjectFlow::take(std::vector<std::string> paths)
{
    const auto isProject = [](const std::string& path) {
        return std::filesystem::path(path).extension() == Project::kExtension;
    };
    if (const auto project = std::ranges::find_if(paths, isProject); project != paths.end())
        return openFile(*project);
    if (!paths.empty()) model_.importer.addFiles(std::move(paths));
}

void ProjectFlow::save(Then then)
{
    if (!model_.projectURL()) return saveAs(std::move(then));
    if (!model_.saver.isChangedOnDisk())
        return write(*model_.projectURL(), Saver::Over::expected, std::move(then));
    auto sheet = std::make_unique<Sheet>(word("project.changedOnDisk"), QString());
    sheet->addButton("menu.file.saveAs", [this, then] { saveAs(then); });
    sheet->addButton("common.replace",
                     [this, then] { write(*model_.projectURL(), Saver::Over::anything, then); });
    sheet->addCancel();
    sheets_.show(std::move(sheet));
}

void ProjectFlow::saveAs(Then then)
{
    const QString name = qt(model_.project().name) + qt(Project::kExtension);
    dialogs_.saveProject(word("menu.file.saveAs"), name, [this, then](const FileDialogs::Paths& paths) {
        const std::filesystem::path to = paths.front();
        std::error_code ignored;
        if (!std::filesystem::exists(to, ignored) || to == model_.projectURL())
            return write(to, Saver::Over::expected, then);
        confirm("export.exists.title", {{"name", to.filename().string()}}, nullptr, "common.replace",
                [this, to, then] { write(to, Saver::Over::anything, then); });
    });
}

void ProjectFlow::locateFile()
{
    const std::vector<FrameID> lost = model_.linker.lostFrames();
    if (lost.empty()) return;
    const auto& cursor = model_.selection.cursor();
    const bool isCursor = cursor && std::ranges::find(lost, *cursor) != lost.end();
    const FrameID id = isCursor ? *cursor : lost.front();
    const FrameRef frame = model_.project().frame(id);
    if (!frame) return;
    dialogs_.pictures(
        word("link.wherePanel", {{"file", frame->fileName()}}),
        [this, id](const FileDialogs::Paths& paths) { model_.linker.linkFile(id, paths.front(), true); });
}

void ProjectFlow::chooseFolder(const char* titleKey, std::function<void(std::string)> take)
{
    dialogs_.folder(word(titleKey),
                    [take = std::move(take)](FileDialogs::Paths paths) { take(paths.front()); });
}

void ProjectFlow::locateFolder()
{
    dialogs_.folder(word("link.folderPanel", {{"n", model_.linker.lostFrames().size()}}),
                    [this](const FileDialogs::Paths& paths) { model_.linker.findFolder(paths.front()); });
}

} // namespace tamlo::ui
