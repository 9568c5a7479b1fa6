#include "ui/screens/grid_view.h"

#include "ui/kit/words.h"
#include "ui/screens/grid_accessible.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace tamlo::ui {
namespace {

constexpr double kVisibleSeconds = 0.1; // a scroll that goes on asks for nothing that it passes
constexpr double kRepaintSeconds = 0.02;

} // namespace

GridView::GridView(Desk desk, QWidget* parent) : QAbstractScrollArea(parent), desk_(desk), rows_(desk)
{
    installGridAccessibility();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setBackgroundRole(QPalette::Shadow);
    viewport()->setAutoFillBackground(true);
    viewport()->setMouseTracking(false);
    subscription_ = desk_.model.subscribe(
        {Concern::roll, Concern::selection, Concern::tiles, Concern::fileStates, Concern::document},
        [this](const ChangeSet& change) { take(change); });
    relayout();
}

void GridView::take(const ChangeSet& change)
{
    if (change.concerns.has(Concern::roll) || change.concerns.has(Concern::document)) {
        rows_.refresh();
        relayout();
    }
    if (change.concerns.has(Concern::selection) && drag_ == Drag::none) {
        showCursor();
        if (const auto row = rows_.cursorRow()) tellCursor(*this, *row);
    }
    const ConcernSet whole{Concern::roll, Concern::selection, Concern::fileStates, Concern::document};
    if (!(change.concerns & whole).empty()) return viewport()->update();
    for (const FrameID& id : change.tiles)
        if (const auto row = rows_.rowOf(id)) viewport()->update(cellRect(*row).adjusted(-6, -6, 6, 6));
}

void GridView::setTile(int side)
{
    if (side == tile_) return;
    tile_ = side;
    relayout();
    showCursor();
}

int GridView::scrollTop() const
{
    return verticalScrollBar()->value();
}

QRect GridView::cellRect(std::size_t row) const
{
    return layout_.cell(row).translated(0, -scrollTop());
}

void GridView::relayout()
{
    const auto anchor = rows_.cursorRow();
    layout_ = GridLayout(rows_.size(), viewport()->width(), tile_);
    desk_.model.selection.setGridColumns(layout_.columns());
    QScrollBar* bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(std::max(layout_.rowHeight() / 3, 1));
    bar->setRange(0, std::max(layout_.height() - viewport()->height(), 0));
    if (anchor && !isVisible()) showCursor();
    viewport()->update();
    noteVisible();
}

void GridView::showCursor()
{
    const auto row = rows_.cursorRow();
    if (!row) return;
    const QRect cell = layout_.cell(*row).adjusted(0, -GridLayout::kGapPx, 0, GridLayout::kGapPx);
    if (cell.top() < scrollTop())
        verticalScrollBar()->setValue(cell.top());
    else if (cell.bottom() > scrollTop() + viewport()->height())
        verticalScrollBar()->setValue(cell.bottom() - viewport()->height());
}

void GridView::selectRow(std::size_t row)
{
    desk_.model.selection.select({rows_.id(row)});
}

void GridView::openRow(std::size_t row)
{
    desk_.model.selection.openFrame(FrameID(rows_.id(row)));
}

void GridView::noteVisible()
{
    visible_ = desk_.model.seams().loop.after(kVisibleSeconds, [this] {
        if (!isVisible()) return;
        const auto [first, last] = layout_.cellsBetween(scrollTop(), scrollTop() + viewport()->height());
        std::vector<FrameID> ids;
        for (std::size_t row = first; row < std::min(last, rows_.size()); ++row) ids.push_back(rows_.id(row));
        desk_.views.setVisibleTiles(std::move(ids));
    });
}

void GridView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.setFont(font());
    pixmaps_.beginPaint();
    bool isRough = false;
    const QRect dirty = event->rect().translated(0, scrollTop());
    const auto [first, last] = layout_.cellsBetween(dirty.top() - 8, dirty.bottom() + 8);
    for (std::size_t row = first; row < std::min(last, rows_.size()); ++row) {
        const QRect cell = cellRect(row);
        if (!cell.adjusted(-6, -6, 6, 6).intersects(event->rect())) continue;
        const QRect tile(cell.topLeft(), QSize(layout_.tile(), layout_.tile()));
        const QRect caption(tile.left(), tile.bottom() + 1, tile.width(), GridLayout::kCaptionPx);
        isRough |= paintFrameCell(painter, pixmaps_, rows_.cell(row, hasFocus()), tile, caption, palette());
    }
    if (rows_.size() == 0 && desk_.hasFrames()) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter, word("grid.nothingPasses"));
    }
    if (drag_ == Drag::band) paintBand(painter);
    if (drag_ == Drag::order) paintGap(painter);
    if (isRough) repaint_ = desk_.model.seams().loop.after(kRepaintSeconds, [this] { viewport()->update(); });
}

void GridView::paintBand(QPainter& painter)
{
    QColor ground = palette().color(QPalette::Highlight);
    painter.setPen(ground);
    ground.setAlpha(50);
    painter.setBrush(ground);
    painter.drawRect(QRect(pressAt_ - QPoint(0, scrollTop()), dragAt_).normalized());
}

void GridView::paintGap(QPainter& painter)
{
    if (!gap_ || rows_.size() == 0) return;
    const bool isEnd = *gap_ >= rows_.size();
    const QRect cell = cellRect(isEnd ? rows_.size() - 1 : *gap_);
    const int x = isEnd ? cell.right() + GridLayout::kGapPx / 2 : cell.left() - GridLayout::kGapPx / 2;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 4));
    painter.drawLine(x, cell.top(), x, cell.bottom());
}

void GridView::resizeEvent(QResizeEvent*)
{
    relayout();
}

void GridView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    relayout();
    showCursor();
}

void GridView::scrollContentsBy(int, int dy)
{
    viewport()->scroll(0, dy);
    if (drag_ != Drag::none) viewport()->update();
    noteVisible();
}

void GridView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void GridView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

bool GridView::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const auto row = rowAt(help->pos());
    row ? QToolTip::showText(help->globalPos(), rows_.description(*row), viewport(), cellRect(*row))
        : QToolTip::hideText();
    return true;
}

} // namespace tamlo::ui
