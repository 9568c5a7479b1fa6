// ShelfCell: one film, lens, filter, paper or preset on a shelf, as a picture with its name. ShelfGrid: the
// cells in their sections, walked by the arrows.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "ui/screens/shelf_items.h"
#endif

#include <QAbstractButton>
#include <QImage>

#include <vector>

class QLabel;

namespace tamlo::ui {

class ShelfCell : public QAbstractButton {
    Q_OBJECT

public:
    ShelfCell(const ShelfItem& item, QWidget* parent);

    const ShelfItem& item() const { return item_; }
    /// isRough: a better one is to come.
    void setPicture(const QImage& picture, bool isRough);
    bool hasPicture() const { return !picture_.isNull(); }
    bool isDone() const { return hasPicture() && !isRough_; }
    static QSize cellSize();

    QSize sizeHint() const override { return cellSize(); }

Q_SIGNALS:
    void reached();

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    ShelfItem item_;
    QImage picture_;
    bool isRough_ = false;
};

class ShelfGrid : public QWidget {
    Q_OBJECT

public:
    explicit ShelfGrid(QWidget* parent = nullptr);

    void setSections(const std::vector<ShelfSection>& sections);
    /// Only cells whose name or section holds the text stay.
    void filter(const QString& text);
    /// In the order of the shelf; hidden ones too.
    const std::vector<ShelfCell*>& cells() const { return cells_; }
    std::vector<ShelfCell*> visibleCells() const;
    /// The cell that holds the focus, or the one that is in, or the first; null where none can be seen.
    ShelfCell* current() const;

Q_SIGNALS:
    void reached(ShelfCell* cell);
    void taken(ShelfCell* cell);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Section {
        QLabel* title;
        std::vector<ShelfCell*> cells;
    };
    void arrange();
    ShelfCell* neighbour(const ShelfCell& from, int key) const;

    std::vector<Section> sections_;
    std::vector<ShelfCell*> cells_;
};

} // namespace tamlo::ui
