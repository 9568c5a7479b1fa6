// Presets: recipes stamped on frames.
#pragma once

#include "app/project/frame.h"

#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class Presets {
public:
    explicit Presets(AppModel& model) : model_(model) {}

    /// Stamps the preset's blocks on the frames as one step. name: shown where the preset has none. Returns
    /// how many frames changed.
    std::size_t apply(const std::vector<FrameID>& ids, const Preset& preset, const std::string& name);
    /// A preset of the catalogue for the targets of the rack; blocks: which of its own, all when empty. One
    /// that can't be read is told on the status line.
    void applyPreset(const std::string& id, const PresetSchema::Blocks& blocks = {});
    /// The same for the targets of the rack, or for side B of two, which leaves no step.
    void applyToTargets(const Preset& preset, const std::string& name);

private:
    AppModel& model_;
};

/// What an undo step adds to a preset's name: nothing for a whole preset, else the titles of its blocks.
std::string blocksTail(const PresetSchema::Blocks& blocks);

} // namespace tamlo
