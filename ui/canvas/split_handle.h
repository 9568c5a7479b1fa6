// SplitHandle: the line between two pictures, a slider that is as tall as they are: dragged, or moved by the
// arrow keys.
#pragma once

#include <QSlider>

namespace tamlo::ui {

class SplitHandle : public QSlider {
    Q_OBJECT

public:
    static constexpr int kWidthPt = 24; ///< of what can be grasped
    static constexpr int kSteps = 1000; ///< of the parent's width

    explicit SplitHandle(QWidget* parent);
    /// Stands where its value says.
    void place();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    double offset_ = 0;
};

} // namespace tamlo::ui
