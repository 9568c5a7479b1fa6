#include "ui/screens/shelf_cell.h"

#include "ui/kit/theme.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tamlo::ui {

namespace {

constexpr int kPictureWidth = 144, kPictureHeight = 100;

bool isArrow(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down ||
           key == Qt::Key_Home || key == Qt::Key_End;
}

} // namespace

ShelfCell::ShelfCell(const ShelfItem& item, QWidget* parent) : QAbstractButton(parent), item_(item)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setCheckable(true);
    setChecked(item.isIn);
    setText(item.title);
    setAccessibleName(item.title);
    QStringList facts{item.summary, item.badge, item.fault};
    facts.removeAll(QString());
    setAccessibleDescription(facts.join(QStringLiteral(", ")));
    setToolTip(item.fault.isEmpty() ? item.title : item.title + QStringLiteral("\n") + item.fault);
    setEnabled(item.fault.isEmpty());
}

void ShelfCell::setPicture(const QImage& picture, bool isRough)
{
    picture_ = picture;
    isRough_ = isRough;
    update();
}

QSize ShelfCell::cellSize()
{
    const int lines = 2 * QFontMetrics(Theme::smallFont()).height() + Theme::kSmallGap;
    return {kPictureWidth + Theme::kGap, kPictureHeight + lines + Theme::kGap};
}

void ShelfCell::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (isChecked() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isChecked() ? Theme::raised() : Theme::line());
        painter.drawRoundedRect(rect(), Theme::kRadius, Theme::kRadius);
    }
    const QRectF room(Theme::kSmallGap, Theme::kSmallGap, width() - Theme::kGap, kPictureHeight);
    if (picture_.isNull()) {
        painter.fillRect(room, Theme::panel());
    } else {
        const QSizeF size = QSizeF(picture_.size()).scaled(room.size(), Qt::KeepAspectRatio);
        painter.drawImage(QRectF(room.center() - QPointF(size.width() / 2, size.height() / 2), size),
                          picture_);
    }
    QFont name = Theme::smallFont();
    name.setBold(isChecked());
    painter.setFont(name);
    painter.setPen(!isEnabled() ? Theme::dimText() : isChecked() ? Theme::accent() : Theme::text());
    const QFontMetrics metrics(name);
    const QRectF below(room.left(), room.bottom() + 2, room.width(), metrics.height());
    const int wide = static_cast<int>(room.width());
    painter.drawText(below, Qt::AlignLeft, metrics.elidedText(item_.title, Qt::ElideRight, wide));
    painter.setFont(Theme::smallFont());
    painter.setPen(Theme::dimText());
    const QString second = !item_.fault.isEmpty()     ? item_.fault
                           : !item_.summary.isEmpty() ? item_.summary
                                                      : item_.badge;
    painter.drawText(below.translated(0, below.height()), Qt::AlignLeft,
                     QFontMetrics(Theme::smallFont()).elidedText(second, Qt::ElideRight, wide));
    if (hasFocus()) Theme::drawFocus(painter, rect());
}

void ShelfCell::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    Q_EMIT reached();
}

ShelfGrid::ShelfGrid(QWidget* parent) : QWidget(parent)
{}

void ShelfGrid::setSections(const std::vector<ShelfSection>& sections)
{
    for (const Section& section : sections_) delete section.title;
    qDeleteAll(cells_);
    sections_.clear();
    cells_.clear();
    for (const ShelfSection& from : sections) {
        Section section{new QLabel(from.title, this), {}};
        section.title->setFont(Theme::titleFont());
        section.title->setForegroundRole(QPalette::PlaceholderText);
        for (const ShelfItem& item : from.items) {
            auto* cell = new ShelfCell(item, this);
            connect(cell, &ShelfCell::reached, this, [this, cell] { Q_EMIT reached(cell); });
            connect(cell, &QAbstractButton::clicked, this, [this, cell] { Q_EMIT taken(cell); });
            section.cells.push_back(cell);
            cells_.push_back(cell);
        }
        sections_.push_back(std::move(section));
    }
    filter({});
}

