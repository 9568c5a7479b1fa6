// A file that appears whole or not at all: bytes go to a temporary beside the target, are flushed to the
// disk, and take the target's name in one step. Whatever fails before that, the temporary is removed and
// what stood under the target's name still stands there.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tamlo::platform {

class AtomicFile {
public:
    /// Makes the temporary: ".tamlo-", a number of this process, then the target's name. A target that is a
    /// symbolic link is followed, so that the file it names is the one replaced.
    /// Errors: PlatformError with the system's reason.
    explicit AtomicFile(const std::string& target);
    /// Removes the temporary unless commit() succeeded.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Appends bytes. Errors: PlatformError, a full disk among them.
    void write(std::span<const std::uint8_t> bytes);
    /// Flushes to the disk, closes and renames. Errors: PlatformError; the target is then untouched.
    void commit();

private:
    std::string target_;
    std::string temporary_;
    int descriptor_ = -1;
    bool pending_ = false;
};

} // namespace tamlo::platform
