#include "platform/atomic_file.h"

#include "platform/platform_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failWithErrno()
{
    throw PlatformError(std::generic_category().message(errno));
}

/// The file behind the last symbolic link; the path itself when there is none or it leads nowhere.
fs::path behindLinks(const fs::path& path)
{
    std::error_code none;
    if (!fs::is_symlink(path, none)) return path;
    const fs::path real = fs::canonical(path, none);
    return none ? path : real;
}

/// A free name in the target's folder; its length stays within the 255 bytes of a file name.
std::string temporaryFor(const fs::path& target)
{
    static std::atomic<unsigned> counter{0};
    const std::string stamp = std::to_string(::getpid()) + "-" + std::to_string(counter.fetch_add(1));
    std::string name = ".tamlo-" + stamp + "-" + target.filename().string();
    if (name.size() > 255) name.resize(255);
    return (target.parent_path() / name).string();
}

} // namespace

AtomicFile::AtomicFile(const std::string& target) : target_(behindLinks(target).string())
{
    struct stat old {};
    const bool replaces = ::stat(target_.c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode)) throw PlatformError(std::generic_category().message(EISDIR));
    do {
        temporary_ = temporaryFor(target_);
        descriptor_ = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    } while (descriptor_ < 0 && errno == EEXIST); // left by a run that was killed; the next number is free
    if (descriptor_ < 0) failWithErrno();
    pending_ = true;
    // The permissions that a file had are its owner's choice. Where they can't be kept, the usual ones hold.
    if (replaces) (void)!::fchmod(descriptor_, old.st_mode & 0777);
}

AtomicFile::~AtomicFile()
{
    if (descriptor_ >= 0) ::close(descriptor_);
    if (pending_) ::unlink(temporary_.c_str());
}

void AtomicFile::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) failWithErrno();
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void AtomicFile::commit()
{
    if (::fsync(descriptor_) != 0) failWithErrno();
    const int closed = ::close(descriptor_);
    descriptor_ = -1;
    if (closed != 0) failWithErrno();
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) failWithErrno();
    pending_ = false;
}

} // namespace tamlo::platform
