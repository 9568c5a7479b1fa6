#include "app/project/project_file.h"

#include "app/project/file_resolver.h"
#include "app/project/project_backups.h"
#include "app/project/whole_file.h"
#include "core/image/tamlo_error.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/content_hash.h"
#include "platform/platform_error.h"

namespace tamlo {

namespace fs = std::filesystem;

namespace {

platform::FileLock lockOf(const fs::path& url)
{
    auto lock = platform::FileLock::tryTake(platform::canonicalPath(url));
    if (!lock) throw TamloError::io(T("project.locked", {{"file", url.string()}}));
    return std::move(*lock);
}

} // namespace

ProjectFile::ProjectFile(fs::path url) : url_(FileResolver::standardised(url)), lock_(lockOf(url_))
{}

std::string ProjectFile::read()
{
    std::string text = readWhole(url_);
    seen_ = platform::xxHash64(text);
    return text;
}

/// What is there is what was last seen; or nothing is, and nothing can be lost. The bytes are compared: a
/// time may be set back, and a file that was merely touched has not changed.
bool ProjectFile::isAsExpected() const
{
    const std::optional<std::string> text = readWholeIfThere(url_);
    return !text || (seen_ && platform::xxHash64(*text) == *seen_);
}

ProjectFile::Written ProjectFile::write(const std::string& text, double now, Over over)
{
    if (over == Over::expected && !isAsExpected()) return Written::changedOnDisk;
    ProjectBackups::keep(url_, now);
    try {
        platform::writeWhole(url_.string(), text);
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(
            T("io.err.write", {{"file", url_.string()}, {"error", ErrorWords::reason(error)}}));
    }
    seen_ = platform::xxHash64(text);
    return Written::done;
}

} // namespace tamlo
