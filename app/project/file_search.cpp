#include "app/project/file_search.h"

#include "app/project/folder_scan.h"
#include "platform/checkpoint.h"
#include "platform/file_info.h"
#include "platform/unicode.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostFiles = 20'000;
constexpr std::size_t kDeepest = 6; ///< a file in the folder itself is at 1

std::string nameKey(const std::string& name)
{
    return platform::isUtf8(name) ? platform::lowerCased(name) : name;
}

/// The lost frames that still look for their file, by what a file shows without being opened.
class Wanted {
public:
    explicit Wanted(const std::vector<FrameRef>& lost)
    {
        for (const FrameRef& frame : lost) {
            if (frame->fingerprint)
                bySize_[frame->fingerprint->size].push_back(frame);
            else
                byName_[nameKey(frame->fileName())].push_back(frame);
        }
        left_ = lost.size();
    }

    bool isEmpty() const { return left_ == 0; }

    /// The frame that takes the file, which leaves the search.
    FrameRef take(const std::string& file, std::int64_t size)
    {
        if (const auto sized = bySize_.find(size); sized != bySize_.end() && !sized->second.empty()) {
            const std::optional<Fingerprint> found = Fingerprint::read(file);
            std::vector<FrameRef>& frames = sized->second;
            const auto same = std::find_if(frames.begin(), frames.end(), [&](const FrameRef& frame) {
                return found && found->sameContent(*frame->fingerprint);
            });
            if (same != frames.end()) return taken(frames, same);
        }
        const auto named = byName_.find(nameKey(fs::path(file).filename().string()));
        if (named == byName_.end() || named->second.empty()) return nullptr;
        return taken(named->second, named->second.begin());
    }

private:
    FrameRef taken(std::vector<FrameRef>& frames, std::vector<FrameRef>::iterator which)
    {
        FrameRef frame = std::move(*which);
        frames.erase(which);
        --left_;
        return frame;
    }

    std::unordered_map<std::int64_t, std::vector<FrameRef>> bySize_;
    std::map<std::string, std::vector<FrameRef>> byName_;
    std::size_t left_ = 0;
};

std::set<platform::FileID> filesOf(const Roll& roll)
{
    std::set<platform::FileID> ids;
    for (const Frame& frame : roll)
        if (const auto info = platform::fileInfo(frame.url)) ids.insert(info->id);
    return ids;
}

} // namespace

std::vector<FileSearch::Match> FileSearch::matches(const fs::path& folder, const std::vector<FrameRef>& lost,
                                                   const Roll& roll)
{
    std::vector<Match> found;
    Wanted wanted(lost);
    std::set<platform::FileID> taken = filesOf(roll);
    const auto everyFile = [](const fs::path&) { return true; };
    for (const std::string& file : FolderScan::filesBelow(folder, {kMostFiles, kDeepest}, everyFile).files) {
        if (wanted.isEmpty()) break;
        platform::checkpoint();
        const auto info = platform::fileInfo(file);
        if (!info || taken.contains(info->id)) continue;
        if (const FrameRef frame = wanted.take(file, info->size)) {
            taken.insert(info->id);
            found.emplace_back(frame->id, file);
        }
    }
    return found;
}

} // namespace tamlo
