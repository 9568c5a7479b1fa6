// PresetDocument::validate: one step after the other over a copy of the JSON.

#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/presets/preset_document.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

namespace {

using PresetSchema::KeySet;

std::string joined(const auto& texts, std::string_view separator = ", ")
{
    std::string out;
    for (const std::string& text : texts) out.append(out.empty() ? "" : separator).append(text);
    return out;
}

/// A value that is not allowed, as the message shows it.
std::string shownValue(const JSONValue& value)
{
    if (const auto text = stringValue(value)) return *text;
    if (const auto number = doubleValue(value)) return Fmt::significant(*number);
    if (const auto flag = boolValue(value)) return *flag ? "true" : "false";
    return "?";
}

class Validation {
public:
    Validation(const JSONValue& json, const ProfileStore& store, bool allowEmbedded)
        : store_(store), allowEmbedded_(allowEmbedded)
    {
        document_.json = json;
    }

    PresetDocument run() &&
    {
        checkFormat();
        completeHead();
        moveMountingOutOfPrint();
        checkBlocks();
        checkOpts();
        checkFrameSize();
        noteUnknownKeys();
        checkReferences();
        return std::move(document_);
    }

private:
    JSONValue& json() { return document_.json; }
    JSONValue& opts() { return document_.json["opts"]; }
    void note(const char* key, const Loc::Args& args) { document_.warnings.push_back(T(key, args)); }

    void checkFormat()
    {
        const JSONValue& format = memberOf(json(), "format");
        if (format.is_null()) return;
        const auto number = doubleValue(format);
        if (!number || *number != std::floor(*number)) throw PresetError(T("preset.err.formatNotNumber"));
        writtenFormat_ = *number;
        if (*number > PresetSchema::formatVersion)
            note("preset.note.newerFormat", {{"n", Fmt::significant(*number)}});
    }

    void completeHead()
    {
        const auto text = [&](const char* key) { return stringValue(memberOf(json(), key)); };
        document_.setID(PresetSchema::slug(text("id").value_or(text("name").value_or("preset"))));
        if (memberOf(json(), "name").is_null()) document_.setName(document_.id());
        if (memberOf(json(), "format").is_null()) json()["format"] = PresetSchema::formatVersion;
        const JSONValue& given = memberOf(json(), "opts");
        if (!given.is_object() && !given.is_null()) throw PresetError(T("preset.err.optsNotObject"));
        if (given.is_null()) opts() = JSONValue::object();
    }

    /// The mounting once belonged to the print block.
    void moveMountingOutOfPrint()
    {
        if (writtenFormat_ > 1 || !arrayValue(memberOf(json(), "blocks"))) return;
        JSONValue& blocks = json()["blocks"];
        const auto holds = [&](const char* name) { return std::ranges::find(blocks, name) != blocks.end(); };
        if (holds("print") && !holds("finish")) blocks.push_back("finish");
    }

    void checkBlocks()
    {
        const JSONValue& given = memberOf(json(), "blocks");
        if (!given.is_array() && !given.is_null()) throw PresetError(T("preset.err.blocksNotList"));
        std::vector<std::string> unknown;
        bool anyKnown = false;
        if (given.is_array())
            for (const JSONValue& entry : given)
                if (const auto name = stringValue(entry)) {
                    const bool known = PresetSchema::blockOf(*name).has_value();
                    anyKnown |= known;
                    if (!known) unknown.push_back(*name);
                }
        if (!unknown.empty()) note("preset.note.unknownBlocks", {{"list", joined(unknown)}});
        if (given.is_array() && !anyKnown) throw PresetError(T("preset.err.noBlocks"));
        JSONValue ordered = JSONValue::array();
        for (const PresetBlock block : document_.blocks()) ordered.push_back(PresetSchema::rawText(block));
        json()["blocks"] = std::move(ordered);
    }

    void checkOpts()
    {
        if (const auto line = boolValue(memberOf(opts(), "emboss_line"))) // once a switch
            opts()["emboss_line"] = *line ? JSONValue("double") : JSONValue();

        JSONValue clean = JSONValue::object();
        std::vector<std::string> clamps;
        for (auto& [key, value] : opts().items()) {
            if (PresetSchema::isNever(key)) {
                note("preset.note.notStored", {{"key", key}});
                continue;
            }
            clean[key] = checked(key, value, clamps);
        }
        opts() = std::move(clean);
        if (!clamps.empty()) note("preset.note.clamped", {{"list", joined(clamps, "; ")}});
    }

