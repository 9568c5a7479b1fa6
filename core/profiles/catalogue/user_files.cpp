#include "core/profiles/catalogue/user_files.h"

#include "core/image/tamlo_error.h"
#include "platform/atomic_file.h"
#include "platform/platform_error.h"

#include <fstream>
#include <sstream>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

void makeFolderOf(const fs::path& path)
{
    if (!path.has_parent_path()) return;
    std::error_code problem;
    fs::create_directories(path.parent_path(), problem);
    if (problem)
        throw TamloError::io("cannot make the folder " + path.parent_path().string() + ": " +
                             problem.message());
}

} // namespace

std::string UserFiles::read(const fs::path& path)
{
    std::error_code problem;
    const bool isFile = fs::is_regular_file(path, problem);
    if (!problem && !isFile)
        throw TamloError::io("cannot read " + path.string() + ": " +
                             (fs::is_directory(path, problem) ? "it is a folder" : "it is no file"));
    const std::uintmax_t size = problem ? 0 : fs::file_size(path, problem);
    if (problem) throw TamloError::io("cannot read " + path.string() + ": " + problem.message());
    if (size > kLargestFile)
        throw TamloError::io("cannot read " + path.string() + ": it is far too large for a profile");
    std::ifstream file(path, std::ios::binary);
    std::string text(size, '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(size)))
        throw TamloError::io("cannot read " + path.string());
    return text;
}

std::optional<std::string> UserFiles::readIfThere(const fs::path& path)
{
    std::error_code ignored; // a path that can't be looked at is one that isn't there
    if (!fs::is_regular_file(path, ignored)) return std::nullopt;
    return read(path);
}

void UserFiles::write(const fs::path& path, std::string_view text)
{
    makeFolderOf(path);
    try {
        platform::AtomicFile file(path.string());
        file.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        file.commit();
    } catch (const platform::PlatformError& error) {
        throw TamloError::io("cannot write " + path.string() + ": " + error.what());
    }
}

void UserFiles::move(const fs::path& from, const fs::path& to)
{
    makeFolderOf(to);
    std::error_code problem;
    fs::rename(from, to, problem);
    if (problem == std::errc::cross_device_link) {
        write(to, read(from));
        fs::remove(from, problem);
    }
    if (problem)
        throw TamloError::io("cannot move " + from.string() + " to " + to.string() + ": " +
                             problem.message());
}

bool UserFiles::staysInFolder(std::string_view name)
{
    return !name.empty() && name.front() != '.' &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos &&
           name.find("..") == std::string_view::npos;
}

} // namespace tamlo
