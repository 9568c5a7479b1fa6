// View keys: a name for everything that decides how a frame looks. Tiles are kept under it, so a view that
// was seen once is found again whatever has happened to folders and projects, and any change of the picture
// is simply another name. The name's text form is fixed: another spelling of the same choices would lose
// every tile.
#pragma once

#include "app/project/roll.h"
#include "core/profiles/formats/json_codec.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tamlo {

class ProfileStore;

namespace ViewKey {

struct Inputs {
    std::string source; ///< the proxy's key and version, or the path of a file that can't be recognised
    std::optional<Crop> crop;
    std::int64_t rotate = 0; ///< degrees clockwise
    bool mirror = false;
    std::uint32_t seed = 0;
    std::optional<ProcessSettings> process; ///< absent for an original
    std::string exposure;
    std::string cropGate;
    std::string build; ///< of the program; no part of the hash
    std::optional<std::string> mark;
    /// Hash of the user's own profiles that the process names; absent where all of them are carried.
    std::optional<std::string> materials;
    std::int64_t v = 1;
};

/// "{hash}-{build}": 64 hexadecimal digits, and of the build its letters, digits and dots ("dev" where none
/// is left). Errors: PlatformError, TamloError where the inputs have no text form: such a view has no tile.
std::string key(Inputs inputs);
/// The two parts of a key.
std::string hashOf(std::string_view key);
std::string cleanBuild(std::string_view build);

/// The fixed text form of a JSON value: compact, keys sorted by their bytes, nulls left out of objects, the
/// shortest number that reads back, whole numbers without a point, never a negative zero.
/// Errors: TamloError for a number that is none and for text that is not UTF-8.
std::string canonical(const Json& value);

/// The inputs of a frame's view. `originals`: as an untouched picture, whatever its process.
/// cropGate: the project's rule. roll: as in renderProcess.
Inputs inputsOf(const Frame& frame, const std::optional<std::string>& cropGate, bool originals,
                const ProfileStore& store, const std::string& build, const Roll* roll = nullptr);

} // namespace ViewKey
} // namespace tamlo
