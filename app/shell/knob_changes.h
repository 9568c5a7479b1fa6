// What differs between two processes, in the rack's words: the name of an undo step, the key that makes a
// drag of one knob one step, the line of what was changed.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <string>
#include <vector>

namespace tamlo {

class ProfileStore;

struct KnobChange {
    std::string key;  ///< the field's name; "stock", "lens", "paper", "disc", "process"
    std::string name; ///< in the user's language

    bool operator==(const KnobChange&) const = default;
};

/// The knobs in which two options differ, in the order of the rack.
std::vector<KnobChange> knobDiffs(const RenderOptions& a, const RenderOptions& b);

/// The same with film, lens and paper in front.
std::vector<KnobChange> differences(const ProcessSettings& from, const ProcessSettings& to);

/// The one name of a change: film, lens, paper, the disc of a soft-focus lens, the first knob that differs,
/// else the process as a whole.
KnobChange changeOf(const ProcessSettings& from, const ProcessSettings& to, const ProfileStore& store);

} // namespace tamlo
