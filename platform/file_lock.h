// FileLock: one program at a time. An advisory lock on a small file of its own, in a folder where every
// program of this user looks; the system releases it when its holder ends, however it ends. The lock's file
// stays.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tamlo::platform {

class FileLock {
public:
    /// The lock of `what`, a path as a rule; absent while another program, or another holder in this one, has
    /// it. Where no lock can be had at all (a folder that can't be written) one that protects nothing.
    static std::optional<FileLock> tryTake(std::string_view what);
    /// The same; waits up to so many seconds. Errors: PlatformError when it is still held then.
    static FileLock take(std::string_view what, double seconds = 10.0);

    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    ~FileLock();

private:
    explicit FileLock(int descriptor) : descriptor_(descriptor) {}

    int descriptor_; ///< -1: protects nothing
};

/// A path that every name of the same file leads to: absolute, links followed as far as they lead.
std::string canonicalPath(const std::filesystem::path& path);

} // namespace tamlo::platform
