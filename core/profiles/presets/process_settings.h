// ProcessSettings: how one frame is printed: film, lens and paper by name, and the options.
#pragma once

#include "core/profiles/presets/preset_document.h"

namespace tamlo {

struct ProcessSettings {
    std::string stock = PresetSchema::neutral().stock;
    std::string lens = PresetSchema::neutral().lens;
    std::string paper = PresetSchema::neutral().paper; ///< empty: the one that suits the film
    RenderOptions options;
    OptText presetName;    ///< the recipe that was applied
    bool modified = false; ///< something has moved since
    bool social = false;   ///< an export writes a copy for sharing beside it
    bool socialCrop45 = false;

    /// What a frame's first change starts from: the neutral film, lens and paper, a sheet of 30 cm, and the
    /// lights of a display picture given back.
    static ProcessSettings fresh();

    /// Stamps a preset on the frame: its blocks are set to their defaults and then to what the preset says;
    /// all other blocks stay. name: shown as the recipe's where the preset has none.
    void apply(const Preset& preset, const std::string& name);

    bool operator==(const ProcessSettings&) const = default;
};

} // namespace tamlo
