// KEY=VALUE of `tamlo project set`, and the names of blocks: read and checked before a roll is opened.
#pragma once

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/presets/process_settings.h"

#include <functional>
#include <string>
#include <vector>

namespace tamlo::cli {

/// What a list of settings does to a process: film, lens and paper by id, and every option that belongs to a
/// process. Errors: UsageError naming the setting.
std::function<void(ProcessSettings&)> processChange(const std::vector<std::string>& settings,
                                                    const ProfileStore& store);

/// Blocks by their names with commas between them, in the order of the darkroom. Errors: UsageError.
PresetSchema::Blocks blocksNamed(const std::string& text);

/// The title that the rack gives to blocks.
std::string blocksTitle(const PresetSchema::Blocks& blocks);

} // namespace tamlo::cli
