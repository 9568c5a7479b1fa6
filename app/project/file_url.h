// File URLs: how a document writes the path of a source. Paths are bytes here; what is no letter, digit or
// mark of a URL is percent-encoded byte by byte, so that every name of a disk survives.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tamlo {

/// "file:///folder/a%20picture.nef" of an absolute path.
std::string fileURL(std::string_view path);

/// The path of a file URL of this machine; nothing for any other text.
std::optional<std::string> pathOfFileURL(std::string_view url);

} // namespace tamlo
