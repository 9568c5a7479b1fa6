// ProjectFile: the file of the open project on disk. It is held by one program at a time, by an advisory
// lock; it is written whole or not at all, each time with a copy of what stood there; and never over what
// another program has written meanwhile. Used from one thread at a time.
#pragma once

#include "platform/file_lock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tamlo {

class ProjectFile {
public:
    /// Takes the lock of a project's file, which may not exist yet. Errors: TamloError for the user when
    /// another program has the project open.
    explicit ProjectFile(std::filesystem::path url);

    const std::filesystem::path& url() const { return url_; }
    /// Its text, which is from now on what the disk is expected to hold. Errors: TamloError.
    std::string read();

    enum class Written { done, changedOnDisk };
    /// expected: nothing is written where the file is no longer what was last read or written, or where one
    /// stands that never was: then the user saves a copy elsewhere, or says that it may go. anything: it
    /// goes, and its copy stays among the backups.
    enum class Over { expected, anything };
    /// Keeps a copy of what stands there and writes. Errors: TamloError with one sentence; the old file is
    /// whole.
    Written write(const std::string& text, double now, Over over = Over::expected);

private:
    bool isAsExpected() const;

    std::filesystem::path url_;
    platform::FileLock lock_;
    std::optional<std::uint64_t> seen_; ///< hash of the bytes that were last read or written
};

} // namespace tamlo
