#include "core/profiles/presets/preset_document.h"

#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

constexpr const char* kInternalKeys[] = {"_builtin", "_path"};

std::string textUnder(const JSONValue& json, const char* key)
{
    return stringValue(memberOf(json, key)).value_or("");
}

OptText optionalText(const JSONValue& json, const char* key)
{
    return stringValue(memberOf(json, key));
}

} // namespace

JSONValue PresetDocument::decode(std::string_view data)
{
    JSONValue json;
    try {
        json = parseJsonText(data);
    } catch (const DecodeError& error) {
        throw PresetError(T("preset.err.notJson", {{"error", error.what()}}));
    }
    if (!json.is_object()) throw PresetError(T("preset.err.notObject"));
    return json;
}

std::string PresetDocument::encoded() const
{
    JSONValue clean = json;
    for (const char* key : kInternalKeys) clean.erase(key);
    return prettyJson(clean) + "\n";
}

std::string PresetDocument::id() const
{
    return textUnder(json, "id");
}

std::string PresetDocument::name() const
{
    const std::string picked = Loc::pick(textUnder(json, "name"), optionalText(json, "name_en"));
    return picked.empty() ? id() : picked;
}

std::string PresetDocument::nameRu() const
{
    return textUnder(json, "name");
}

std::string PresetDocument::notes() const
{
    return Loc::pick(textUnder(json, "notes"), optionalText(json, "notes_en"));
}

std::string PresetDocument::stock() const
{
    return textUnder(json, "stock");
}

std::string PresetDocument::lens() const
{
    return textUnder(json, "lens");
}

std::string PresetDocument::paper() const
{
    return textUnder(json, "paper");
}

double PresetDocument::format() const
{
    return doubleValue(memberOf(json, "format")).value_or(PresetSchema::formatVersion);
}

std::string PresetDocument::group() const
{
    return textUnder(json, "group");
}

std::string PresetDocument::groupEn() const
{
    return textUnder(json, "group_en");
}

double PresetDocument::order() const
{
    return doubleValue(memberOf(json, "order")).value_or(0);
}

const JSONValue& PresetDocument::optsJSON() const
{
    return memberOf(json, "opts");
}

const JSONValue& PresetDocument::embedded() const
{
    return memberOf(json, "embedded");
}

PresetDocument::Blocks PresetDocument::blocks() const
{
    Blocks known;
    if (const JSONValue* list = arrayValue(memberOf(json, "blocks")))
        for (const PresetBlock block : PresetSchema::order())
            if (std::ranges::find(*list, JSONValue(std::string(PresetSchema::rawText(block)))) != list->end())
                known.push_back(block);
    return known.empty() ? PresetSchema::order() : known;
}

bool PresetDocument::partial() const
{
    // A block that the format did not have can't be meant to be left alone by it.
    const Blocks covered = blocks();
    const Blocks ofFormat = PresetSchema::blocks(static_cast<int>(std::clamp(format(), 0.0, 1000.0)));
    return !std::ranges::all_of(
        ofFormat, [&](PresetBlock block) { return std::ranges::find(covered, block) != covered.end(); });
}

PresetOpts PresetDocument::opts(const Blocks& of) const
{
    PresetSchema::KeySet given;
    if (const JSONValue* object = objectValue(optsJSON()))
        for (const auto& entry : object->items()) given.insert(entry.key());
    PresetSchema::KeySet keys = PresetSchema::keys(of);
    keys.merge(PresetSchema::legacyMovedKeys(format(), of, given));
    std::erase_if(keys, [](const std::string& key) { return PresetSchema::isNever(key); });
    return presetOptsFrom(optsJSON(), keys);
}

PresetReferences PresetDocument::references(const Blocks& of) const
{
    const PresetSchema::KeySet keys = PresetSchema::keys(of);
    const auto read = [&](const char* key) {
        return keys.contains(key) ? optionalText(json, key) : OptText();
    };
    return {read("stock"), read("lens"), read("paper")};
}

Preset PresetDocument::typed(const Blocks& of) const
{
    PresetReferences names = references(of);
    return {id(),
            nameRu().empty() ? id() : nameRu(),
            textUnder(json, "notes"),
            optionalText(json, "name_en"),
            optionalText(json, "notes_en"),
            of,
            std::move(names.stock),
            std::move(names.lens),
            std::move(names.paper),
            opts(of)};
}

void PresetDocument::setName(const std::string& name)
{
    json["name"] = name;
}

void PresetDocument::setID(const std::string& id)
{
    json["id"] = id;
}

void PresetDocument::setEmbedded(JSONValue embedded)
{
    if (embedded.empty())
        json.erase("embedded");
    else
        json["embedded"] = std::move(embedded);
}

} // namespace tamlo
