#include "ui/kit/kit_style.h"

#include "ui/kit/theme.h"

#include <QPainter>
#include <QStyleOption>

namespace tamlo::ui {

KitStyle::KitStyle() : QProxyStyle(QStringLiteral("Fusion"))
{}

int KitStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    if (metric == PM_ScrollBarExtent) return Theme::kScrollWidth;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int KitStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                        QStyleHintReturn* returned) const
{
    if (hint == SH_ScrollBar_LeftClickAbsolutePosition) return 1; // a click goes there
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

QRect KitStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                               const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) return QProxyStyle::subControlRect(control, option, part, widget);
    const bool lies = bar->orientation == Qt::Horizontal;
    const int length = lies ? bar->rect.width() : bar->rect.height();
    constexpr int kLeast = 28;
    const int range = bar->maximum - bar->minimum;
    const qint64 pages = static_cast<qint64>(range) + bar->pageStep;
    const int thumb = range <= 0
                          ? length
                          : std::min(length, std::max(kLeast, static_cast<int>(static_cast<qint64>(length) *
                                                                               bar->pageStep / pages)));
    const int at = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                           bar->upsideDown);
    const auto along = [&](int from, int size) {
        return lies ? QRect(bar->rect.left() + from, bar->rect.top(), size, bar->rect.height())
                    : QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), size);
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return along(at, thumb);
    case SC_ScrollBarSubPage:
        return along(0, at);
    case SC_ScrollBarAddPage:
        return along(at + thumb, length - at - thumb);
    case SC_ScrollBarGroove:
        return bar->rect;
    default:
        return {}; // no arrows
    }
}

void KitStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                  QPainter* painter, const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->fillRect(bar->rect, bar->palette.color(QPalette::Window));
    if (bar->maximum <= bar->minimum) return;
    constexpr int kGap = 2;
    const QRectF thumb = QRectF(subControlRect(control, option, SC_ScrollBarSlider, widget))
                             .adjusted(kGap, kGap, -kGap, -kGap);
    const bool isLit = bar->state & (State_MouseOver | State_Sunken);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(bar->palette.color(isLit ? QPalette::PlaceholderText : QPalette::Mid));
    const double round = std::min(thumb.width(), thumb.height()) / 2;
    painter->drawRoundedRect(thumb, round, round);
    painter->restore();
}

} // namespace tamlo::ui
