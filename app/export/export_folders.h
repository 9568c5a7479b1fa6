// ExportFolders: the folders that were last exported to, newest first.
#pragma once

#include "platform/preferences.h"
#include "platform/volumes.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

struct ExportFolder {
    std::optional<std::string> bookmark; ///< another platform's, carried as it stands
    std::string name;
    std::string path;

    /// Of a path, named by its last part.
    static ExportFolder at(const std::string& path);
    bool operator==(const ExportFolder&) const = default;
};

namespace ExportFolders {

inline constexpr std::size_t kMost = 7;
using List = std::vector<ExportFolder>;
using IsFolder = std::function<bool(const std::string& path)>;

enum class State { available, folderMissing, diskMissing };
struct Item {
    ExportFolder folder;
    State state = State::available;
};
/// The folders with their state; those that are away are shown too.
std::vector<Item> current(const List& folders, const IsFolder& isDir, const platform::Volumes& volumes);

/// The list with this folder at its head.
List push(const ExportFolder& folder, List onto);

/// For a menu, at most `max` characters where the last folder alone has no more: the home folder as "~", then
/// "…/" and as many of the last folders as fit.
std::string shortPath(std::string_view path, std::size_t max, std::string_view home);

/// A list that can't be read counts as empty.
List load(const platform::Preferences& preferences);
/// Errors: PlatformError.
void store(const List& folders, platform::Preferences& preferences);

} // namespace ExportFolders
} // namespace tamlo
