// Rack: the column of cards beside the print. It shows the process of the frame on the develop screen, or of
// side B of two, and turns every gesture into one step. It hears of changes by itself.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "app/shell/app_model.h"
#include "ui/screens/rack_card.h"
#endif

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QLabel;
class QScrollArea;

namespace tamlo {
class FrameScreen;
}

namespace tamlo::ui {

class Shelf;

class Rack : public QWidget, private RackHands {
    Q_OBJECT

public:
    explicit Rack(AppModel& model, QWidget* parent);
    ~Rack() override;

    /// The shelves show the user's own frame through it, and ask it for peeks; null for none.
    void setScreen(FrameScreen* screen);
    /// Over the left half of it the shelves stand; at first the rack's own parent.
    void setShelfHost(QWidget* host);
    /// Unfolds a card and puts the focus on its head.
    void focusCard(PresetBlock block);
    void openShelf(ShelfKind kind);
    Shelf& shelf() const { return *shelf_; }
    RackCardView& card(PresetBlock block) const;
    /// The card that holds the focus, for commands of a card; null for none.
    const RackCardView* focusedCard() const;

    /// All texts anew, in the language in force.
    void retranslate();
    /// At once what would be shown at the next turn of the loop.
    void refresh();

    QSize sizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void change(const Change& change) override;
    void endGesture() override;
    void takeBack(const Change& change) override;
    void toDefault(const Knob& knob) override;
    void reroll(Seeds::SeedStream stream) override;

    /// At once where the rack can be seen, else when it can.
    void refreshSoon();
    void buildHead();
    void buildCards();
    const RackVisibility* visibility(const ProcessSettings& settings);
    void fillMenu(RackCardView& card);
    void showHead(const ProcessSettings& settings, bool isOriginal, const std::vector<KnobChange>& changes);

    AppModel& model_;
    KitShelf* preset_;
    KitNote *note_, *changed_;
    QScrollArea* scroll_;
    std::vector<RackCardView*> cards_;
    QPointer<Shelf> shelf_; ///< its host is its parent
    bool isDue_ = false;
    std::optional<std::size_t> stepsBefore_; ///< when the gesture began
    /// The profiles of what was shown last, and what they were read for.
    std::optional<RackVisibility> rack_;
    std::vector<std::string> rackOf_;
    Subscription subscription_;
};

} // namespace tamlo::ui
