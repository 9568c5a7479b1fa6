#include "ui/screens/commands.h"

#include "ui/screens/shelf_items.h"

namespace tamlo::ui {
namespace {

using D = Desk;
constexpr bool kGroup = true;

// When a command can act.

bool hasFrames(const D& desk)
{
    return desk.hasFrames();
}
bool hasCursor(const D& desk)
{
    return desk.hasCursor();
}
bool onGrid(const D& desk)
{
    return desk.isOnGrid();
}
bool onDevelop(const D& desk)
{
    return desk.isOnDevelop();
}
bool hasLost(const D& desk)
{
    return !desk.model.linker.lostFrames().empty();
}
bool hasProcess(const D& desk)
{
    const FrameRef frame = desk.model.selection.currentFrame();
    return frame && frame->process;
}
bool isCropped(const D& desk)
{
    const FrameRef frame = desk.model.selection.currentFrame();
    return frame && frame->crop;
}

bool canExport(const D& desk)
{
    return desk.hasFrames() && !desk.model.exporter.isExporting();
}
bool isAB(const D& desk)
{
    return desk.model.sides.abEnabled();
}

// What they do.

void mark(D& desk, Mark mark)
{
    desk.model.marks.markCurrent(mark);
}
void markAndStep(D& desk, Mark mark)
{
    desk.model.marks.markCurrent(mark);
    desk.model.selection.step(1);
}
/// Takes whatever mark the targets bear.
void clearMark(D& desk)
{
    desk.model.marks.assign(desk.model.selection.actionTargets(), Mark::none);
}
void turn(D& desk, OrientAction action)
{
    desk.model.turns.orientTarget(action);
}
void reroll(D& desk, Seeds::SeedStream stream)
{
    desk.isOnDevelop() ? desk.model.rack.rerollRack(stream)
                       : void(desk.model.rack.reroll(desk.model.selection.actionTargets(), stream));
}
bool isFilter(const D& desk, GridFilter filter)
{
    return desk.model.project().filter == filter;
}
bool isSorted(const D& desk, SortMode mode)
{
    return desk.model.project().sortMode == mode;
}
void zoomBy(D& desk, int direction)
{
    desk.isOnDevelop() ? desk.model.zoom.stepZoom(direction) : desk.window.zoomTiles(direction);
}

const Command kCommands[] = {
    {"menu.file.new", MenuOf::file, "Ctrl+N", nullptr, [](D& d) { d.window.newProject(); }},
    {"menu.file.open", MenuOf::file, "Ctrl+O", nullptr, [](D& d) { d.window.openProject(); }},
    {"menu.file.add", MenuOf::file, "Ctrl+I", nullptr, [](D& d) { d.window.addPhotographs(); }, nullptr,
     kGroup},
    {"menu.file.addFolder", MenuOf::file, "Ctrl+Shift+I", nullptr, [](D& d) { d.window.addFolder(); }},
    {"menu.file.save", MenuOf::file, "Ctrl+S", hasFrames, [](D& d) { d.window.save(); }, nullptr, kGroup},
    {"menu.file.saveAs", MenuOf::file, "Ctrl+Shift+S", hasFrames, [](D& d) { d.window.saveAs(); }},
    {"menu.file.restore", MenuOf::file, "", [](const D& d) { return d.model.projectURL().has_value(); },
     [](D& d) { d.window.restoreBackup(); }},
    {"menu.file.export", MenuOf::file, "Ctrl+E", canExport, [](D& d) { d.window.showExport(); }, nullptr,
     kGroup},
    {"menu.file.exportAgain", MenuOf::file, "Ctrl+Shift+E", canExport, [](D& d) { d.window.exportAgain(); }},
    {"menu.file.locate", MenuOf::file, "", hasLost, [](D& d) { d.window.locateFile(); }, nullptr, kGroup},
    {"menu.file.locateFolder", MenuOf::file, "", hasLost, [](D& d) { d.window.locateFolder(); }},
    {"menu.file.quit", MenuOf::file, "Ctrl+Q", nullptr, [](D& d) { d.window.quit(); }, nullptr, kGroup},

    {"menu.edit.undo", MenuOf::edit, "Ctrl+Z",
     [](const D& d) { return !d.model.history().undoStack().empty(); }, [](D& d) { d.model.undo(); }},
    {"menu.edit.redo", MenuOf::edit, "Ctrl+Shift+Z Ctrl+Y",
     [](const D& d) { return !d.model.history().redoStack().empty(); }, [](D& d) { d.model.redo(); }},
    {"menu.edit.history", MenuOf::edit, "Ctrl+Alt+Z", nullptr, [](D& d) { d.window.showHistory(); }},
    {"menu.edit.copy", MenuOf::edit, "Ctrl+C", hasCursor, [](D& d) { d.model.copying.copySettings(); },
     nullptr, kGroup},
    {"menu.edit.paste", MenuOf::edit, "Ctrl+V",
     [](const D& d) { return d.hasCursor() && d.model.copying.hasSettings(); },
     [](D& d) { d.model.copying.pasteSettings(); }},
    {"menu.edit.copyBlock", MenuOf::edit, "Ctrl+Shift+C",
     [](const D& d) { return d.window.hasFocusedCard(); }, [](D& d) { d.window.copyBlock(); }},
    {"menu.edit.pasteBlock", MenuOf::edit, "Ctrl+Shift+V", hasCursor,
     [](D& d) { d.model.copying.pasteBlock(); }},
    {"menu.edit.selectAll", MenuOf::edit, "Ctrl+A", onGrid,
     [](D& d) { d.model.selection.selectAllVisible(); }, nullptr, kGroup},
    {"menu.edit.selectNone", MenuOf::edit, "Ctrl+Shift+A", onGrid,
     [](D& d) { d.model.selection.select({}); }},
    {"menu.edit.remove", MenuOf::edit, "Del", [](const D& d) { return d.isOnGrid() && d.hasCursor(); },
     [](D& d) { d.model.removal.removeSelected(true); }},
    {"menu.edit.find", MenuOf::edit, "Ctrl+K", nullptr, [](D& d) { d.window.showPalette(); }, nullptr,
     kGroup},
    {"menu.edit.preferences", MenuOf::edit, "Ctrl+,", nullptr, [](D& d) { d.window.showPreferences(); }},

    {"menu.frame.pick", MenuOf::frame, "P", hasCursor, [](D& d) { mark(d, Mark::selected); }},
    {"menu.frame.reject", MenuOf::frame, "X R", hasCursor, [](D& d) { mark(d, Mark::rejected); }},
    {"menu.frame.clear", MenuOf::frame, "U", hasCursor, clearMark},
    {"menu.frame.pickNext", MenuOf::frame, "Shift+P", hasCursor, [](D& d) { markAndStep(d, Mark::selected); },
     nullptr, false, false},
    {"menu.frame.rejectNext", MenuOf::frame, "Shift+X Shift+R", hasCursor,
     [](D& d) { markAndStep(d, Mark::rejected); }, nullptr, false, false},
    {"menu.frame.next", MenuOf::frame, "PgDown", hasCursor, [](D& d) { d.model.selection.step(1); }, nullptr,
     kGroup},
    {"menu.frame.previous", MenuOf::frame, "PgUp", hasCursor, [](D& d) { d.model.selection.step(-1); }},
    {"menu.frame.right", MenuOf::frame, "]", hasCursor, [](D& d) { turn(d, OrientAction::right); }, nullptr,
     kGroup},
    {"menu.frame.left", MenuOf::frame, "[", hasCursor, [](D& d) { turn(d, OrientAction::left); }},
    {"menu.frame.mirror", MenuOf::frame, "M", hasCursor, [](D& d) { turn(d, OrientAction::flipH); }},
    {"menu.frame.flip", MenuOf::frame, "Shift+M", hasCursor, [](D& d) { turn(d, OrientAction::flipV); }},
    {"menu.frame.resetTurn", MenuOf::frame, "",
     [](const D& d) { return d.hasCursor() && !d.model.turns.orientTargetIsDefault(); },
     [](D& d) { turn(d, OrientAction::reset); }},
    {"menu.frame.crop", MenuOf::frame, "C", [](const D& d) { return d.model.cropping.cropKeyEnabled(); },
     [](D& d) { d.model.cropping.cropKey(); }, [](const D& d) { return d.model.cropping.cropMode(); },
     kGroup},
    {"menu.frame.resetCrop", MenuOf::frame, "", isCropped,
     [](D& d) { d.model.cropping.resetCropOfTargets(); }},
    {"menu.frame.byName", MenuOf::frame, "", onGrid,
     [](D& d) { d.model.ordering.setSortMode(SortMode::name); },
     [](const D& d) { return isSorted(d, SortMode::name); }, kGroup},
    {"menu.frame.byTime", MenuOf::frame, "", onGrid,
     [](D& d) { d.model.ordering.setSortMode(SortMode::shot); },
     [](const D& d) { return isSorted(d, SortMode::shot); }},
    {"menu.frame.byHand", MenuOf::frame, "", onGrid,
     [](D& d) { d.model.ordering.setSortMode(SortMode::manual); },
     [](const D& d) { return isSorted(d, SortMode::manual); }},
    {"menu.frame.reverse", MenuOf::frame, "", onGrid, [](D& d) { d.model.ordering.reverseFrames(); }},
    {"menu.frame.showAll", MenuOf::frame, "1", onGrid,
     [](D& d) { d.model.selection.setFilter(GridFilter::all); },
     [](const D& d) { return isFilter(d, GridFilter::all); }, kGroup},
    {"menu.frame.hideRejected", MenuOf::frame, "2", onGrid,
     [](D& d) { d.model.selection.setFilter(GridFilter::hideRejected); },
     [](const D& d) { return isFilter(d, GridFilter::hideRejected); }},
    {"menu.frame.showPicks", MenuOf::frame, "3", onGrid,
     [](D& d) { d.model.selection.setFilter(GridFilter::selected); },
     [](const D& d) { return isFilter(d, GridFilter::selected); }},

    {"menu.process.presets", MenuOf::process, "Alt+0", onDevelop,
     [](D& d) { d.window.openShelf(ShelfKind::presets); }},
    {"menu.process.lensShelf", MenuOf::process, "Alt+3", onDevelop,
     [](D& d) { d.window.openShelf(ShelfKind::lens); }},
    {"menu.process.filterShelf", MenuOf::process, "Alt+4", onDevelop,
     [](D& d) { d.window.openShelf(ShelfKind::filter); }},
    {"menu.process.filmShelf", MenuOf::process, "Alt+5", onDevelop,
     [](D& d) { d.window.openShelf(ShelfKind::film); }},
    {"menu.process.paperShelf", MenuOf::process, "Alt+7", onDevelop,
     [](D& d) { d.window.openShelf(ShelfKind::paper); }},
    {"menu.process.source", MenuOf::process, "1", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::source); }, nullptr, kGroup},
    {"menu.process.light", MenuOf::process, "2", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::light); }},
    {"menu.process.optics", MenuOf::process, "3", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::optics); }},
    {"menu.process.filter", MenuOf::process, "4", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::filter); }},
    {"menu.process.film", MenuOf::process, "5", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::film); }},
    {"menu.process.develop", MenuOf::process, "6", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::develop); }},
    {"menu.process.print", MenuOf::process, "7", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::print); }},
    {"menu.process.finish", MenuOf::process, "8", onDevelop,
     [](D& d) { d.window.focusCard(PresetBlock::finish); }},
    {"menu.process.applyAll", MenuOf::process, "Ctrl+Alt+V", hasProcess,
     [](D& d) { d.model.spreading.applyToAll(*d.model.selection.cursor()); }, nullptr, kGroup},
    {"menu.process.reset", MenuOf::process, "Ctrl+Backspace", hasProcess,
     [](D& d) { d.model.rack.resetSettings(d.model.selection.actionTargets()); }},
    {"menu.process.rerollFilm", MenuOf::process, "", hasProcess,
     [](D& d) { reroll(d, Seeds::SeedStream::film); }, nullptr, kGroup},
    {"menu.process.rerollDev", MenuOf::process, "", hasProcess,
     [](D& d) { reroll(d, Seeds::SeedStream::develop); }},
    {"menu.process.rerollPrint", MenuOf::process, "", hasProcess,
     [](D& d) { reroll(d, Seeds::SeedStream::print); }},

    {"menu.process.compare", MenuOf::process, "B", onDevelop,
     [](D& d) { isAB(d) ? d.model.sides.focusAB(Sides::ABSide::b) : d.model.sides.enterAB(); }, nullptr,
     kGroup},
    {"menu.process.sideA", MenuOf::process, "A", isAB, [](D& d) { d.model.sides.focusAB(Sides::ABSide::a); }},
    {"develop.takeThis", MenuOf::process, "Return Enter", isAB,
     [](D& d) { d.model.sides.exitAB(d.model.sides.abFocus()); }},

    {"menu.view.grid", MenuOf::view, "G", hasFrames, [](D& d) { d.model.selection.backToGrid(); },
     [](const D& d) { return !d.isOnDevelop(); }},
    {"menu.view.develop", MenuOf::view, "D", hasCursor,
     [](D& d) { d.model.selection.openFrame(*d.model.selection.cursor()); },
     [](const D& d) { return d.isOnDevelop(); }},
    {"menu.view.fit", MenuOf::view, "Ctrl+0", onDevelop, [](D& d) { d.model.zoom.reset(); }, nullptr, kGroup},
    {"menu.view.oneToOne", MenuOf::view, "Z Ctrl+1", onDevelop, [](D& d) { d.model.zoom.toggleOneToOne(); }},
    {"menu.view.zoomIn", MenuOf::view, "Ctrl+= Ctrl++", hasFrames, [](D& d) { zoomBy(d, 1); }},
    {"menu.view.zoomOut", MenuOf::view, "Ctrl+-", hasFrames, [](D& d) { zoomBy(d, -1); }},
    {"menu.view.original", MenuOf::view, "O", hasFrames, [](D& d) { d.window.toggleOriginals(); },
     [](const D& d) { return d.window.showsOriginals(); }, kGroup},
    {"menu.view.strip", MenuOf::view, "H", onDevelop, [](D& d) { d.window.toggleStrip(); },
     [](const D& d) { return d.window.showsStrip(); }},
    {"menu.view.fullScreen", MenuOf::view, "F11", nullptr, [](D& d) { d.window.toggleFullScreen(); },
     [](const D& d) { return d.window.isFullScreenOn(); }},
    {"menu.view.nextRegion", MenuOf::view, "F6", nullptr, [](D& d) { d.window.focusNextRegion(1); }, nullptr,
     kGroup},
    {"menu.view.previousRegion", MenuOf::view, "Shift+F6", nullptr,
     [](D& d) { d.window.focusNextRegion(-1); }},

    {"menu.help.keys", MenuOf::help, "F1 ?", nullptr, [](D& d) { d.window.showKeys(); }},
    {"menu.help.about", MenuOf::help, "", nullptr, [](D& d) { d.window.showAbout(); }},
};

} // namespace

std::span<const Command> commands()
{
    return kCommands;
}

} // namespace tamlo::ui
