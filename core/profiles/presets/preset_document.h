// A preset is a recipe: a film, a lens, a paper and some option values, in eight blocks that follow the order
// of the darkroom. Applying one stamps its values on a frame; the frame keeps no link. PresetDocument is the
// file as it stands, with all that this version does not know; Preset is what a frame takes from it.
#pragma once

#include "core/profiles/presets/preset_error.h"
#include "core/profiles/presets/preset_opts.h"

#include <filesystem>

namespace tamlo {

class ProfileStore;

/// Names of the three profiles, where the blocks hold them and the preset gives them.
struct PresetReferences {
    OptText stock, lens, paper;
};

/// The typed recipe.
struct Preset {
    std::string id, name, notes;
    OptText nameEn, notesEn;
    PresetSchema::Blocks blocks;
    OptText stock, lens, paper;
    PresetOpts opts;
};

class PresetDocument {
public:
    using Blocks = PresetSchema::Blocks;

    JSONValue json = JSONValue::object();
    std::vector<std::string> warnings; ///< notes for the user, in his language
    bool builtin = false;
    std::optional<std::filesystem::path> url;

    /// The JSON object of a file's text, unchecked. Errors: PresetError.
    static JSONValue decode(std::string_view data);

    /// Checks, brings older formats up to date and cleans. Values out of their range are clamped with a note.
    /// allowEmbedded: a profile that travels inside the file counts as there.
    /// Errors: PresetError with the first fault.
    static PresetDocument validate(const JSONValue& json, const ProfileStore& store, bool allowEmbedded);

    /// The text of the file.
    std::string encoded() const;

    std::string id() const;
    std::string name() const; ///< in the language in force; the id when there is none
    std::string nameRu() const;
    std::string notes() const;
    std::string stock() const;
    std::string lens() const;
    std::string paper() const;
    double format() const;
    std::string group() const;
    std::string groupEn() const;
    double order() const; ///< place in the list, also across groups
    const JSONValue& optsJSON() const;
    const JSONValue& embedded() const;
    /// In the order of the darkroom; a list without a known block counts as all eight.
    Blocks blocks() const;
    /// It leaves something alone that its format could speak of.
    bool partial() const;

    PresetOpts opts() const { return opts(blocks()); }
    PresetOpts opts(const Blocks& of) const;
    PresetReferences references(const Blocks& of) const;
    Preset typed(const Blocks& of) const;

    void setName(const std::string& name);
    void setID(const std::string& id);
    void setEmbedded(JSONValue embedded);
};

} // namespace tamlo
