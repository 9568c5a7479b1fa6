// The hands of GridView: mouse, wheel and keys.
#include "ui/screens/grid_view.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace tamlo::ui {
namespace {

constexpr int kEdgePx = 28, kEdgeStepPx = 18;
constexpr double kEdgeSeconds = 0.02;

} // namespace

void GridView::clickOn(std::size_t row, Qt::KeyboardModifiers keys)
{
    Selection& selection = desk_.model.selection;
    const FrameID id = rows_.id(row);
    if (keys & Qt::ShiftModifier)
        selection.extendSelection(id);
    else if (keys & Qt::ControlModifier)
        selection.toggleSelection(id);
    else if (selection.selected().contains(id) && selection.selected().size() > 1) {
        selection.setCursor(id); // it may be the beginning of a drag of them all
        selectsOnRelease_ = true;
    } else
        selection.select({id});
}

void GridView::mousePressEvent(QMouseEvent* event)
{
    pressAt_ = inRoll(event->pos());
    dragAt_ = event->pos();
    pressRow_ = layout_.cellAt(pressAt_);
    selectsOnRelease_ = false;
    if (pressRow_ && event->button() != Qt::LeftButton) {
        if (!desk_.model.selection.selected().contains(rows_.id(*pressRow_))) clickOn(*pressRow_, {});
        return;
    }
    if (event->button() != Qt::LeftButton) return;
    drag_ = Drag::pressed;
    const bool adds = event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
    const auto& selected = desk_.model.selection.selected();
    bandBase_.clear();
    if (adds) bandBase_.assign(selected.begin(), selected.end());
    if (pressRow_) return clickOn(*pressRow_, event->modifiers());
    if (!adds) desk_.model.selection.select({});
}

void GridView::mouseMoveEvent(QMouseEvent* event)
{
    if (drag_ == Drag::none) return;
    if (drag_ == Drag::pressed) {
        const int moved = (inRoll(event->pos()) - pressAt_).manhattanLength();
        if (moved < QApplication::startDragDistance()) return;
        drag_ = pressRow_ ? Drag::order : Drag::band;
        selectsOnRelease_ = false;
    }
    dragTo(event->pos());
    scrollAtEdge();
}

void GridView::dragTo(QPoint at)
{
    dragAt_ = at;
    const QPoint place = inRoll(at);
    if (drag_ == Drag::order) gap_ = layout_.gapAt(place);
    if (drag_ == Drag::band) {
        std::vector<FrameID> ids;
        for (const std::size_t row : layout_.cellsIn(QRect(pressAt_, place).normalized()))
            ids.push_back(rows_.id(row));
        desk_.model.selection.selectMarquee(bandBase_, ids);
    }
    viewport()->update();
}

/// Near an edge the roll goes on by itself as long as the button is held there.
void GridView::scrollAtEdge()
{
    const int below = dragAt_.y() - (viewport()->height() - kEdgePx), above = kEdgePx - dragAt_.y();
    const int step = below > 0 ? kEdgeStepPx : above > 0 ? -kEdgeStepPx : 0;
    if (step == 0 || drag_ == Drag::none) return edge_.cancel();
    edge_ = desk_.model.seams().loop.after(kEdgeSeconds, [this, step] {
        if (drag_ != Drag::band && drag_ != Drag::order) return;
        verticalScrollBar()->setValue(scrollTop() + step);
        dragTo(dragAt_);
        scrollAtEdge();
    });
}

void GridView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return;
    if (drag_ == Drag::order) drop();
    if (drag_ == Drag::pressed && selectsOnRelease_ && pressRow_ && *pressRow_ < rows_.size())
        desk_.model.selection.select({rows_.id(*pressRow_)});
    drag_ = Drag::none;
    gap_.reset();
    edge_.cancel();
    viewport()->update();
}

