// RackTexts: what the choices of the rack are called, in which units its numbers are, and what stands where
// an option is absent.
#pragma once

#include "app/shell/rack_cards.h"
#include "ui/kit/kit_choice.h"

#include <optional>
#include <string>
#include <vector>

namespace tamlo {
class AppModel;
}

namespace tamlo::ui::RackTexts {

/// What the rack shows, worked out once for all its cards.
struct View {
    const AppModel& model;
    const ProcessSettings& settings;
    const RackVisibility& rack;
};

/// What a choice of an option is called.
QString choiceTitle(std::string_view option, const std::string& choice);
/// The choices of a knob, by their names.
std::vector<KitOption> choices(const RackKnob& one, const View& view);
/// What is in force: the knob's value, or what stands where it is absent.
std::string inForce(const RackKnob& one, const View& view);
bool isOn(const RackKnob& one, const View& view);

/// What a knob is called; the size of a frame beside its format has a name of its own.
QString title(const Knob& knob);
/// Behind a number, with its blank; empty for none.
std::string numberUnit(std::string_view option);
/// Spoken with the range of a number.
QString spokenUnit(std::string_view option);
/// Every so much of a number's scale has a mark; 0 for none.
double engravings(std::string_view option);

/// How well grounded the numbers of a profile are; empty where it does not say.
QString fidelity(const std::optional<std::string>& badge);

/// What the block is, in a line, while its card is folded.
QString caption(const RackCard& card, const View& view);

} // namespace tamlo::ui::RackTexts
