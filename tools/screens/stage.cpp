#include "tools/screens/stage.h"

#include "ui/kit/theme.h"
#include "ui/kit/words.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QTest>

#include <string_view>

namespace tamlo::screens {

Stage::Stage(QSize size)
    : application_(Application::Mode::service, {loop_, ProfileStore::shared(), questions_, clipboard_},
                   "screens")
{
    ui::Theme::apply(*qApp);
    window_ = std::make_unique<ui::MainWindow>(application_, questions_);
    window_->resize(size);
    window_->show();
    application_.start(false);
    window_->activateWindow();
    settle();
}

Stage::~Stage()
{
    window_.reset();
    application_.end();
}

void Stage::wait(double seconds)
{
    QTest::qWait(static_cast<int>(seconds * 1000));
}

void Stage::settle(double mostSeconds)
{
    constexpr double kQuietSeconds = 0.5; // as long as the last tiles of the canvas may take
    QElapsedTimer clock, quiet;
    clock.start();
    quiet.start();
    while (quiet.elapsed() < kQuietSeconds * 1000 && clock.elapsed() < mostSeconds * 1000) {
        QTest::qWait(20);
        if (!views().isSettled()) quiet.restart();
    }
}

void Stage::add(const std::vector<std::string>& paths)
{
    window_->take(paths);
    if (QTest::qWaitFor([&] { return !model().project().frames.empty(); }, 30'000)) settle(120);
}

void Stage::key(int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window_->windowHandle(), static_cast<Qt::Key>(key), modifiers);
    wait(0.05);
}

void Stage::run(const char* command)
{
    const QString text = ui::word(command);
    for (QAction* action : window_->findChildren<QAction*>())
        if (action->text() == text && action->isEnabled()) return action->trigger();
}

QWidget* Stage::find(const char* className)
{
    for (QWidget* widget : QApplication::allWidgets())
        if (std::string_view(widget->metaObject()->className()).ends_with(className) && widget->isVisible())
            return widget;
    return nullptr;
}

void Stage::home(Screen screen)
{
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top != window_.get() && top->isVisible()) top->close();
    if (model().cropping.cropMode()) model().cropping.leaveCropMode();
    if (model().sides.abEnabled()) model().sides.exitAB();
    model().selection.setFilter(GridFilter::all);
    const auto visible = model().selection.visibleIDs();
    if (screen == Screen::grid)
        model().selection.backToGrid();
    else if (model().selection.screen() != Screen::develop && !visible.empty())
        model().selection.openFrame(visible.front());
    model().zoom.reset();
    settle();
}

QPixmap Stage::photograph()
{
    QPixmap whole = window_->grab();
    QPainter painter(&whole);
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top == window_.get() || !top->isVisible() || top->size().isEmpty()) continue;
        painter.drawPixmap(top->mapToGlobal(QPoint()) - window_->mapToGlobal(QPoint()), top->grab());
    }
    return whole;
}

} // namespace tamlo::screens
