#include "platform/file_lock.h"

#include "platform/content_hash.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;

fs::path fileOf(std::string_view what)
{
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "%016llx.lock", static_cast<unsigned long long>(xxHash64(what)));
    return lockFolder() / name.data();
}

int openLock(std::string_view what)
{
    const fs::path file = fileOf(what);
    std::error_code ignored;
    fs::create_directories(file.parent_path(), ignored);
    return ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
}

} // namespace

FileLock::FileLock(FileLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1))
{}

FileLock& FileLock::operator=(FileLock&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

FileLock::~FileLock()
{
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<FileLock> FileLock::tryTake(std::string_view what)
{
    const int descriptor = openLock(what);
    if (descriptor < 0) return FileLock(-1);
    int result = 0;
    do {
        result = ::flock(descriptor, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0) return FileLock(descriptor);
    const bool isHeld = errno == EWOULDBLOCK;
    ::close(descriptor);
    return isHeld ? std::nullopt : std::optional(FileLock(-1));
}

FileLock FileLock::take(std::string_view what, double seconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        if (std::optional<FileLock> lock = tryTake(what)) return std::move(*lock);
        if (Clock::now() >= end) throw PlatformError("another program holds it");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

std::string canonicalPath(const fs::path& path)
{
    std::error_code problem;
    const fs::path absolute = fs::absolute(path, problem);
    const fs::path canonical = fs::weakly_canonical(problem ? path : absolute, problem);
    return (problem ? absolute.lexically_normal() : canonical).string();
}

} // namespace tamlo::platform
