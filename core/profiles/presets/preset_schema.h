// PresetSchema: which option belongs to which block of the darkroom, which options a preset may hold and what
// values they may have. Types, ranges and allowed texts are those of the option table.
#pragma once

#include "core/profiles/formats/profile_kind.h"
#include "core/profiles/options/option_table.h"

#include <array>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

/// The blocks in the order of the darkroom.
enum class PresetBlock { source, light, optics, filter, film, develop, print, finish };

namespace PresetSchema {

using Blocks = std::vector<PresetBlock>;
using KeySet = std::set<std::string, std::less<>>;

inline constexpr int formatVersion = 4;
inline constexpr std::string_view fileExtension = "tpreset";

/// Film, lens and paper of an untouched frame.
struct Triple {
    std::string stock, lens, paper;
};
const Triple& neutral();

/// All eight blocks.
const Blocks& order();
/// What a file covers that doesn't say: every block, but for `source` before format 4.
Blocks blocks(int inFormat);

std::string_view rawText(PresetBlock block);
std::optional<PresetBlock> blockOf(std::string_view rawText);
/// Key of the block's title.
std::string_view titleKey(PresetBlock block);
/// The keys that belong to a block; `stock`, `lens` and `paper` among them.
std::span<const std::string_view> keys(PresetBlock block);
KeySet keys(const Blocks& blocks);

/// Keys of one frame, and with them all keys that no preset may store.
bool isFrameOnly(std::string_view key);
bool isNever(std::string_view key);

/// The texts that a preset may hold under a key; empty where any will do.
std::vector<std::string> allowedTexts(const OptionRow& row);

/// A key that names a profile.
struct Reference {
    std::string_view key;
    ProfileKind kind;
    bool inOpts; ///< below `opts`, else at the top of the document
};
std::span<const Reference> references();

/// Keys outside the blocks that still count, since older formats kept them in another block.
KeySet legacyMovedKeys(double format, const Blocks& blocks, const KeySet& optsKeys);

/// A file-safe id of a name.
std::string slug(std::string_view text);

} // namespace PresetSchema

} // namespace tamlo
