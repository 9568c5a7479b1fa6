// FrameStrip: the roll as a strip below the print. A click opens a frame; the one on screen stays in view.
#pragma once

#include "ui/screens/frame_rows.h"

#include <QAbstractScrollArea>

namespace tamlo::ui {

class FrameStrip : public QAbstractScrollArea {
public:
    explicit FrameStrip(Desk desk, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void take(const ChangeSet& change);
    void relayout();
    void showCursor();
    QRect cellRect(std::size_t row) const;
    std::optional<std::size_t> rowAt(QPoint at) const;

    Desk desk_;
    FrameRows rows_;
    TilePixmaps pixmaps_;
    platform::Timer repaint_;
    Subscription subscription_;
};

} // namespace tamlo::ui