void ShelfGrid::filter(const QString& text)
{
    const QString wanted = text.trimmed();
    for (const Section& section : sections_) {
        const bool all = section.title->text().contains(wanted, Qt::CaseInsensitive);
        bool any = false;
        for (ShelfCell* cell : section.cells) {
            const bool stays = all || cell->item().title.contains(wanted, Qt::CaseInsensitive);
            cell->setVisible(stays);
            any = any || stays;
        }
        section.title->setVisible(any && !section.title->text().isEmpty());
    }
    arrange();
}

std::vector<ShelfCell*> ShelfGrid::visibleCells() const
{
    std::vector<ShelfCell*> out;
    std::ranges::copy_if(cells_, std::back_inserter(out),
                         [](const ShelfCell* cell) { return !cell->isHidden(); });
    return out;
}

ShelfCell* ShelfGrid::current() const
{
    const auto visible = visibleCells();
    for (const auto& holds : {+[](const ShelfCell* cell) { return cell->hasFocus(); },
                              +[](const ShelfCell* cell) { return cell->item().isIn; }})
        if (const auto found = std::ranges::find_if(visible, holds); found != visible.end()) return *found;
    return visible.empty() ? nullptr : visible.front();
}

void ShelfGrid::arrange()
{
    QSize size = ShelfCell::cellSize();
    const int room = width() - Theme::kGap;
    const int columns = std::max(1, room / (size.width() + Theme::kSmallGap));
    size.setWidth(room / columns - Theme::kSmallGap);
    int y = Theme::kGap;
    for (const Section& section : sections_) {
        if (!section.title->isHidden()) {
            const int height = section.title->sizeHint().height();
            section.title->setGeometry(Theme::kInset, y, width() - Theme::kInset, height);
            y += height + Theme::kSmallGap;
        }
        int at = 0;
        for (ShelfCell* cell : section.cells) {
            if (cell->isHidden()) continue;
            const int column = at % columns;
            cell->setGeometry(QRect(QPoint(Theme::kGap + column * (size.width() + Theme::kSmallGap),
                                           y + at / columns * (size.height() + Theme::kSmallGap)),
                                    size));
            ++at;
        }
        if (at > 0) y += (at + columns - 1) / columns * (size.height() + Theme::kSmallGap) + Theme::kGap;
    }
    setMinimumHeight(y);
}

void ShelfGrid::resizeEvent(QResizeEvent*)
{
    arrange();
}

ShelfCell* ShelfGrid::neighbour(const ShelfCell& from, int key) const
{
    const auto visible = visibleCells();
    const auto at = std::ranges::find(visible, &from) - visible.begin();
    const auto last = static_cast<std::ptrdiff_t>(visible.size()) - 1;
    if (key == Qt::Key_Home) return visible.front();
    if (key == Qt::Key_End) return visible.back();
    if (key == Qt::Key_Left || key == Qt::Key_Right)
        return visible[static_cast<std::size_t>(
            std::clamp<std::ptrdiff_t>(at + (key == Qt::Key_Left ? -1 : 1), 0, last))];
    // The next row is the nearest one on that side, and in it the nearest cell.
    const bool down = key == Qt::Key_Down;
    ShelfCell* best = nullptr;
    const auto distance = [&](const ShelfCell& cell) {
        constexpr int kRow = 10'000; // a row outweighs any place in it
        return std::abs(cell.y() - from.y()) * kRow + std::abs(cell.x() - from.x());
    };
    for (ShelfCell* cell : visible)
        if ((down ? cell->y() > from.y() : cell->y() < from.y()) &&
            (!best || distance(*cell) < distance(*best)))
            best = cell;
    return best;
}

void ShelfGrid::keyPressEvent(QKeyEvent* event)
{
    ShelfCell* from = current();
    if (!from || !isArrow(event->key())) return QWidget::keyPressEvent(event);
    if (!from->hasFocus()) return from->setFocus();
    if (ShelfCell* to = neighbour(*from, event->key())) to->setFocus();
}

} // namespace tamlo::ui
