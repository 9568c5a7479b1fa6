// RackCardView: one block of the rack: what the card says, the buttons of its shelves, its knobs, its dice.
// Another frame or film changes what stands on it, and leaves the controls that stay where they are.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "ui/kit/kit_card.h"
#include "ui/screens/rack_control.h"
#include "ui/screens/shelf_items.h"
#endif

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tamlo::ui {

class KitShelf;
class KitSelector;
class KitRow;

class RackCardView : public KitCard {
    Q_OBJECT

public:
    RackCardView(PresetBlock block, RackHands& hands, QWidget* parent);

    PresetBlock block() const { return block_; }
    /// changed: keys of what differs from the recipe.
    void show(const RackCard& card, const RackTexts::View& view, const std::set<std::string>& changed);
    /// The control of an option; null where none stands.
    const RackControl* control(std::string_view option) const;
    /// Those that stand, in order.
    std::vector<const RackControl*> controls() const;

Q_SIGNALS:
    void shelfAsked(ShelfKind kind);

private:
    void showHead(const RackCard& card, const RackTexts::View& view, const std::set<std::string>& changed);
    void showNotes(const RackCard& card, const RackTexts::View& view);
    void showShelf(const RackCard& card, const RackTexts::View& view);
    void showDiscs(const RackTexts::View& view);
    void showKnobs(const RackCard& card, const RackTexts::View& view);
    void showDice(const RackCard& card, const RackTexts::View& view);
    void addDie(Seeds::SeedStream stream);

    const PresetBlock block_;
    RackHands& hands_;
    KitNote *above_, *conversion_, *below_;
    KitShelf* shelf_ = nullptr;
    KitButton* filters_ = nullptr;
    KitSelector* discs_ = nullptr;
    KitRow* discRow_ = nullptr;
    std::vector<SieveDisc> sieves_;
    QVBoxLayout* knobs_;
    std::map<std::string, RackControl*, std::less<>> controls_;
    struct Die {
        QWidget* row;
        QLabel* label;
        class KitDice* button;
    };
    std::map<Seeds::SeedStream, Die> dice_;
};

} // namespace tamlo::ui
