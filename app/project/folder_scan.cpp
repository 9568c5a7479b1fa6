#include "app/project/folder_scan.h"

#include "core/io/decode_rules.h"
#include "platform/checkpoint.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 7> kEncoded{"jpg", "jpeg", "heic", "heif", "png", "tif", "tiff"};
constexpr std::array<std::string_view, 4> kCameraEncoded{"jpg", "jpeg", "heic", "heif"};
constexpr std::array<std::string_view, 6> kSidecars{"xmp", "aae", "dop", "pp3", "on1", "cos"};

template <std::size_t N>
bool hasExtension(const fs::path& path, const std::array<std::string_view, N>& known)
{
    std::string extension = path.extension().string();
    if (extension.empty()) return false;
    extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); });
    return std::find(known.begin(), known.end(), extension) != known.end();
}

struct Entry {
    std::string name;
    bool isFolder;
};

/// What stands in a folder, by name; a link to a folder is neither file nor folder.
std::vector<Entry> entriesOf(const fs::path& folder)
{
    std::vector<Entry> entries;
    std::error_code problem;
    for (fs::directory_iterator at(folder, problem), end; !problem && at != end; at.increment(problem)) {
        std::error_code unknown;
        std::string name = at->path().filename().string();
        if (name.starts_with('.')) continue;
        const bool isFolder = fs::is_directory(at->symlink_status(unknown));
        if (isFolder || at->is_regular_file(unknown)) entries.push_back({std::move(name), isFolder});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return entries;
}

enum class Half { none, raw, camera };

Half halfOf(const fs::path& file)
{
    if (ImageLoader::isRAW(file)) return Half::raw;
    return hasExtension(file, kCameraEncoded) ? Half::camera : Half::none;
}

/// Folder and stem of the pairs among the files.
std::map<std::string, int> pairKeys(const std::vector<std::string>& files)
{
    constexpr int kRaw = 1, kCamera = 2;
    std::map<std::string, int> halves;
    for (const std::string& file : files) {
        const Half half = halfOf(file);
        if (half != Half::none)
            halves[fs::path(file).replace_extension().string()] |= half == Half::raw ? kRaw : kCamera;
    }
    std::erase_if(halves, [](const auto& entry) { return entry.second != (kRaw | kCamera); });
    return halves;
}

} // namespace

bool FolderScan::isImage(const fs::path& path)
{
    return hasExtension(path, kEncoded) || ImageLoader::isRAW(path);
}

bool FolderScan::isSidecar(const fs::path& path)
{
    return hasExtension(path, kSidecars);
}

FolderScan::Walk FolderScan::filesBelow(const fs::path& folder, const WalkLimits& limits,
                                        const FilePredicate& accepts)
{
    Walk found;
    // What is still to be looked at, the next one last.
    struct Pending {
        fs::path path;
        bool isFolder;
        std::size_t depth;
    };
    std::vector<Pending> pending{{folder, true, 0}};
    while (!pending.empty()) {
        const Pending next = std::move(pending.back());
        pending.pop_back();
        if (next.isFolder) {
            platform::checkpoint();
            if (next.depth >= limits.depth) continue;
            std::vector<Entry> entries = entriesOf(next.path);
            for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
                pending.push_back({next.path / entry->name, entry->isFolder, next.depth + 1});
        } else if (isSidecar(next.path)) {
            continue;
        } else if (!accepts(next.path)) {
            ++found.refused;
        } else if (found.files.size() >= limits.files) {
            found.limitHit = true;
            break;
        } else {
            found.files.push_back(next.path.string());
        }
    }
    return found;
}

FolderScan::Walk FolderScan::walk(const fs::path& folder, std::size_t limit, const FilePredicate& accepts)
{
    Walk found = filesBelow(folder, {.files = limit}, accepts);
    std::sort(found.files.begin(), found.files.end());
    return found;
}

std::size_t FolderScan::pairCount(const std::vector<std::string>& files)
{
    return pairKeys(files).size();
}

std::vector<std::string> FolderScan::resolve(std::vector<std::string> files, PairChoice choice)
{
    if (choice == PairChoice::both) return files;
    const std::map<std::string, int> pairs = pairKeys(files);
    const Half leaves = choice == PairChoice::raw ? Half::camera : Half::raw;
    std::erase_if(files, [&](const std::string& file) {
        return halfOf(file) == leaves && pairs.contains(fs::path(file).replace_extension().string());
    });
    return files;
}

} // namespace tamlo
