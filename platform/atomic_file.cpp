#include "platform/atomic_file.h"

#include "platform/checkpoint.h"
#include "platform/file_name.h"
#include "platform/platform_error.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = ".tamlo-";
constexpr std::size_t kPieceBytes = std::size_t{1} << 23;

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

fs::path folderOf(const fs::path& target)
{
    const fs::path folder = target.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

/// A free name in the target's folder: ".tamlo-", this process, a number, then the target's name.
fs::path temporaryFor(const fs::path& target)
{
    static std::atomic<unsigned> counter{0};
    const std::string stamp = std::to_string(::getpid()) + "-" + std::to_string(counter.fetch_add(1));
    const std::string name = std::string(kPrefix) + stamp + "-" + target.filename().string();
    return folderOf(target) / cutToFileName(name);
}

/// The process that a temporary's name tells; 0 for any other name.
pid_t makerOf(std::string_view name)
{
    if (!name.starts_with(kPrefix)) return 0;
    name.remove_prefix(kPrefix.size());
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    const bool isOurs = error == std::errc() && end != name.data() + name.size() && *end == '-';
    return isOurs && pid > 0 ? pid : 0;
}

/// Whether nobody writes the file any more. A folder on the network may hold files of another machine's
/// processes, whose numbers say nothing here: a writer holds a lock for as long as it lives.
bool isAbandoned(const fs::path& file, pid_t maker)
{
    if (::kill(maker, 0) == 0 || errno != ESRCH) return false;
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (descriptor < 0) return errno == EACCES; // made with permissions that lock even its owner out
    const bool isFree = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    ::close(descriptor);
    return isFree;
}

void flushFolder(const fs::path& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

std::string descriptorPath(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace

AtomicFile::AtomicFile(const std::string& target, Durability durability)
    : target_(behindLinks(target)), durability_(durability)
{
    struct stat old {};
    const bool replaces = ::stat(target_.c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode)) throw PlatformError(std::generic_category().message(EISDIR));
    if (durability == Durability::durable) sweepTemporaries(folderOf(target_));
    openUnnamed();
    if (descriptor_ < 0) openNamed();
    ::flock(descriptor_, LOCK_EX | LOCK_NB); // tells sweepTemporaries that it is in use
    // The permissions that a file had are its owner's choice. Where they can't be kept, the usual ones hold.
    if (replaces) (void)!::fchmod(descriptor_, old.st_mode & 0777);
}

AtomicFile::~AtomicFile()
{
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

/// Leaves the descriptor at -1 where the file system can't.
void AtomicFile::openUnnamed()
{
    const int descriptor = ::open(folderOf(target_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    if (descriptor < 0) return;
    // Without /proc a file could not be given a name later.
    if (::access(descriptorPath(descriptor).c_str(), F_OK) == 0)
        descriptor_ = descriptor;
    else
        ::close(descriptor);
}

void AtomicFile::openNamed()
{
    fs::path name;
    do {
        name = temporaryFor(target_);
        descriptor_ = ::open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    } while (descriptor_ < 0 && errno == EEXIST); // left by an earlier process of this number
    if (descriptor_ < 0) failWithErrno();
    temporary_ = name;
}

void AtomicFile::write(std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        checkpoint();
        const ssize_t written = ::write(descriptor_, bytes.data(), std::min(bytes.size(), kPieceBytes));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) failWithErrno();
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void AtomicFile::setModified(double seconds)
{
    const double whole = std::floor(seconds);
    const timespec time{static_cast<std::time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
    const std::array<timespec, 2> times{time, time};
    ::futimens(descriptor_, times.data());
}

void AtomicFile::commit()
{
    const bool durable = durability_ == Durability::durable;
    if (durable && ::fsync(descriptor_) != 0) failWithErrno();
    if (temporary_.empty()) {
        fs::path name;
        do {
            name = temporaryFor(target_);
            if (::linkat(AT_FDCWD, descriptorPath(descriptor_).c_str(), AT_FDCWD, name.c_str(),
                         AT_SYMLINK_FOLLOW) == 0)
                temporary_ = name;
            else if (errno != EEXIST)
                failWithErrno();
        } while (temporary_.empty());
    }
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) failWithErrno();
    temporary_.clear();
    const int descriptor = std::exchange(descriptor_, -1);
    ::close(descriptor); // after the flush nothing is left to fail
    if (durable) flushFolder(folderOf(target_));
}

void writeWhole(const std::string& target, std::span<const std::uint8_t> bytes, Durability durability)
{
    AtomicFile file(target, durability);
    file.write(bytes);
    file.commit();
}

void writeWhole(const std::string& target, const std::string& text, Durability durability)
{
    writeWhole(target, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, durability);
}

void sweepTemporaries(const fs::path& folder)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
    if (!entries) return;
    while (const dirent* entry = ::readdir(entries.get())) {
        const pid_t maker = makerOf(entry->d_name);
        if (maker == 0) continue;
        const fs::path file = folder / entry->d_name;
        if (isAbandoned(file, maker)) ::unlink(file.c_str());
    }
}

} // namespace tamlo::platform
