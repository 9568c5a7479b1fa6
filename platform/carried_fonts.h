// The faces that the program carries inside (platform/fonts), embedded when it is built.
#pragma once

#include <cstdint>
#include <span>

namespace tamlo::platform::CarriedFonts {

/// TeX Gyre Heros Bold: Latin.
std::span<const std::uint8_t> herosBold();
/// Liberation Sans Bold: Cyrillic, Greek and what else the first lacks.
std::span<const std::uint8_t> liberationSansBold();
/// DejaVu Sans Mono: what a contact sheet is lettered in.
std::span<const std::uint8_t> dejaVuSansMono();

} // namespace tamlo::platform::CarriedFonts
