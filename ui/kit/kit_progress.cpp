#include "ui/kit/kit_progress.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/theme.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tamlo::ui {

KitArc::KitArc(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void KitArc::setFraction(std::optional<double> fraction)
{
    if (fraction) fraction = std::clamp(*fraction, 0.0, 1.0);
    if (fraction == fraction_) return;
    fraction_ = fraction;
    update();
    QAccessibleValueChangeEvent told(this, fraction_.value_or(0));
    QAccessible::updateAccessibility(&told);
}

QSize KitArc::sizeHint() const
{
    constexpr int kSide = 16;
    return {kSide, kSide};
}

void KitArc::paintEvent(QPaintEvent*)
{
    if (!fraction_) return;
    constexpr int kTop = 90 * 16, kTurn = 360 * 16; // sixteenths of a degree
    constexpr double kWide = 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(width(), height()) - kWide;
    const QRectF circle((width() - side) / 2, (height() - side) / 2, side, side);
    painter.setPen(QPen(Theme::line(), kWide));
    painter.drawEllipse(circle);
    painter.setPen(QPen(Theme::text(), kWide, Qt::SolidLine, Qt::FlatCap));
    painter.drawArc(circle, kTop, -static_cast<int>(std::lround(*fraction_ * kTurn)));
}

KitBar::KitBar(QWidget* parent)
    : QWidget(parent), label_(new QLabel(this)), row_(new QHBoxLayout(this)), dismiss_(new KitButton(this))
{
    label_->setTextFormat(Qt::PlainText);
    label_->setWordWrap(true);
    row_->setContentsMargins(Theme::kInset, Theme::kSmallGap, Theme::kInset, Theme::kSmallGap);
    row_->addWidget(label_, 1);
    row_->addWidget(dismiss_);
    dismiss_->setText(QStringLiteral("\u2715"));
    connect(dismiss_, &QAbstractButton::clicked, this, &KitBar::dismissed);
}

void KitBar::setText(const QString& text, bool isFailure)
{
    label_->setText(isFailure ? QStringLiteral("! ") + text : text);
    QPalette ink = label_->palette();
    ink.setColor(QPalette::WindowText, isFailure ? Theme::warning() : Theme::text());
    label_->setPalette(ink);
    setAccessibleName(label_->text());
    QAccessibleEvent told(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&told);
}

QString KitBar::text() const
{
    return label_->text();
}

KitButton* KitBar::addButton(const QString& title)
{
    auto* button = new KitButton(this);
    button->setText(title);
    row_->insertWidget(row_->count() - 1, button);
    return button;
}

void KitBar::setDismissText(const QString& title)
{
    dismiss_->setAccessibleName(title);
    dismiss_->setToolTip(title);
}

void KitBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::raised());
    painter.fillRect(QRect(0, height() - 1, width(), 1), Theme::line());
}

} // namespace tamlo::ui
