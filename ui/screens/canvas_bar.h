// CanvasBar: the line under the print: how close it is looked at, how good the picture is by now and how far
// the next one, the original, the other side.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

class QLabel;
class QMenu;

namespace tamlo::ui {

class KitArc;
class KitButton;

class CanvasBar : public QWidget {
public:
    explicit CanvasBar(Desk desk, QWidget* parent = nullptr);

    void refresh();

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void fillZooms();
    void watchArc();

    Desk desk_;
    KitButton* zoom_;
    QMenu* zooms_;
    QLabel* badge_;
    KitArc* arc_;
    KitButton* original_;
    QLabel* message_;
    platform::Timer ticks_;
};

} // namespace tamlo::ui
