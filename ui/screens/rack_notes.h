// RackNotes: the lines of explanation on the cards, and the small changes that they offer.
#pragma once

#include "ui/screens/rack_texts.h"

namespace tamlo::ui::RackNotes {

/// Above and below the knobs of a card; empty for none.
QString above(const RackCard& card, const RackTexts::View& view);
QString below(const RackCard& card, const RackTexts::View& view);

/// Of a film for lamplight on the card of the source; empty for others.
QString conversion(PresetBlock block, const RackTexts::View& view);
/// The filter that turns daylight into lamplight is in.
bool isConverted(const RackTexts::View& view);
void convert(ProcessSettings& settings);

/// The sieve disc that the options come from; empty for none.
std::string discIn(const LensProfile& lens, const RenderOptions& options);

} // namespace tamlo::ui::RackNotes
