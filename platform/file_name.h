// What the file system asks of a name: a Linux file name is at most 255 bytes of any kind.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tamlo::platform {

inline constexpr std::size_t kLongestFileNameBytes = 255;

/// The name, cut before the first character that ends beyond `most` bytes.
std::string cutToFileName(std::string_view name, std::size_t most = kLongestFileNameBytes);

} // namespace tamlo::platform
