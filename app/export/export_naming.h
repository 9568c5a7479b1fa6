// ExportNaming: what the file of an exported frame is called, and a free name where that one is taken. The
// file system is asked by a predicate, so that a plan can be made without one.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tamlo {

/// A name for one frame was asked of several.
struct NamingError : std::logic_error {
    enum class Kind { singleOnly };
    NamingError() : std::logic_error("this name is for a single frame") {}
    Kind kind = Kind::singleOnly;
};

namespace ExportNaming {

using Path = std::filesystem::path;

/// {stem}, {stem}_tamlo, {n}_{stem}, {n}, {text}_{n}, {text}.
enum class Mode { source, tamlo, numberSource, number, custom, name };

inline constexpr Mode defaultMode = Mode::tamlo;
inline constexpr std::array batchModes{Mode::source, Mode::tamlo, Mode::numberSource, Mode::number,
                                       Mode::custom};
inline constexpr std::size_t minDigits = 3;
/// Names are cut so that this many bytes hold them with " 999" and "_social.jpg".
inline constexpr std::size_t kLongestName = 255;

/// "source", "tamlo", "number_source", "number", "custom", "name".
std::string_view rawText(Mode mode);
std::optional<Mode> fromText(std::string_view text);

/// Digits of the numbers of so many frames.
std::size_t numberWidth(std::size_t count);
/// A user's text as a part of a file name on every system; "tamlo" where nothing of it is left.
std::string customStem(std::string_view text);

struct Name {
    Mode mode = defaultMode;
    std::string stem; ///< of the source
    std::int64_t index = 1, count = 1;
    std::string custom;
    std::string ext = "jpg";
};
/// A stem that a file system could not hold is cut between two characters. Errors: NamingError.
std::string fileName(const Name& name);

using Keys = std::set<std::string>;
using Exists = std::function<bool(const Path&)>;

/// Something stands under the name, a dangling link among it.
bool defaultExists(const Path& url);
/// The standardised path.
std::string key(const Path& url);
/// Where the copy for sharing of a master goes.
Path socialPath(const Path& master);
/// By a file of this run, or by one on the disk; or the name of its social copy is.
bool isTaken(const Path& url, const Keys& taken, const Exists& exists);
/// The name itself, else "{stem} 2", "{stem} 3" …
Path freeName(const Path& url, const std::function<bool(const Path&)>& isTakenName);
Path freeName(const Path& url, const Keys& taken, const Exists& exists);

} // namespace ExportNaming
} // namespace tamlo
