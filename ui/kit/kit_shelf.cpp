#include "ui/kit/kit_shelf.h"

#include "ui/kit/theme.h"

#include <QPainter>

namespace tamlo::ui {

KitShelf::KitShelf(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void KitShelf::setTexts(const QString& kind, const QString& name, const QString& badge)
{
    if (kind == kind_ && name == name_ && badge == badge_) return;
    kind_ = kind;
    name_ = name;
    badge_ = badge;
    setAccessibleName(kind + QStringLiteral(": ") + name);
    setAccessibleDescription(badge);
    setToolTip(name);
    update();
}

void KitShelf::setPicture(const QImage& picture)
{
    picture_ = picture;
    update();
}

QSize KitShelf::sizeHint() const
{
    constexpr int kUsualWidth = 240;
    return {kUsualWidth, 2 * fontMetrics().height() + 2 * Theme::kGap};
}

void KitShelf::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(underMouse() ? Theme::edge() : Theme::line(), 1));
    painter.setBrush(isDown() ? Theme::well() : Theme::raised());
    painter.drawRoundedRect(frame, Theme::kRadius, Theme::kRadius);
    QRectF room = frame.adjusted(Theme::kGap, Theme::kSmallGap, -2 * Theme::kInset, -Theme::kSmallGap);
    if (!picture_.isNull()) {
        const QSizeF size =
            QSizeF(picture_.size()).scaled(room.height() * 1.5, room.height(), Qt::KeepAspectRatio);
        painter.drawImage(
            QRectF(room.left(), room.center().y() - size.height() / 2, size.width(), size.height()),
            picture_);
        room.setLeft(room.left() + room.height() * 1.5 + Theme::kGap);
    }
    const int wide = static_cast<int>(room.width());
    const QFont small = Theme::smallFont(), title = Theme::titleFont();
    painter.setFont(small);
    painter.setPen(Theme::dimText());
    const QFontMetrics smallMetrics(small);
    painter.drawText(room, Qt::AlignTop | Qt::AlignRight, badge_);
    painter.drawText(room, Qt::AlignTop,
                     smallMetrics.elidedText(kind_, Qt::ElideRight,
                                             wide - smallMetrics.horizontalAdvance(badge_) - Theme::kGap));
    painter.setFont(title);
    painter.setPen(Theme::text());
    painter.drawText(room, Qt::AlignBottom, QFontMetrics(title).elidedText(name_, Qt::ElideRight, wide));
    constexpr double kArrow = 4;
    const QPointF at(frame.right() - Theme::kInset, frame.center().y() - kArrow / 2);
    painter.setPen(QPen(Theme::text(), 1.2));
    painter.drawPolyline(
        QPolygonF{at + QPointF(-kArrow, 0), at + QPointF(0, kArrow), at + QPointF(kArrow, 0)});
    if (hasFocus()) Theme::drawFocus(painter, rect());
}

} // namespace tamlo::ui
