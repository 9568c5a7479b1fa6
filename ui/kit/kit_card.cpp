#include "ui/kit/kit_card.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/theme.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>

namespace tamlo::ui {

namespace {

/// Three dots.
class MoreButton : public KitButton {
public:
    using KitButton::KitButton;
    QSize sizeHint() const override { return {Theme::controlHeight(), Theme::controlHeight()}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(underMouse() || hasFocus() ? Theme::text() : Theme::dimText());
        constexpr double kOff = 5, kDot = 1.5;
        for (const double off : {-kOff, 0.0, kOff})
            painter.drawEllipse(QRectF(rect()).center() + QPointF(off, 0), kDot, kDot);
        if (hasFocus()) Theme::drawFocus(painter, rect());
    }
};

} // namespace

KitCardHead::KitCardHead(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize KitCardHead::sizeHint() const
{
    constexpr int kLeast = 120, kPad = 6;
    return {kLeast, Theme::controlHeight() + kPad};
}

void KitCardHead::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double kArrow = 4, kDot = 3;
    const double middle = height() / 2.0;
    QPointF at(Theme::kInset + kArrow, middle);
    painter.setPen(QPen(underMouse() ? Theme::number() : Theme::dimText(), 1.5));
    if (isOpen)
        painter.drawPolyline(QPolygonF{at + QPointF(-kArrow, -kArrow / 2), at + QPointF(0, kArrow / 2),
                                       at + QPointF(kArrow, -kArrow / 2)});
    else
        painter.drawPolyline(QPolygonF{at + QPointF(-kArrow / 2, -kArrow), at + QPointF(kArrow / 2, 0),
                                       at + QPointF(-kArrow / 2, kArrow)});
    QFont title = Theme::titleFont();
    const QFontMetrics metrics(title);
    const double left = at.x() + kArrow + Theme::kGap;
    painter.setFont(title);
    painter.setPen(Theme::text());
    painter.drawText(QRectF(left, 0, width() - left, height()), Qt::AlignVCenter, text());
    double end = left + metrics.horizontalAdvance(text()) + Theme::kGap;
    if (isChanged) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::accent());
        painter.drawEllipse(QPointF(end + kDot, middle), kDot, kDot);
        end += 2 * kDot + Theme::kGap;
    }
    if (!isOpen && !caption.isEmpty()) {
        painter.setFont(Theme::smallFont());
        painter.setPen(Theme::dimText());
        const QRectF room(end + Theme::kGap, 0, width() - end - 2 * Theme::kGap, height());
        painter.drawText(room, Qt::AlignVCenter | Qt::AlignRight,
                         QFontMetrics(Theme::smallFont())
                             .elidedText(caption, Qt::ElideRight, static_cast<int>(room.width())));
    }
    if (hasFocus()) Theme::drawFocus(painter, QRectF(rect()).adjusted(2, 2, -2, -2));
}

KitCard::KitCard(QWidget* parent)
    : QWidget(parent),
      head_(new KitCardHead(this)),
      more_(new MoreButton(this)),
      menu_(new QMenu(this)),
      content_(new QWidget(this)),
      body_(new QVBoxLayout(content_))
{
    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, Theme::kSmallGap, 0);
    top->setSpacing(0);
    top->addWidget(head_, 1);
    top->addWidget(more_);
    body_->setContentsMargins(Theme::kInset, Theme::kSmallGap, Theme::kInset, Theme::kInset);
    body_->setSpacing(Theme::kGap);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 1);
    all->setSpacing(0);
    all->addLayout(top);
    all->addWidget(content_);
    content_->setVisible(false);
    connect(head_, &QAbstractButton::clicked, this, [this] { setOpen(!isOpen()); });
    connect(more_, &QAbstractButton::clicked, this,
            [this] { menu_->popup(more_->mapToGlobal(QPoint(0, more_->height()))); });
}

void KitCard::setTitle(const QString& title)
{
    if (title == head_->text()) return;
    head_->setText(title);
    setAccessibleName(title);
    head_->update();
}

void KitCard::setCaption(const QString& caption)
{
    if (caption == head_->caption) return;
    head_->caption = caption;
    head_->setToolTip(caption);
    head_->setAccessibleDescription(caption);
    head_->update();
}

void KitCard::setChanged(bool isChanged)
{
    head_->isChanged = isChanged;
    head_->update();
}

void KitCard::setOpen(bool isOpen)
{
    if (isOpen == head_->isOpen) return;
    head_->isOpen = isOpen;
    content_->setVisible(isOpen);
    head_->update();
    QAccessible::State expanded;
    expanded.expanded = true;
    QAccessibleStateChangeEvent told(head_, expanded);
    QAccessible::updateAccessibility(&told);
    Q_EMIT folded(isOpen);
}

void KitCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel());
    painter.fillRect(QRect(0, height() - 1, width(), 1), Theme::line());
}

void KitCard::contextMenuEvent(QContextMenuEvent* event)
{
    if (!menu_->isEmpty()) menu_->popup(event->globalPos());
}

KitNote::KitNote(QWidget* parent) : QWidget(parent), label_(new QLabel(this)), button_(new KitButton(this))
{
    label_->setWordWrap(true);
    label_->setTextFormat(Qt::PlainText);
    label_->setForegroundRole(QPalette::PlaceholderText);
    label_->setFont(Theme::smallFont());
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(Theme::kSmallGap);
    all->addWidget(label_);
    all->addWidget(button_, 0, Qt::AlignLeft);
    button_->setVisible(false);
    connect(button_, &QAbstractButton::clicked, this, &KitNote::pressed);
}

void KitNote::setText(const QString& text)
{
    if (text == label_->text()) return;
    label_->setText(text);
    label_->setVisible(!text.isEmpty());
    setAccessibleName(text);
    QAccessibleEvent told(label_, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&told);
}

QString KitNote::text() const
{
    return label_->text();
}

void KitNote::setButton(const QString& title)
{
    button_->setText(title);
    button_->setVisible(!title.isEmpty());
}

} // namespace tamlo::ui
