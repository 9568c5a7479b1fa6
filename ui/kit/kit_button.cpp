#include "ui/kit/kit_button.h"

#include "ui/kit/theme.h"

#include <QPainter>

namespace tamlo::ui {

namespace {

constexpr double kSwitchWidth = 30, kSwitchHeight = 16;

QColor groundOf(const QAbstractButton& button, bool isPrimary)
{
    constexpr int kLighter = 118;
    QColor ground = isPrimary ? Theme::accent() : Theme::raised();
    if (!button.isEnabled()) return Theme::panel();
    if (button.isDown()) return Theme::well();
    return button.underMouse() ? ground.lighter(kLighter) : ground;
}

} // namespace

KitButton::KitButton(QWidget* parent) : QPushButton(parent)
{
    setAttribute(Qt::WA_Hover);
    setAutoDefault(false);
}

void KitButton::setPrimary(bool isPrimary)
{
    isPrimary_ = isPrimary;
    update();
}

QSize KitButton::sizeHint() const
{
    const int mark = menu() ? 2 * Theme::kInset : 0;
    const QString shown = text().isEmpty() ? QString() : text();
    return {fontMetrics().size(Qt::TextShowMnemonic, shown).width() + 2 * Theme::kInset + mark,
            Theme::controlHeight()};
}

QSize KitButton::minimumSizeHint() const
{
    return {Theme::controlHeight(), Theme::controlHeight()};
}

QRectF KitButton::paintGround(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(isEnabled() && !isDown() ? Theme::line() : Theme::edge(), 1));
    painter.setBrush(isChecked() ? Theme::accent() : groundOf(*this, isPrimary_ && isEnabled()));
    painter.drawRoundedRect(frame, Theme::kRadius, Theme::kRadius);
    if (hasFocus()) Theme::drawFocus(painter, rect());
    const bool onAccent = isChecked() || (isPrimary_ && isEnabled() && !isDown());
    painter.setPen(!isEnabled() ? palette().color(QPalette::Disabled, QPalette::WindowText)
                   : onAccent   ? Theme::onAccent()
                                : Theme::text());
    return frame.adjusted(Theme::kGap, 0, -Theme::kGap, 0);
}

void KitButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QRectF room = paintGround(painter);
    if (menu()) {
        constexpr double kArrow = 4;
        const QPointF at(room.right() - kArrow, room.center().y() - kArrow / 2);
        painter.drawPolyline(
            QPolygonF{at + QPointF(-kArrow, 0), at + QPointF(0, kArrow), at + QPointF(kArrow, 0)});
        room.setRight(at.x() - 2 * kArrow);
    }
    painter.setFont(font());
    painter.drawText(room, Qt::AlignCenter | Qt::TextShowMnemonic,
                     fontMetrics().elidedText(text(), Qt::ElideRight, static_cast<int>(room.width()) + 1));
}

QSize KitDice::sizeHint() const
{
    return {Theme::controlHeight(), Theme::controlHeight()};
}

void KitDice::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPointF centre = paintGround(painter).center();
    constexpr double kHalf = 6.5, kPip = 1.2, kOff = 3;
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(centre.x() - kHalf, centre.y() - kHalf, 2 * kHalf, 2 * kHalf), 2, 2);
    painter.setBrush(painter.pen().color());
    for (const QPointF& off : {QPointF(-kOff, -kOff), QPointF(kOff, -kOff), QPointF(0, 0),
                               QPointF(-kOff, kOff), QPointF(kOff, kOff)})
        painter.drawEllipse(centre + off, kPip, kPip);
}

KitSwitch::KitSwitch(QWidget* parent) : QCheckBox(parent)
{
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void KitSwitch::setChanged(bool isChanged)
{
    isChanged_ = isChanged;
    update();
}

QSize KitSwitch::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + static_cast<int>(kSwitchWidth) + Theme::kInset,
            Theme::controlHeight()};
}

void KitSwitch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont shown = font();
    shown.setBold(isChanged_);
    painter.setFont(shown);
    painter.setPen(isEnabled() ? Theme::text() : palette().color(QPalette::Disabled, QPalette::WindowText));
    const double room = width() - kSwitchWidth - Theme::kGap;
    painter.drawText(QRectF(0, 0, room, height()), Qt::AlignVCenter,
                     QFontMetrics(shown).elidedText(text(), Qt::ElideRight, static_cast<int>(room)));
    const QRectF body(width() - kSwitchWidth - 1, (height() - kSwitchHeight) / 2, kSwitchWidth,
                      kSwitchHeight);
    painter.setPen(QPen(Theme::edge(), 1));
    painter.setBrush(!isChecked() ? Theme::well() : isChanged_ ? Theme::accent() : Theme::dimText());
    painter.drawRoundedRect(body, kSwitchHeight / 2, kSwitchHeight / 2);
    constexpr double kGap = 3;
    const double dot = kSwitchHeight - 2 * kGap;
    const double left = isChecked() ? body.right() - kGap - dot : body.left() + kGap;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? Theme::onAccent() : Theme::edge());
    painter.drawEllipse(QRectF(left, body.top() + kGap, dot, dot));
    if (hasFocus()) Theme::drawFocus(painter, body.adjusted(-3, -3, 3, 3), kSwitchHeight / 2 + 3);
}

} // namespace tamlo::ui
