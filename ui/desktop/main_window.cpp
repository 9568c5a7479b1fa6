#include "ui/desktop/main_window.h"

#include "platform/platform_error.h"
#include "ui/desktop/window_questions.h"
#include "ui/kit/words.h"
#include "ui/screens/develop_screen.h"
#include "ui/screens/empty_screen.h"
#include "ui/screens/grid_screen.h"
#include "ui/screens/grid_view.h"
#include "ui/screens/message_bars.h"
#include "ui/screens/sheet.h"
#include "ui/screens/status_line.h"

#include <QApplication>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr QSize kLeastSize(1280, 720), kUsualSize(1440, 900);
constexpr const char* kPlace = "window.place";

} // namespace

MainWindow::MainWindow(Application& application, WindowQuestions& questions)
    : application_(application),
      questions_(questions),
      desk_{application.model(), application.views(), *this},
      sheets_(new SheetHost(this)),
      flow_(std::make_unique<ProjectFlow>(application.model(), *sheets_, *this))
{
    setAcceptDrops(true);
    build();
    questions_.setHost(sheets_);
    menus_ = std::make_unique<Menus>(desk_, *menuBar(), *this);
    subscription_ =
        desk_.model.subscribe({Concern::document, Concern::roll, Concern::selection, Concern::fileStates,
                               Concern::exporting, Concern::crop, Concern::ab},
                              [this](const ChangeSet& change) { follow(change); });
    qApp->installEventFilter(this);
    restorePlace();
    showScreen();
    showTitle();
}

MainWindow::~MainWindow()
{
    qApp->removeEventFilter(this);
    questions_.setHost(nullptr);
}

void MainWindow::build()
{
    auto* whole = new QWidget(this);
    auto* lines = new QVBoxLayout(whole);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    bars_ = new MessageBars(desk_, whole);
    screens_ = new QStackedWidget(whole);
    empty_ = new EmptyScreen(desk_, screens_);
    grid_ = new GridScreen(desk_, screens_);
    develop_ = new DevelopScreen(desk_, screens_);
    for (QWidget* screen :
         {static_cast<QWidget*>(empty_), static_cast<QWidget*>(grid_), static_cast<QWidget*>(develop_)})
        screens_->addWidget(screen);
    status_ = new StatusLine(desk_, whole);
    lines->addWidget(bars_);
    lines->addWidget(sheets_);
    lines->addWidget(screens_, 1);
    lines->addWidget(status_);
    setCentralWidget(whole);
    grid_->view().onContextMenu = [this](QPoint at) {
        menus_->popup({"menu.view.develop", "", "menu.frame.pick", "menu.frame.reject", "menu.frame.clear",
                       "", "menu.edit.copy", "menu.edit.paste", "menu.process.applyAll", "menu.process.reset",
                       "", "menu.frame.right", "menu.frame.left", "menu.frame.mirror", "menu.frame.resetCrop",
                       "", "menu.file.locate", "menu.edit.remove"},
                      at);
    };
}

void MainWindow::follow(const ChangeSet& change)
{
    menus_->refresh();
    if (change.concerns.has(Concern::selection) || change.concerns.has(Concern::roll)) showScreen();
    if (change.concerns.has(Concern::document) || change.concerns.has(Concern::roll)) showTitle();
}

void MainWindow::showScreen()
{
    QWidget* screen = develop_;
    if (!desk_.isOnDevelop()) screen = desk_.hasFrames() ? static_cast<QWidget*>(grid_) : empty_;
    if (screen == screens_->currentWidget() && screen->isVisible()) return;
    if (screen == empty_) empty_->refresh();
    screens_->setCurrentWidget(screen);
    if (!sheets_->isAsking()) screen->setFocus(Qt::OtherFocusReason);
}

void MainWindow::showTitle()
{
    const AppModel& model = desk_.model;
    setWindowTitle(qt(model.project().name) + QStringLiteral("[*] — Tamlo"));
    setWindowModified(!model.projectURL() && desk_.hasFrames());
}

void MainWindow::restorePlace()
{
    setMinimumSize(kLeastSize.boundedTo(screen() ? screen()->availableSize() : kLeastSize));
    resize(kUsualSize);
    const auto place = desk_.model.seams().preferences.text(kPlace);
    if (place) restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*place)));
}

void MainWindow::storePlace()
{
    try {
        desk_.model.seams().preferences.setText(kPlace, saveGeometry().toBase64().toStdString());
    } catch (const platform::PlatformError&) {
        // The next window stands where a new one does.
    }
}

void MainWindow::retranslate()
{
    QEvent change(QEvent::LanguageChange);
    QApplication::sendEvent(this, &change); // which a widget hands down to its children
    menus_->retranslate();
    showTitle();
}

} // namespace tamlo::ui
