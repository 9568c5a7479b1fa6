// The numbers of the carried profiles, key by key, for the tables that tell profile makers what is usual.
#pragma once

#include "core/profiles/formats/json_codec.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tamlo {

using Carried = std::vector<nlohmann::json>;

/// The carried profiles of a folder: "films", "lenses", "papers", "filters".
Carried carried(const std::string& folder);

/// The range of a key's numbers in the profiles: "0.04 to 0.42", "1, 0.9 to 1, 1 to 1.35" for the places of
/// three numbers, "none" where no profile has the key; empty for what is no number. Shape: `path` is that of
/// a table's row, such as "layers.{r,g,b}.gamma" or "discs[].glow_mult".
std::string inUse(const std::string& path, const FieldDoc& doc, const Carried& profiles);

} // namespace tamlo
