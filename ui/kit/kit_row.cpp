#include "ui/kit/kit_row.h"

#include "ui/kit/theme.h"

#include <QEvent>
#include <QLabel>

namespace tamlo::ui {

KitRow::KitRow(QWidget* control, QWidget* parent)
    : QWidget(parent), label_(new QLabel(this)), control_(control)
{
    control_->setParent(this);
    label_->setBuddy(control_);
    label_->setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void KitRow::setLabel(const QString& label, bool isChanged)
{
    if (label == label_->text() && isChanged == label_->font().bold()) return;
    QFont shown = font();
    shown.setBold(isChanged);
    label_->setFont(shown);
    label_->setText(label);
    control_->setAccessibleName(label);
    updateGeometry();
    arrange();
}

bool KitRow::isOneLine(int width) const
{
    QFont bold = font();
    bold.setBold(true); // the row keeps its shape when the value changes
    return QFontMetrics(bold).horizontalAdvance(label_->text()) + Theme::kGap +
               control_->sizeHint().width() <=
           width;
}

int KitRow::heightForWidth(int width) const
{
    const int control = Theme::controlHeight();
    return isOneLine(width) ? control : control + fontMetrics().height() + Theme::kSmallGap;
}

QSize KitRow::sizeHint() const
{
    constexpr int kUsualWidth = 240;
    return {kUsualWidth, heightForWidth(kUsualWidth)};
}

QSize KitRow::minimumSizeHint() const
{
    return {control_->minimumSizeHint().width(), Theme::controlHeight()};
}

void KitRow::arrange()
{
    const int height = Theme::controlHeight();
    if (isOneLine(width())) {
        const int wide = control_->sizeHint().width();
        label_->setGeometry(0, 0, width() - wide - Theme::kGap, height);
        control_->setGeometry(width() - wide, 0, wide, height);
        return;
    }
    const int line = fontMetrics().height();
    label_->setGeometry(0, 0, width(), line);
    control_->setGeometry(0, line + Theme::kSmallGap, width(), height);
}

void KitRow::resizeEvent(QResizeEvent*)
{
    arrange();
}

bool KitRow::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::FontChange) {
        updateGeometry();
        arrange();
    }
    return QWidget::event(event);
}

} // namespace tamlo::ui
