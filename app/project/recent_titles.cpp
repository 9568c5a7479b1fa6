#include "app/project/recent_titles.h"

#include <filesystem>
#include <map>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

/// The last `depth` folders of a path, "Paris/2024".
std::string foldersOf(const fs::path& path, int depth)
{
    fs::path folders, at = path.parent_path();
    for (int i = 0; i < depth && at.has_filename(); ++i, at = at.parent_path())
        folders = folders.empty() ? at.filename() : at.filename() / folders;
    return folders.string();
}

} // namespace

std::vector<std::string> recentTitles(const std::vector<std::string>& paths)
{
    constexpr int kDeepest = 64; // two files are told apart long before
    std::vector<std::string> titles(paths.size());
    std::vector<std::size_t> open(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) open[i] = i;
    for (int depth = 0; depth <= kDeepest && !open.empty(); ++depth) {
        std::map<std::string, std::vector<std::size_t>> same;
        for (const std::size_t i : open) {
            const std::string folders = foldersOf(paths[i], depth);
            titles[i] = fs::path(paths[i]).stem().string() + (folders.empty() ? "" : " — " + folders);
            same[titles[i]].push_back(i);
        }
        open.clear();
        for (const auto& [title, places] : same)
            if (places.size() > 1) open.insert(open.end(), places.begin(), places.end());
    }
    return titles;
}

} // namespace tamlo
