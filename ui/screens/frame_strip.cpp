#include "ui/screens/frame_strip.h"

#include "ui/kit/words.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace tamlo::ui {
namespace {

constexpr int kCellPx = 84, kPitchPx = 96, kMarginPx = 8;
constexpr double kRepaintSeconds = 0.02;

} // namespace

FrameStrip::FrameStrip(Desk desk, QWidget* parent) : QAbstractScrollArea(parent), desk_(desk), rows_(desk)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedHeight(kCellPx + 2 * kMarginPx);
    viewport()->setBackgroundRole(QPalette::Window);
    viewport()->setAutoFillBackground(true);
    setAccessibleName(word("menu.view.strip"));
    subscription_ = desk_.model.subscribe(
        {Concern::roll, Concern::selection, Concern::tiles, Concern::fileStates, Concern::document},
        [this](const ChangeSet& change) { take(change); });
    relayout();
}

void FrameStrip::take(const ChangeSet& change)
{
    if (change.concerns.has(Concern::roll) || change.concerns.has(Concern::document)) {
        rows_.refresh();
        relayout();
    }
    if (change.concerns.has(Concern::selection)) showCursor();
    viewport()->update();
}

void FrameStrip::relayout()
{
    QScrollBar* bar = horizontalScrollBar();
    const int width = kMarginPx * 2 + static_cast<int>(rows_.size()) * kPitchPx;
    bar->setPageStep(viewport()->width());
    bar->setRange(0, std::max(width - viewport()->width(), 0));
    showCursor();
}

void FrameStrip::showCursor()
{
    const auto row = rows_.cursorRow();
    if (!row) return;
    const int centre = kMarginPx + static_cast<int>(*row) * kPitchPx + kPitchPx / 2;
    horizontalScrollBar()->setValue(centre - viewport()->width() / 2);
    viewport()->update();
}

QRect FrameStrip::cellRect(std::size_t row) const
{
    const int x = kMarginPx + static_cast<int>(row) * kPitchPx - horizontalScrollBar()->value();
    return {x + (kPitchPx - kCellPx) / 2, kMarginPx, kCellPx, kCellPx};
}

std::optional<std::size_t> FrameStrip::rowAt(QPoint at) const
{
    const int x = at.x() + horizontalScrollBar()->value() - kMarginPx;
    const auto row = static_cast<std::size_t>(std::max(x, 0) / kPitchPx);
    return x >= 0 && row < rows_.size() ? std::optional(row) : std::nullopt;
}

void FrameStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    painter.setFont(font());
    pixmaps_.beginPaint();
    bool isRough = false;
    const auto first = rowAt({0, 0}).value_or(0);
    for (std::size_t row = first; row < rows_.size(); ++row) {
        const QRect tile = cellRect(row);
        if (tile.left() > viewport()->width()) break;
        FrameCell cell = rows_.cell(row, hasFocus());
        cell.isSelected = false;
        isRough |= paintFrameCell(painter, pixmaps_, cell, tile, {}, palette());
    }
    if (isRough) repaint_ = desk_.model.seams().loop.after(kRepaintSeconds, [this] { viewport()->update(); });
}

void FrameStrip::resizeEvent(QResizeEvent*)
{
    relayout();
}

void FrameStrip::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    relayout();
}

void FrameStrip::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) setAccessibleName(word("menu.view.strip"));
    QAbstractScrollArea::changeEvent(event);
}

void FrameStrip::mousePressEvent(QMouseEvent* event)
{
    if (const auto row = rowAt(event->pos())) desk_.model.selection.openFrame(FrameID(rows_.id(*row)));
}

void FrameStrip::wheelEvent(QWheelEvent* event)
{
    const QPoint turned = event->angleDelta();
    const int by = std::abs(turned.x()) > std::abs(turned.y()) ? turned.x() : turned.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - by);
    event->accept();
}

void FrameStrip::keyPressEvent(QKeyEvent* event)
{
    Selection& selection = desk_.model.selection;
    switch (event->key()) {
    case Qt::Key_Left:
        return selection.step(-1);
    case Qt::Key_Right:
        return selection.step(1);
    case Qt::Key_Home:
        return selection.moveCursorToEdge(true);
    case Qt::Key_End:
        return selection.moveCursorToEdge(false);
    default:
        event->ignore();
    }
}

bool FrameStrip::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const auto row = rowAt(help->pos());
    row ? QToolTip::showText(help->globalPos(), rows_.description(*row), viewport(), cellRect(*row))
        : QToolTip::hideText();
    return true;
}

void FrameStrip::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void FrameStrip::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace tamlo::ui
