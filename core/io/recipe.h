// Recipe: how a print was made, as it travels inside the finished file: film, lens and paper by name, every
// option that is off its default, the seed, the program's version, and the profiles that no other machine
// has. It is one line of JSON in one XMP property, so that the same print can be made of another photograph.
#pragma once

#include "core/profiles/formats/json_value.h"
#include "core/profiles/options/render_options.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

struct Recipe {
    std::string film, lens, paper; ///< ids
    RenderOptions options;
    /// How the film's frame takes a picture in, "crop" or "inside", where that was chosen. A cut that follows
    /// from it belongs to one picture and is none of the options.
    std::optional<std::string> fit = {};
    std::string version = {}; ///< of the program that made the print
    /// Profiles that are not carried in the program, by kind and id, as in a preset.
    JSONValue embedded = JSONValue::object();
    std::vector<std::string> warnings; ///< notes of reading, in the user's language

    /// The form that this version writes, and the newest that it reads.
    static constexpr int kFormat = 1;
};

/// The recipe as a JSON object.
JSONValue recipeToJson(const Recipe& recipe);

/// The text of the property. Profiles stay out of one that would be too long for a JPEG's metadata; nothing
/// where it is too long without them, which takes a page of text on a stamp.
std::optional<std::string> encodeRecipe(const Recipe& recipe);

/// The recipe of a property's text; `file` is named in messages. Settings that this version does not know
/// are left aside with a note. Errors: TamloError io: the text is damaged, or of a newer form.
Recipe decodeRecipe(const std::string& text, const std::string& file);

/// The recipe inside a finished picture.
/// Errors: TamloError io: no picture, a picture without a recipe, and those of decodeRecipe.
Recipe readRecipe(const std::filesystem::path& file);

/// The option values that differ from the defaults, by key.
JSONValue offDefault(const RenderOptions& options);

} // namespace tamlo
