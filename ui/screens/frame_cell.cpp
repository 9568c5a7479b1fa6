#include "ui/screens/frame_cell.h"

#include "app/project/process_rules.h"
#include "ui/kit/words.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStringList>

namespace tamlo::ui {
namespace {

constexpr double kRejectedOpacity = 0.42;
constexpr QColor kPick(214, 172, 74), kReject(214, 84, 74), kWarning(226, 160, 60); // taste
constexpr int kMarkPx = 14;

/// A ring for a pick, a cross for a reject: told apart without colour.
void paintMark(QPainter& painter, Mark mark, QPointF centre, double size)
{
    if (mark == Mark::none) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(mark == Mark::selected ? kPick : kReject, 2));
    const double r = size / 2 - 1.5;
    if (mark == Mark::selected) return painter.drawEllipse(centre, r, r);
    painter.drawLine(centre + QPointF(-r, -r), centre + QPointF(r, r));
    painter.drawLine(centre + QPointF(-r, r), centre + QPointF(r, -r));
}

QString badgeOf(FileState state)
{
    if (needsAttention(state)) return QStringLiteral("⚠");
    return state == FileState::changed ? QStringLiteral("≠") : QString();
}

void paintBadge(QPainter& painter, const QString& badge, const QRect& picture)
{
    if (badge.isEmpty()) return;
    const QRect box(picture.right() - 25, picture.top() + 4, 22, 20);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 170));
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(kWarning);
    painter.drawText(box, Qt::AlignCenter, badge);
}

QRect paintPicture(QPainter& painter, TilePixmaps& pixmaps, const FrameCell& cell, const QRect& tile,
                   const QPalette& palette, bool& isRough)
{
    const double scale = painter.device()->devicePixelRatioF();
    QRect picture = tile;
    const int side = static_cast<int>(tile.width() * scale);
    QPixmap pixmap = cell.tile ? pixmaps.fitted(cell.frame->id, cell.tile, side, isRough)
                               : pixmaps.known(cell.frame->id, side);
    if (!pixmap.isNull()) {
        pixmap.setDevicePixelRatio(scale);
        picture = QRect(QPoint(), (QSizeF(pixmap.size()) / scale).toSize());
        picture.moveCenter(tile.center());
        painter.drawPixmap(picture.topLeft(), pixmap);
        return picture;
    }
    const int inset = tile.height() / 6;
    picture = tile.adjusted(0, inset, 0, -inset);
    painter.fillRect(picture, palette.color(QPalette::Button));
    painter.setPen(palette.color(QPalette::PlaceholderText));
    const bool cannotCome = cell.state == FileState::unreadable || canRelink(cell.state);
    painter.drawText(picture, Qt::AlignCenter, cannotCome ? QStringLiteral("—") : QStringLiteral("…"));
    return picture;
}

void paintCaption(QPainter& painter, const FrameCell& cell, const QRect& caption, const QPalette& palette)
{
    if (caption.isEmpty()) return;
    const QFontMetrics metrics(painter.font());
    QRect rest = caption.adjusted(2, 0, -2, 0);
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter, cell.label);
    rest.setLeft(rest.left() + metrics.horizontalAdvance(cell.label) + 8);
    if (cell.frame->mark != Mark::none) {
        paintMark(painter, cell.frame->mark, QPointF(rest.left() + kMarkPx / 2.0, rest.center().y() + 0.5),
                  kMarkPx);
        rest.setLeft(rest.left() + kMarkPx + 6);
    }
    if (cell.frame->exportedAt) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette.color(QPalette::PlaceholderText));
        painter.drawEllipse(QPointF(rest.right() - 4, rest.center().y() + 0.5), 3, 3);
        rest.setRight(rest.right() - 14);
    }
    painter.setPen(palette.color(QPalette::WindowText));
    painter.drawText(rest, Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(qt(cell.frame->fileName()), Qt::ElideMiddle, rest.width()));
}

} // namespace

bool paintFrameCell(QPainter& painter, TilePixmaps& pixmaps, const FrameCell& cell, const QRect& tile,
                    const QRect& caption, const QPalette& palette)
{
    bool isRough = false;
    painter.save();
    const QColor accent = palette.color(QPalette::Highlight);
    if (cell.isSelected) {
        QColor ground = accent;
        ground.setAlpha(70);
        painter.fillRect(tile.united(caption).adjusted(-4, -4, 4, 2), ground);
    }
    painter.setOpacity(cell.frame->mark == Mark::rejected ? kRejectedOpacity : 1);
    const QRect picture = paintPicture(painter, pixmaps, cell, tile, palette, isRough);
    painter.setOpacity(1);
    paintBadge(painter, badgeOf(cell.state), picture);
    if (caption.isEmpty())
        paintMark(painter, cell.frame->mark, QPointF(picture.left() + 11, picture.top() + 11), kMarkPx);
    if (cell.isStale && cell.tile) {
        painter.setPen(Qt::white);
        painter.drawText(picture.adjusted(0, 0, -6, -4), Qt::AlignRight | Qt::AlignBottom,
                         QStringLiteral("…"));
    }
    paintCaption(painter, cell, caption, palette);
    if (cell.isCursor) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(accent, cell.hasFocus ? 3 : 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.drawRect(tile.united(caption).adjusted(-4, -4, 3, 1));
    }
    painter.restore();
    return isRough;
}

QString describe(const Frame& frame, const QString& label, FileState state, const ProfileStore& store)
{
    QStringList parts{label + QLatin1Char(' ') + qt(frame.fileName())};
    if (frame.mark != Mark::none)
        parts << word(frame.mark == Mark::selected ? "mark.selected.title" : "mark.rejected.title");
    if (state == FileState::missing) parts << word("badge.missing.help", {{"path", frame.url}});
    if (state == FileState::unreadable) parts << word("badge.unreadable.help", {{"path", frame.url}});
    if (state == FileState::changed) parts << word("badge.changed.help");
    if (frame.shot && !frame.shot->isEmpty()) parts << qt(frame.shot->line());
    if (frame.process) parts << qt(summary(*frame.process, store));
    if (frame.exportedName) parts << word("frame.exportedAs", {{"file", *frame.exportedName}});
    return parts.join(QLatin1Char('\n'));
}

} // namespace tamlo::ui
