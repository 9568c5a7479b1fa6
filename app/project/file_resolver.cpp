#include "app/project/file_resolver.h"

#include "platform/file_info.h"
#include "platform/unicode.h"

#include <algorithm>
#include <vector>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

/// How a file compares with what the frame remembers.
struct Finding {
    bool agrees = false;
    bool isRead = true; ///< false: its content could not be looked at
    std::optional<Fingerprint> renewed;
};

Finding compare(const fs::path& file, const platform::FileInfo& info, const Frame& frame,
                FileResolver::Look look)
{
    if (!frame.fingerprint) return {true, true, {}};
    const Fingerprint& known = *frame.fingerprint;
    const bool sameStat = info.size == known.size && info.mtime == known.mtime && known.mtime != 0;
    if (sameStat && look != FileResolver::Look::thorough) return {true, true, {}};
    if (look == FileResolver::Look::glance) return {false, false, {}};
    const std::optional<Fingerprint> now = Fingerprint::read(file);
    if (!now) return {false, false, {}};
    Finding found{now->sameContent(known), true, {}};
    if (found.agrees && now->mtime != known.mtime) found.renewed = now;
    return found;
}

fs::path normalPath(const fs::path& path)
{
    fs::path normal = path.lexically_normal();
    return normal.has_filename() || !normal.has_relative_path() ? normal : normal.parent_path();
}

} // namespace

FileResolver::Resolution FileResolver::resolve(const Frame& frame, const fs::path& projectDir,
                                               const platform::Volumes& volumes, Look look)
{
    const auto here = platform::fileInfo(frame.url);
    if (here) {
        const Finding found = compare(frame.url, *here, frame, look);
        if (found.agrees || !found.isRead) return {frame.url, FileState::ok, found.renewed};
    }
    if (frame.relPath && !projectDir.empty()) {
        const fs::path beside = normalPath(projectDir / *frame.relPath);
        if (const auto info = platform::fileInfo(beside); info && beside != fs::path(frame.url)) {
            const Finding found = compare(beside, *info, frame, look);
            if (found.agrees) return {beside.string(), FileState::moved, found.renewed};
        }
    }
    if (here) return {frame.url, FileState::changed, {}};
    const bool isAway = volumes.isOffline(frame.url);
    return {frame.url, isAway ? FileState::offline : FileState::missing, {}};
}

std::optional<std::string> FileResolver::relativePath(const fs::path& file, const fs::path& from)
{
    constexpr std::ptrdiff_t kMostUp = 3;
    const fs::path target = normalPath(file), folder = normalPath(from);
    if (!target.is_absolute() || !folder.is_absolute()) return std::nullopt;
    const auto [own, other] = std::mismatch(folder.begin(), folder.end(), target.begin(), target.end());
    const std::ptrdiff_t up = std::distance(own, folder.end());
    if (up > kMostUp || other == target.end()) return std::nullopt;
    fs::path relative;
    for (std::ptrdiff_t i = 0; i < up; ++i) relative /= "..";
    for (auto part = other; part != target.end(); ++part) relative /= *part;
    if (!platform::isUtf8(relative.string())) return std::nullopt;
    return relative.string();
}

std::string FileResolver::standardised(const fs::path& path)
{
    std::error_code problem;
    const fs::path absolute = fs::absolute(path, problem);
    return normalPath(problem ? path : absolute).string();
}

} // namespace tamlo
