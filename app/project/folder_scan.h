// FolderScan: a folder of files on its way into a project: which of them are pictures, and which are one
// exposure that the camera wrote twice, as RAW and as a finished picture.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace tamlo::FolderScan {

enum class PairChoice { raw, jpeg, both };

/// Extensions of the encoded pictures and of RAW files, in any case.
bool isImage(const std::filesystem::path& path);
/// Notes that other programs leave beside a picture: passed over without a word.
bool isSidecar(const std::filesystem::path& path);

struct Walk {
    std::vector<std::string> files;
    bool limitHit = false;   ///< there is at least one more
    std::size_t refused = 0; ///< files that are neither picture nor sidecar
};

using FilePredicate = std::function<bool(const std::filesystem::path&)>;

struct WalkLimits {
    std::size_t files = 20'000;
    /// A file in the folder itself is at 1.
    std::size_t depth = std::numeric_limits<std::size_t>::max();
};

/// The files below a folder that are accepted, and no sidecars, in the order of the walk: by name at each
/// level. Hidden files are passed over, links to folders are not followed, folders that can't be read count
/// as empty. Asks the checkpoint at each folder.
Walk filesBelow(const std::filesystem::path& folder, const WalkLimits& limits, const FilePredicate& accepts);
/// All pictures, sorted by path.
Walk walk(const std::filesystem::path& folder, std::size_t limit, const FilePredicate& accepts = isImage);

/// Exposures that are there as RAW and as JPEG or HEIF: files of one folder and one name, but for the last
/// extension, in the same case.
std::size_t pairCount(const std::vector<std::string>& files);
/// Without the other half of each pair; a TIFF or PNG of the name is somebody's work, and stays.
std::vector<std::string> resolve(std::vector<std::string> files, PairChoice choice);

} // namespace tamlo::FolderScan
