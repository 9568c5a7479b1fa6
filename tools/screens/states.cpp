#include "tools/screens/states.h"

#include "ui/kit/theme.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>

namespace tamlo::screens {
namespace {

/// Marks, picks and rejections among the first frames, as after a first look.
void markSome(Stage& stage)
{
    const auto ids = stage.model().selection.visibleIDs();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        stage.model().selection.setCursor(ids[i]);
        if (i % 4 == 1) stage.run("menu.frame.pick");
        if (i % 5 == 3) stage.run("menu.frame.reject");
    }
    if (!ids.empty()) stage.model().selection.setCursor(ids.front());
}

void openMenu(Stage& stage, int place)
{
    stage.home(Screen::grid);
    const QMenuBar* const bar = stage.window().menuBar();
    QAction* const action = bar->actions().at(place);
    action->menu()->popup(bar->mapToGlobal(bar->actionGeometry(action).bottomLeft()));
    stage.wait(0.2);
}

void develop(Stage& stage)
{
    stage.home(Screen::develop);
}

void onDevelop(Stage& stage, const char* command)
{
    develop(stage);
    stage.run(command);
    stage.settle();
}

/// A film on the current frame, so that there is a print to look at.
void print(Stage& stage)
{
    develop(stage);
    ProcessSettings settings = stage.model().rack.rackSettings();
    settings.stock = "portra400";
    settings.paper = "color_ra4";
    stage.model().rack.setRackSettings(settings);
    stage.settle();
}

void crop(Stage& stage)
{
    develop(stage);
    stage.model().cropping.enterCropMode();
    stage.model().cropping.change([](CropDraft& draft) {
        draft.setAspect(CropAspectKind::of(1.25));
        draft.nudge(200, 0);
    });
    stage.settle();
}

void textOf(Stage& stage, int percent, bool highContrast)
{
    ui::Theme::apply(*qApp, {.textPercent = percent, .highContrast = highContrast});
    stage.settle();
}

const State kEmptyStates[] = {
    {"empty", "No project: the first start", [](Stage& s) { s.settle(); }},
    {"empty-preferences", "Preferences", [](Stage& s) { s.run("menu.edit.preferences"); }},
};

const State kRollStates[] = {
    {"grid", "The grid as the roll comes in", [](Stage& s) { s.home(Screen::grid); }},
    {"grid-marks", "Picked and rejected", [](Stage& s) { s.home(Screen::grid), markSome(s), s.settle(); }},
    {"grid-selected", "All selected", [](Stage& s) { s.home(Screen::grid), s.run("menu.edit.selectAll"); }},
    {"grid-picks", "Picks alone",
     [](Stage& s) { s.home(Screen::grid), s.model().selection.setFilter(GridFilter::selected), s.settle(); }},
    {"grid-remove", "The question before picked frames go",
     [](Stage& s) {
         s.home(Screen::grid), s.run("menu.edit.selectAll"), s.run("menu.edit.remove"), s.settle();
     }},
    {"grid-undo", "After an undo",
     [](Stage& s) {
         s.key(Qt::Key_Escape), s.home(Screen::grid), s.run("menu.frame.right"), s.model().undo(), s.settle();
     }},
    {"menu-file", "File menu", [](Stage& s) { openMenu(s, 0); }},
    {"menu-edit", "Edit menu", [](Stage& s) { openMenu(s, 1); }},
    {"menu-frame", "Frame menu", [](Stage& s) { openMenu(s, 2); }},
    {"menu-process", "Process menu", [](Stage& s) { openMenu(s, 3); }},
    {"menu-view", "View menu", [](Stage& s) { openMenu(s, 4); }},
    {"develop-original", "A frame without a process", [](Stage& s) { develop(s); }},
    {"develop-print", "Its first print", [](Stage& s) { print(s); }},
    {"develop-one-to-one", "At 1:1", [](Stage& s) { onDevelop(s, "menu.view.oneToOne"); }},
    {"develop-zoomed", "At four times the fit",
     [](Stage& s) {
         develop(s), s.model().zoom.setZoomPercent(400 / s.model().zoom.oneToOneZoom()), s.settle();
     }},
    {"develop-compare", "A/B", [](Stage& s) { onDevelop(s, "menu.process.compare"); }},
    {"develop-no-strip", "Without the strip of the roll", [](Stage& s) { onDevelop(s, "menu.view.strip"); }},
    {"rack-source", "Card 1",
     [](Stage& s) { onDevelop(s, "menu.view.strip"), s.run("menu.process.source"), s.settle(); }},
    {"rack-film", "Card 5", [](Stage& s) { onDevelop(s, "menu.process.film"); }},
    {"rack-print", "Card 7", [](Stage& s) { onDevelop(s, "menu.process.print"); }},
    {"rack-finish", "Card 8", [](Stage& s) { onDevelop(s, "menu.process.finish"); }},
    {"shelf-film", "Films over the photograph", [](Stage& s) { onDevelop(s, "menu.process.filmShelf"); }},
    {"shelf-lens", "Lenses", [](Stage& s) { onDevelop(s, "menu.process.lensShelf"); }},
    {"shelf-paper", "Papers", [](Stage& s) { onDevelop(s, "menu.process.paperShelf"); }},
    {"shelf-presets", "Presets", [](Stage& s) { onDevelop(s, "menu.process.presets"); }},
    {"crop", "Cropping", [](Stage& s) { s.key(Qt::Key_Escape), crop(s); }},
    {"crop-tilted", "Cropping, tilted",
     [](Stage& s) {
         crop(s), s.model().cropping.change([](CropDraft& draft) { draft.setAngle(-4.5); }), s.settle();
     }},
    {"palette", "Find or run", [](Stage& s) { onDevelop(s, "menu.edit.find"); }},
    {"keys", "Keys", [](Stage& s) { onDevelop(s, "menu.help.keys"); }},
    {"history", "History", [](Stage& s) { onDevelop(s, "menu.edit.history"); }},
    {"export", "Export", [](Stage& s) { s.home(Screen::grid), s.run("menu.file.export"), s.settle(); }},
    {"about", "About", [](Stage& s) { s.home(Screen::grid), s.run("menu.help.about"), s.settle(); }},
    {"text-150", "Text of 150 %", [](Stage& s) { develop(s), textOf(s, 150, false); }},
    {"high-contrast", "High contrast", [](Stage& s) { develop(s), textOf(s, 100, true); }},
};

} // namespace

std::span<const State> emptyStates()
{
    return kEmptyStates;
}

std::span<const State> rollStates()
{
    return kRollStates;
}

} // namespace tamlo::screens
