// PresetOpts: what a preset says of the options: some of the 80 option keys of the blocks, each with a value
// of its option's type. A key that is not there leaves its option alone.
#pragma once

#include "core/profiles/formats/json_value.h"
#include "core/profiles/options/render_options.h"
#include "core/profiles/presets/preset_schema.h"

#include <map>
#include <string>

namespace tamlo {

struct PresetOpts {
    std::map<std::string, JSONValue, std::less<>> values;

    JSONValue json() const;
    bool operator==(const PresetOpts&) const = default;
};

/// The keys of an object whose values have their option's type; a null says nothing.
PresetOpts presetOptsFrom(const JSONValue& object, const PresetSchema::KeySet& keys);

/// What differs from the default options, of the keys that a preset may hold. An empty text is absent.
PresetOpts presetOpts(const RenderOptions& options);

/// Sets every option that the preset speaks of, but those whose keys the user gave by hand.
void apply(RenderOptions& options, const PresetOpts& opts, const PresetSchema::KeySet& explicitKeys);

/// Sets the options of the blocks to their defaults.
void reset(RenderOptions& options, const PresetSchema::Blocks& blocks);

} // namespace tamlo
