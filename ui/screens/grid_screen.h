// GridScreen: the roll: what is shown of it, in which order, how large, and the tiles.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QToolButton;

namespace tamlo::ui {

class GridView;

class GridScreen : public QWidget {
public:
    explicit GridScreen(Desk desk, QWidget* parent = nullptr);

    GridView& view() { return *view_; }
    void zoomTiles(int direction);
    /// What the bar shows, after what is no concern of the session has changed.
    void refresh();

protected:
    void changeEvent(QEvent* event) override;

private:
    void build();
    void retranslate();
    void setTile(int side);

    Desk desk_;
    GridView* view_;
    QToolButton* filters_[3];
    QLabel* orderTitle_;
    QComboBox* order_;
    QToolButton* reverse_;
    QCheckBox* originals_;
    QSlider* size_;
    Subscription subscription_;
};

} // namespace tamlo::ui
