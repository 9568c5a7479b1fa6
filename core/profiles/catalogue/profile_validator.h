// ProfileValidator tells, in the user's words, why a file is not a profile. All that is wrong with the values
// is told at once; a text that can't be read as the kind at all is one message.
#pragma once

#include "core/profiles/formats/profile_kind.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ProfileStore;

namespace ProfileValidator {

class Failure : public std::exception {
public:
    explicit Failure(std::vector<std::string> messages);
    const std::vector<std::string>& messages() const noexcept { return messages_; }
    /// The messages, a line each.
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::vector<std::string> messages_;
    std::string text_;
};

/// Version that profiles are written in.
inline constexpr int formatVersion = 1;
/// The newest version that is read.
int formatCeiling(ProfileKind kind);

/// Title of the profile in a JSON text: its name, or a text that says that it has none.
/// Errors: Failure. Presets are checked against the catalogue of the store; embedded profiles count.
std::string validate(ProfileKind kind, std::string_view data, const ProfileStore& store);

/// The kind that a JSON text looks like; nothing when it looks like none.
/// Errors: DecodeError, when the text is not a JSON object.
std::optional<ProfileKind> guessKind(std::string_view data);

/// The JSON text with its `format` set to formatVersion, pretty-printed.
/// Errors: DecodeError, when the text is not a JSON object.
std::string stamped(std::string_view data);

} // namespace ProfileValidator

} // namespace tamlo
