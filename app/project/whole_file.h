// The application's own files, read whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tamlo {

/// A project of 50,000 frames has 140 MB; what is larger than this is some other file.
inline constexpr std::int64_t kLargestDocumentBytes = std::int64_t{1} << 30;

/// Errors: TamloError io with the file and the reason, also where no file is there.
std::string readWhole(const std::filesystem::path& file);
/// Nothing where no file is there; every other failure is an error.
std::optional<std::string> readWholeIfThere(const std::filesystem::path& file);

inline std::span<const std::uint8_t> bytesOf(const std::string& text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace tamlo