void GridView::drop()
{
    if (!gap_ || rows_.size() == 0) return;
    Ordering& ordering = desk_.model.ordering;
    const std::vector<FrameID> ids = desk_.model.selection.actionTargets();
    const std::unordered_set<FrameID> dragged(ids.begin(), ids.end());
    // Beside the nearest frame that stays where it is.
    for (std::size_t row = *gap_; row < rows_.size(); ++row)
        if (!dragged.contains(rows_.id(row))) return ordering.moveBefore(ids, rows_.id(row));
    for (std::size_t row = rows_.size(); row-- > 0;)
        if (!dragged.contains(rows_.id(row))) return ordering.moveAfter(ids, rows_.id(row));
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const auto row = layout_.cellAt(inRoll(event->pos()));
    drag_ = Drag::none;
    if (row && event->button() == Qt::LeftButton) desk_.model.selection.openFrame(rows_.id(*row));
}

void GridView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        if (event->angleDelta().y() != 0) desk_.window.zoomTiles(event->angleDelta().y() > 0 ? 1 : -1);
        return event->accept();
    }
    QAbstractScrollArea::wheelEvent(event);
}

void GridView::contextMenuEvent(QContextMenuEvent* event)
{
    QPoint at = event->globalPos();
    const auto cursor = rows_.cursorRow();
    if (event->reason() == QContextMenuEvent::Keyboard && cursor)
        at = viewport()->mapToGlobal(cellRect(*cursor).center());
    if (onContextMenu) onContextMenu(at);
}

void GridView::shiftOrder(int delta)
{
    const std::vector<FrameID> ids = desk_.model.selection.actionTargets();
    const auto row = ids.empty() ? std::nullopt : rows_.rowOf(delta < 0 ? ids.front() : ids.back());
    if (!row) return;
    const auto last = static_cast<std::ptrdiff_t>(rows_.size()) - 1;
    const auto to = std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(*row) + delta, 0, last);
    const FrameID target = rows_.id(static_cast<std::size_t>(to));
    delta < 0 ? desk_.model.ordering.moveBefore(ids, target) : desk_.model.ordering.moveAfter(ids, target);
}

bool GridView::moveByKey(int key, Qt::KeyboardModifiers keys)
{
    Selection& selection = desk_.model.selection;
    const bool extends = keys & Qt::ShiftModifier;
    const int across = key == Qt::Key_Right ? 1 : key == Qt::Key_Left ? -1 : 0;
    const int down = key == Qt::Key_Down ? 1 : key == Qt::Key_Up ? -1 : 0;
    if (across != 0 || down != 0) {
        if (keys & Qt::AltModifier)
            shiftOrder(across + down * layout_.columns());
        else if (keys & Qt::ControlModifier) {
            const auto row = rows_.cursorRow();
            const auto to = row ? static_cast<std::ptrdiff_t>(*row) + across + down * layout_.columns() : -1;
            if (to >= 0 && to < static_cast<std::ptrdiff_t>(rows_.size()))
                selection.setCursor(rows_.id(static_cast<std::size_t>(to)));
        } else
            across != 0 ? selection.step(across, extends) : selection.stepRow(down, extends);
        return true;
    }
    if (key != Qt::Key_Home && key != Qt::Key_End) return false;
    selection.moveCursorToEdge(key == Qt::Key_Home, extends);
    return true;
}

void GridView::keyPressEvent(QKeyEvent* event)
{
    const auto& cursor = desk_.model.selection.cursor();
    if (moveByKey(event->key(), event->modifiers())) return event->accept();
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && cursor) {
        desk_.model.selection.openFrame(FrameID(*cursor));
        return event->accept();
    }
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ControlModifier && cursor) {
        desk_.model.selection.toggleSelection(FrameID(*cursor));
        return event->accept();
    }
    if (event->key() == Qt::Key_Escape && drag_ != Drag::none) {
        drag_ = Drag::none;
        return viewport()->update();
    }
    event->ignore(); // not the scroll area's own keys: they would move the roll and leave the cursor behind
}

} // namespace tamlo::ui