    /// The value, clamped to its range. Keys of no block are kept as they are.
    JSONValue checked(const std::string& key, const JSONValue& value, std::vector<std::string>& clamps) const
    {
        const OptionRow* row = allKeys_.contains(key) ? findOption(key) : nullptr;
        if (!row) return value;
        if (row->type == OptionType::boolean && !value.is_boolean())
            throw PresetError(T("preset.err.notBool", {{"key", key}}));
        if (!row->allowed.empty() && !value.is_null()) {
            std::vector<std::string> allowed = PresetSchema::allowedTexts(*row);
            std::ranges::sort(allowed);
            const auto text = stringValue(value);
            if (!text || std::ranges::find(allowed, *text) == allowed.end())
                throw PresetError(
                    T("preset.err.badValue",
                      {{"key", key}, {"value", shownValue(value)}, {"allowed", joined(allowed)}}));
        }
        if (!row->hasRange) return value;
        const auto number = doubleValue(value);
        if (!number) throw PresetError(T("preset.err.notNumber", {{"key", key}}));
        const double inside = std::clamp(*number, row->low, row->high);
        if (inside == *number) return value;
        clamps.push_back(key + ": " + Fmt::significant(*number) + " → " + Fmt::significant(inside));
        return inside;
    }

    void checkFrameSize()
    {
        const std::string size = stringValue(memberOf(opts(), "frame_size")).value_or("");
        if (size.empty() || size == "custom") return;
        const std::string format =
            Formats::normalizeFormat(stringValue(memberOf(opts(), "format")).value_or(""), std::nullopt)
                .format;
        const std::vector<std::string> sizes = Formats::frameSizeOrder(format);
        if (std::ranges::find(sizes, size) == sizes.end())
            throw PresetError(T("preset.err.badFrameSize",
                                {{"size", size}, {"format", format}, {"allowed", joined(sizes)}}));
    }

    void noteUnknownKeys()
    {
        const PresetDocument::Blocks blocks = document_.blocks();
        KeySet given;
        for (const auto& entry : opts().items()) given.insert(entry.key());
        const KeySet known = PresetSchema::keys(blocks);
        const KeySet moved = PresetSchema::legacyMovedKeys(writtenFormat_, blocks, given);
        std::vector<std::string> unknown;
        for (const std::string& key : given)
            if (!known.contains(key) && !moved.contains(key)) unknown.push_back(key);
        if (!unknown.empty()) note("preset.note.unknownKept", {{"list", joined(unknown)}});
    }

    void checkReferences() const
    {
        const KeySet keys = PresetSchema::keys(document_.blocks());
        std::vector<std::string> missing;
        for (const PresetSchema::Reference& row : PresetSchema::references()) {
            if (!keys.contains(row.key)) continue;
            const JSONValue& holder = row.inOpts ? document_.optsJSON() : document_.json;
            const std::string name = stringValue(memberOf(holder, row.key)).value_or("");
            if (name.empty() || store_.offers(row.kind, name)) continue;
            const std::string kind(rawText(row.kind));
            const bool travels =
                allowEmbedded_ && memberOf(memberOf(document_.embedded(), kind), name).is_object();
            if (!travels) missing.push_back(std::string(name).append(" (").append(kind).append(")"));
        }
        if (!missing.empty()) throw PresetError(T("preset.err.missingProfiles", {{"list", joined(missing)}}));
    }

    const ProfileStore& store_;
    bool allowEmbedded_;
    PresetDocument document_;
    double writtenFormat_ = 0; ///< of the file; one that doesn't say is taken for the oldest
    const KeySet allKeys_ = PresetSchema::keys(PresetSchema::order());
};

} // namespace

PresetDocument PresetDocument::validate(const JSONValue& json, const ProfileStore& store, bool allowEmbedded)
{
    return Validation(json, store, allowEmbedded).run();
}

} // namespace tamlo
