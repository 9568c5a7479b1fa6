#include "core/profiles/catalogue/user_files.h"

#include "core/image/tamlo_error.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/platform_error.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

TamloError cannot(const char* key, const char* field, const fs::path& path, const std::string& reason)
{
    return TamloError::io(T(key, {{field, path.string()}, {"error", ErrorWords::reason(reason)}}));
}

TamloError cannotRead(const fs::path& path, const std::string& reason)
{
    return cannot("io.err.read", "file", path, reason);
}

void makeFolderOf(const fs::path& path)
{
    if (!path.has_parent_path()) return;
    std::error_code problem;
    fs::create_directories(path.parent_path(), problem);
    if (problem) throw cannot("io.err.createFolder", "folder", path.parent_path(), problem.message());
}

} // namespace

std::string UserFiles::read(const fs::path& path)
{
    std::error_code problem;
    const bool isFile = fs::is_regular_file(path, problem);
    if (!problem && !isFile)
        throw cannotRead(path, fs::is_directory(path, problem) ? "it is a directory"
                                                               : "it is not an ordinary file");
    const std::uintmax_t size = problem ? 0 : fs::file_size(path, problem);
    if (problem) throw cannotRead(path, problem.message());
    if (size > kLargestFile) throw cannotRead(path, "it is far too large for a profile");
    std::ifstream file(path, std::ios::binary);
    std::string text(size, '\0');
    if (!file.read(text.data(), static_cast<std::streamsize>(size)))
        throw cannotRead(path, std::generic_category().message(EIO));
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
        throw cannot("io.err.write", "file", path, error.what());
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
        throw TamloError::io(T("io.err.move", {{"file", from.string()},
                                               {"to", to.string()},
                                               {"error", ErrorWords::reason(problem.message())}}));
}

bool UserFiles::staysInFolder(std::string_view name)
{
    return !name.empty() && name.front() != '.' &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos &&
           name.find("..") == std::string_view::npos;
}

} // namespace tamlo
