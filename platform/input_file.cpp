#include "platform/input_file.h"

#include "platform/platform_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tamlo::platform {

InputFile::InputFile(const std::string& path)
{
    // Without O_NONBLOCK a pipe without a writer would hold the program before its kind is known.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) throw PlatformError(std::strerror(errno));
    struct stat status {};
    const bool known = fstat(descriptor, &status) == 0;
    if (known && S_ISREG(status.st_mode)) file_.reset(fdopen(descriptor, "rb"));
    if (file_) return;
    close(descriptor);
    throw PlatformError(known && S_ISDIR(status.st_mode) ? "it is a directory"
                                                         : "it is not an ordinary file");
}

std::size_t InputFile::readHead(std::span<char> bytes) const
{
    const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file_.get());
    if (std::ferror(file_.get())) throw PlatformError(std::strerror(errno));
    return count;
}

std::size_t InputFile::readAt(std::int64_t place, std::span<char> bytes) const
{
    std::size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t count = pread(fileno(file_.get()), bytes.data() + got, bytes.size() - got,
                                    static_cast<off_t>(place) + static_cast<off_t>(got));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw PlatformError(std::strerror(errno));
        if (count == 0) break;
        got += static_cast<std::size_t>(count);
    }
    return got;
}

std::vector<std::uint8_t> InputFile::readAll() const
{
    constexpr std::size_t kLargest = std::size_t{2} << 30;
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    std::vector<std::uint8_t> bytes;
    for (std::size_t got = kPiece; got == kPiece;) {
        const std::size_t at = bytes.size();
        if (at > kLargest) throw PlatformError("the file is larger than 2 GiB");
        bytes.resize(at + kPiece);
        got = std::fread(bytes.data() + at, 1, kPiece, file_.get());
        bytes.resize(at + got);
    }
    if (std::ferror(file_.get())) throw PlatformError(std::strerror(errno));
    return bytes;
}

} // namespace tamlo::platform
