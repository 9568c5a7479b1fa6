// KitStyle: the platform-neutral style with flat, narrow scroll bars and neutral frames.
#pragma once

#include <QProxyStyle>

namespace tamlo::ui {

class KitStyle : public QProxyStyle {
public:
    KitStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

} // namespace tamlo::ui
