#include "core/profiles/presets/preset_opts.h"

#include "core/profiles/formats/json_codec.h"

namespace tamlo {

namespace {

/// The rows of the option table that a preset's blocks hold.
template <typename Visit>
void forEachOption(const PresetSchema::KeySet& keys, Visit&& visit)
{
    for (const OptionRow& row : optionTable())
        if (keys.contains(row.key)) visit(row);
}

void setOption(RenderOptions& options, const OptionRow& row, const JSONValue& value)
{
    const JsonPath root;
    row.read(options, value, JsonPath{&root, row.key});
}

bool hasItsType(const OptionRow& row, const JSONValue& value)
{
    try {
        RenderOptions scratch;
        setOption(scratch, row, value);
        return true;
    } catch (const DecodeError&) {
        return false;
    }
}

} // namespace

JSONValue PresetOpts::json() const
{
    JSONValue out = JSONValue::object();
    for (const auto& [key, value] : values) out[key] = value;
    return out;
}

PresetOpts presetOptsFrom(const JSONValue& object, const PresetSchema::KeySet& keys)
{
    PresetOpts out;
    forEachOption(keys, [&](const OptionRow& row) {
        const JSONValue& value = memberOf(object, row.key);
        if (!value.is_null() && hasItsType(row, value)) out.values[row.key] = value;
    });
    return out;
}

PresetOpts presetOpts(const RenderOptions& options)
{
    const RenderOptions defaults;
    PresetOpts out;
    forEachOption(PresetSchema::keys(PresetSchema::order()), [&](const OptionRow& row) {
        JSONValue value, usual;
        row.write(options, value);
        row.write(defaults, usual);
        if (!value.is_null() && value != usual && value != "") out.values[row.key] = std::move(value);
    });
    return out;
}

void apply(RenderOptions& options, const PresetOpts& opts, const PresetSchema::KeySet& explicitKeys)
{
    for (const auto& [key, value] : opts.values)
        if (const OptionRow* row = findOption(key); row && !explicitKeys.contains(key))
            setOption(options, *row, value);
}

void reset(RenderOptions& options, const PresetSchema::Blocks& blocks)
{
    const RenderOptions defaults;
    forEachOption(PresetSchema::keys(blocks), [&](const OptionRow& row) {
        JSONValue value;
        row.write(defaults, value);
        if (value.is_null())
            row.clear(options);
        else
            setOption(options, row, value);
    });
}

} // namespace tamlo
