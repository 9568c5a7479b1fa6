// GridView: the roll as tiles. It holds no tile itself and paints only what can be seen, so that 5,000 frames
// scroll like fifty. Mouse and keys go to the session's selection and order; the model says what is selected.
#pragma once

#include "ui/screens/frame_rows.h"
#include "ui/screens/grid_layout.h"

#include <QAbstractScrollArea>

namespace tamlo::ui {

class GridView : public QAbstractScrollArea {
public:
    explicit GridView(Desk desk, QWidget* parent = nullptr);

    const FrameRows& rows() const { return rows_; }
    const GridLayout& gridLayout() const { return layout_; }
    /// A row's cell in the viewport.
    QRect cellRect(std::size_t row) const;
    /// The row at a point of the viewport.
    std::optional<std::size_t> rowAt(QPoint at) const { return layout_.cellAt(inRoll(at)); }
    void setTile(int side);
    void showCursor();
    void selectRow(std::size_t row);
    void openRow(std::size_t row);

    /// A menu is asked for at a place of the screen.
    std::function<void(QPoint)> onContextMenu;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    enum class Drag { none, pressed, band, order };

    void take(const ChangeSet& change);
    void relayout();
    QPoint inRoll(QPoint viewport) const { return viewport + QPoint(0, scrollTop()); }
    int scrollTop() const;
    void clickOn(std::size_t row, Qt::KeyboardModifiers keys);
    void beginDrag();
    void dragTo(QPoint at);
    void scrollAtEdge();
    void drop();
    void paintBand(QPainter& painter);
    void paintGap(QPainter& painter);
    bool moveByKey(int key, Qt::KeyboardModifiers keys);
    void shiftOrder(int delta);
    void noteVisible();

    Desk desk_;
    FrameRows rows_;
    GridLayout layout_;
    TilePixmaps pixmaps_;
    int tile_ = 200;

    Drag drag_ = Drag::none;
    QPoint pressAt_, dragAt_; ///< in the roll; in the viewport
    std::optional<std::size_t> pressRow_, gap_;
    bool selectsOnRelease_ = false;
    std::vector<FrameID> bandBase_;
    platform::Timer edge_, visible_, repaint_;
    Subscription subscription_;
};

} // namespace tamlo::ui
