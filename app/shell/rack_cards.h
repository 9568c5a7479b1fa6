// The cards of the rack: one a block of the darkroom, with its caption, its note, and the knobs that stand on
// it for the film, lens and paper in force.
#pragma once

#include "app/shell/knob_changes.h"
#include "app/shell/knob_table.h"
#include "app/shell/rack_visibility.h"

#include <optional>
#include <string>
#include <vector>

namespace tamlo {

/// A knob that stands: a number with its range, or a choice.
struct RackKnob {
    const Knob* knob = nullptr;
    std::optional<KnobRow> row;       ///< of a number
    std::vector<std::string> choices; ///< of a text with a list; the value in force is always among them
    std::string value;                ///< as text
};

struct RackCard {
    PresetBlock block = PresetBlock::source;
    std::string title;
    std::string caption = {}; ///< empty for none
    std::string note = {};    ///< empty for none
    std::vector<RackKnob> knobs = {};
};

/// The cards of settings in the order of the darkroom, in the language in force; none where the film can't be
/// loaded.
std::vector<RackCard> rackCards(const ProcessSettings& settings, const ProfileStore& store);
/// The same with the profiles at hand.
std::vector<RackCard> rackCards(const RackVisibility& rack);

/// What the development card says of developer, push and temperature.
std::string developmentCaption(const FilmProfile& film, const RenderOptions& options);

/// "Changed: film, grade, border and 2 more"; empty when nothing has.
std::string changedLine(const std::vector<KnobChange>& changes);

} // namespace tamlo
