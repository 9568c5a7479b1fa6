// What MainWindow opens, and how it is closed, dropped on and walked by keys.
#include "ui/desktop/main_window.h"

#include "app/export/export_folders.h"
#include "ui/desktop/key_places.h"
#include "ui/desktop/qt_texts.h"
#include "ui/kit/words.h"
#include "ui/screens/about_dialog.h"
#include "ui/screens/crop_overlay.h"
#include "ui/screens/develop_screen.h"
#include "ui/screens/export_dialog.h"
#include "ui/screens/grid_screen.h"
#include "ui/screens/grid_view.h"
#include "ui/screens/history_dialog.h"
#include "ui/screens/keys_dialog.h"
#include "ui/screens/message_bars.h"
#include "ui/screens/palette_dialog.h"
#include "ui/screens/preferences_dialog.h"
#include "ui/screens/rack.h"
#include "ui/screens/restore_dialog.h"
#include "ui/screens/sheet.h"
#include "ui/screens/shelf.h"
#include "ui/screens/status_line.h"
#include "ui/screens/text_dialog.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QStackedWidget>
#include <QTextEdit>
#include <QUrl>

namespace tamlo::ui {
namespace {

bool takesText(const QWidget* widget)
{
    const auto* choice = qobject_cast<const QComboBox*>(widget);
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           qobject_cast<const QTextEdit*>(widget) || (choice && choice->isEditable());
}

} // namespace

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (mayClose_) {
        storePlace();
        return event->accept();
    }
    event->ignore();
    flow_->leave([this] {
        mayClose_ = true;
        close();
    });
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    std::vector<std::string> paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
    event->acceptProposedAction();
    flow_->take(std::move(paths));
}

/// What no widget and no command took.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape) return QMainWindow::keyPressEvent(event);
    if (isFullScreen()) return toggleFullScreen();
    if (desk_.model.sides.abEnabled()) return desk_.model.sides.exitAB();
    if (desk_.model.cropping.cropMode()) return desk_.model.cropping.leaveCropMode();
    if (desk_.isOnDevelop()) desk_.model.selection.backToGrid();
}

/// Keys that Qt knew no command for, on a layout that is not Latin. A crop has its own, by their place too.
bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() && isActiveWindow()) {
        const QWidget* focus = QApplication::focusWidget();
        const auto& typed = *static_cast<QKeyEvent*>(event);
        const bool isOfCrop = desk_.model.cropping.cropMode() && CropOverlay::isSessionKey(typed);
        const auto key = isOfCrop ? std::nullopt : keyAtPlace(typed);
        if (key && watched == focus && !takesText(focus) && menus_->press(*key)) return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    // Files may have come or gone while the user was elsewhere.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && menus_)
        desk_.model.linker.recheckLostFrames();
}

void MainWindow::restoreBackup()
{
    const auto open = [this](const ProjectBackups::Item& item) {
        flow_->leave([this, item] { desk_.model.saver.restore(item); });
    };
    (new RestoreDialog(desk_, open, this))->show();
}

void MainWindow::showUnreadable()
{
    QStringList lines;
    for (const Frame& frame : desk_.model.project().frames)
        if (desk_.model.linker.state(frame.id) == FileState::unreadable) lines << qt(frame.url);
    const std::string& reason = desk_.views.loads().failureText();
    if (!reason.empty()) lines << QString() << qt(reason);
    (new TextDialog("unreadable.title", lines.join(QLatin1Char('\n')), this))->show();
}

void MainWindow::showHistory()
{
    (new HistoryDialog(desk_, this))->show();
}

void MainWindow::showPalette()
{
    (new PaletteDialog(desk_, this))->show();
}

void MainWindow::showKeys()
{
    (new KeysDialog(this))->show();
}

void MainWindow::showAbout()
{
    (new AboutDialog(desk_, application_.graphics(), this))->show();
}

