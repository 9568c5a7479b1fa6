// Files of the user's root: read whole, written whole or not at all.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tamlo::UserFiles {

/// A profile or a preset is a few kilobytes; what is larger than this is some other file.
inline constexpr std::uintmax_t kLargestFile = 16u << 20;

/// Errors: TamloError io naming the file, also for one that is larger than kLargestFile.
std::string read(const std::filesystem::path& path);

/// The text of a file, or nothing when no file of this name is there. Errors: those of read.
std::optional<std::string> readIfThere(const std::filesystem::path& path);

/// Makes the folder and writes the file in one step. Errors: TamloError io; what stood there still stands.
void write(const std::filesystem::path& path, std::string_view text);

/// Makes the folder and moves a file there, also to another volume; one of that name is replaced.
/// Errors: TamloError io; the file is then where it was.
void move(const std::filesystem::path& from, const std::filesystem::path& to);

/// A name that is a plain file name: it can't lead out of its folder, and is no file that is being written.
bool staysInFolder(std::string_view name);

} // namespace tamlo::UserFiles
