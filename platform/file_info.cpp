#include "platform/file_info.h"

#include <sys/stat.h>

namespace tamlo::platform {

std::optional<FileInfo> fileInfo(const std::filesystem::path& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    const double mtime =
        static_cast<double>(status.st_mtim.tv_sec) + static_cast<double>(status.st_mtim.tv_nsec) * 1e-9;
    return FileInfo{{status.st_dev, status.st_ino}, status.st_size, mtime};
}

} // namespace tamlo::platform
