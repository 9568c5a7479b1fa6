// The clipboard's two envelopes: a whole process, or one block of it as a recipe, as a small JSON object that
// is put on the clipboard under a type of its own and as plain text, so that it can be pasted into a text,
// changed there and pasted back. Neither ever brings geometry, and values out of their range are brought into
// it with a note.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include "platform/clipboard.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ProfileStore;

namespace SettingsClipboard {

/// The type on the wire.
inline constexpr std::string_view kType = "application/x-tamlo-settings+json";

std::string encode(const ProcessSettings& process);

struct Pasted {
    ProcessSettings process;
    std::vector<std::string> notes; ///< for the user, in his language
};
/// The process of an envelope; none for any other text.
std::optional<Pasted> decode(std::string_view text, const ProfileStore& store);

/// Clears the clipboard and puts the envelope there, under its own type and as plain text.
void write(const ProcessSettings& process, platform::Clipboard& clipboard);
/// What lies under the own type, else the plain text.
std::optional<Pasted> read(const platform::Clipboard& clipboard, const ProfileStore& store);

} // namespace SettingsClipboard

namespace BlockClipboard {

inline constexpr std::string_view kType = "application/x-tamlo-block+json";

/// The recipe of some blocks of a process. title: theirs, as shown to the user.
Preset preset(const std::string& title, const PresetSchema::Blocks& of, const ProcessSettings& process);

std::string encode(const std::string& title, const Preset& preset);

struct Envelope {
    std::string title;
    Preset preset;
    std::vector<std::string> notes;
};
/// The recipe of an envelope; none for any other text, and for one that names no known block.
std::optional<Envelope> decode(std::string_view text);

void write(const std::string& title, const Preset& preset, platform::Clipboard& clipboard);
std::optional<Envelope> read(const platform::Clipboard& clipboard);

} // namespace BlockClipboard

} // namespace tamlo