void MainWindow::toggleFullScreen()
{
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void MainWindow::toggleOriginals()
{
    showsOriginals_ = !showsOriginals_;
    desk_.views.tiles().setShowsOriginals(showsOriginals_);
    develop_->setShowsOriginal(showsOriginals_);
    grid_->refresh();
}

void MainWindow::toggleStrip()
{
    develop_->setShowsStrip(!develop_->showsStrip());
}

bool MainWindow::showsStrip() const
{
    return develop_->showsStrip();
}

void MainWindow::zoomTiles(int direction)
{
    grid_->zoomTiles(direction);
}

void MainWindow::focusCard(PresetBlock block)
{
    develop_->rack().focusCard(block);
}

void MainWindow::openShelf(ShelfKind kind)
{
    develop_->rack().openShelf(kind);
}

void MainWindow::copyBlock()
{
    if (const RackCardView* card = develop_->rack().focusedCard())
        desk_.model.copying.copyBlock(T(std::string(PresetSchema::titleKey(card->block()))), {card->block()});
}

bool MainWindow::hasFocusedCard() const
{
    return desk_.isOnDevelop() && develop_->rack().focusedCard();
}

void MainWindow::showExport()
{
    (new ExportDialog(desk_, this))->show();
}

/// As the last one was, without asking; what it is to be is asked where no folder is known.
void MainWindow::exportAgain()
{
    AppModel& model = desk_.model;
    const ExportDraft draft =
        model.exporter.exportDraft(desk_.isOnDevelop() ? model.selection.cursor() : std::nullopt);
    const ExportFolders::List folders = ExportFolders::load(model.seams().preferences);
    std::error_code ignored;
    if (folders.empty() || !std::filesystem::is_directory(folders.front().path, ignored)) return showExport();
    runExport(draft, folders.front().path);
}

void MainWindow::runExport(const ExportDraft& draft, const std::string& folder)
{
    const auto ended = [this, draft, folder](const ExportReport& report) {
        progress_.cancel();
        desktop_.showProgress(std::nullopt);
        if (!isActiveWindow()) desktop_.notify(T("export.over"), report.text());
        std::vector<std::filesystem::path> files;
        for (const ExportedFrame& one : report.outcome.written) files.push_back(one.file);
        if (draft.reveal && !files.empty()) desktop_.reveal(files);
    };
    if (desk_.model.exporter.startExport(draft, folder, ended)) watchProgress();
}

void MainWindow::watchProgress()
{
    const auto& task = desk_.model.exporter.task();
    if (!task) return;
    desktop_.showProgress(task->fraction());
    progress_ = desk_.model.seams().loop.after(1, [this] { watchProgress(); });
}

void MainWindow::showPreferences()
{
    (new PreferencesDialog(
         desk_, [this] { retranslate(); }, this))
        ->show();
}

QList<QWidget*> MainWindow::regions() const
{
    QList<QWidget*> all{menuBar(), bars_, sheets_};
    if (screens_->currentWidget() == develop_)
        all.append(develop_->regions());
    else
        all.append(screens_->currentWidget());
    all.append(status_);
    return all;
}

void MainWindow::focusNextRegion(int direction)
{
    const QList<QWidget*> all = regions();
    const QWidget* focus = QApplication::focusWidget();
    qsizetype at = 0;
    for (qsizetype i = 0; i < all.size(); ++i)
        if (focus && (all[i] == focus || all[i]->isAncestorOf(focus))) at = i;
    for (qsizetype n = 1; n <= all.size(); ++n) {
        QWidget* to = all[(at + direction * n + all.size() * 2) % all.size()];
        if (!to->isVisible()) continue;
        QWidget* first = to->focusPolicy() != Qt::NoFocus || to->focusProxy() ? to : nullptr;
        for (QWidget* child : to->findChildren<QWidget*>())
            if (!first && child->isVisible() && child->isEnabled() && (child->focusPolicy() & Qt::TabFocus))
                first = child;
        if (first) return first->setFocus(Qt::TabFocusReason);
    }
}

} // namespace tamlo::ui
