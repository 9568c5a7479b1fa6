// What the file system tells of a file without opening it.
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace tamlo::platform {

/// The same for all names of one file, and for no other file that exists.
struct FileID {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    auto operator<=>(const FileID&) const = default;
};

struct FileInfo {
    FileID id;
    std::int64_t size = 0; ///< bytes
    double mtime = 0;      ///< seconds since 1970
};

/// Of an ordinary file, links followed; absent for everything else.
std::optional<FileInfo> fileInfo(const std::filesystem::path& path);

} // namespace tamlo::platform
