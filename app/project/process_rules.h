// What a process says beyond its fields: the paper that is really in force, a block back to neutral, a recipe
// stamped on it, its short texts.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <string>

namespace tamlo {

class ProfileStore;

/// The frame's paper, where the film can print on it; else, and where none is named, the film's own. A paper
/// that does not load is returned as it stands, so that the error appears where it is used.
std::string resolvedPaper(const ProcessSettings& settings, const ProfileStore& store);

/// Stamps a preset: its blocks go neutral and take what it says; a screen's size becomes closeness. name: the
/// recipe's, where the preset has none.
void applyPreset(ProcessSettings& settings, const Preset& preset, const std::string& name,
                 const ProfileStore& store);

/// Puts the knobs of the blocks, and the film, lens or paper that belong to them, to those of `identity`.
void resetBlocks(ProcessSettings& settings, const PresetSchema::Blocks& blocks,
                 const ProcessSettings& identity = ProcessSettings::fresh());

/// Replaces the diagonal of a screen by the closeness that shows the same, where no closeness is set.
void migrateCRTZoom(ProcessSettings& settings, const ProfileStore& store);

/// "{film} · {paper in force}", by their short names.
std::string summary(const ProcessSettings& settings, const ProfileStore& store);
/// Developer and push; empty for plain development.
std::string devSummary(const ProcessSettings& settings);

} // namespace tamlo
