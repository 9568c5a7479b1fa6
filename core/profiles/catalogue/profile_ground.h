// On what ground a profile's numbers stand. In the carried profiles a note ("source_note", or "KEY_note" for
// what stands on another) begins with one of five kinds; the rest of it are the particulars.
#pragma once

#include <optional>
#include <string_view>

namespace tamlo {

enum class Ground { dataSheet, published, derived, reference, estimate };

/// How a note of this kind begins: "data sheet", "published measurement", "derived", "reference value of this
/// catalogue", "estimate".
std::string_view rawText(Ground ground);
/// The kind of a note; nothing of a note that begins with none of them.
std::optional<Ground> groundOf(std::string_view note);

} // namespace tamlo
