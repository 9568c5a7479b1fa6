// Shelf: a sheet over the left half of the print with all films, lenses, filters, papers or presets, each
// shown by the user's own frame. Arrows walk and show, Enter takes, Escape leaves the frame as it was, and
// letters search.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "app/shell/app_model.h"
#include "ui/screens/shelf_items.h"
#include "ui/screens/shelf_proofs.h"
#endif

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QScrollArea;

namespace tamlo::ui {

class KitButton;
class KitNote;
class KitSwitch;
class ShelfCell;
class ShelfGrid;
class ShelfSave;

class Shelf : public QWidget {
    Q_OBJECT

public:
    explicit Shelf(AppModel& model);

    void setScreen(FrameScreen* screen);
    /// It stands over the left half of this widget, and follows its size.
    void setHost(QWidget* host);
    void open(ShelfKind kind);
    /// Nothing is taken; what was shown on the canvas goes.
    void leave();
    bool isOpen() const { return !isHidden(); }
    ShelfKind kind() const { return kind_; }
    ShelfGrid& grid() const { return *grid_; }
    QLineEdit& search() const { return *search_; }

    /// Asks for a name, and saves the rack's settings of these blocks as a preset.
    void askToSave(const PresetSchema::Blocks& blocks);
    void retranslate();

Q_SIGNALS:
    /// The frame as it would be: for the canvas, until peekEnded.
    void peeked(const std::shared_ptr<const ReadyImage>& picture);
    void peekEnded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void build();
    void fill();
    void askForPictures();
    void place();
    void reach(ShelfCell* cell);
    void peek();
    void take(ShelfCell* cell);
    void showDetail(const ShelfCell& cell);

    AppModel& model_;
    FrameScreen* screen_ = nullptr;
    ShelfKind kind_ = ShelfKind::film;
    QLabel* title_;
    QLineEdit* search_;
    KitSwitch* keepsPaper_;
    KitButton *save_, *close_;
    QScrollArea* scroll_;
    ShelfGrid* grid_;
    QLabel *detailName_, *detailBadge_;
    KitNote* detail_;
    ShelfSave* saver_;
    ShelfProofs proofs_;
    QTimer rest_, still_; ///< of the walk, of the scroll bar
    ShelfCell* reached_ = nullptr;
    bool isPeeking_ = false;
    QPointer<QWidget> opener_; ///< had the focus
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tamlo::ui
