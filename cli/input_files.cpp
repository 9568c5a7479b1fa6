#include "cli/input_files.h"

#include "core/image/tamlo_error.h"
#include "core/io/decode_rules.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <array>

namespace tamlo::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::array kEncodedExtensions{".jpg",  ".jpeg", ".png",  ".tif",  ".tiff", ".heic",
                                        ".heif", ".hif",  ".webp", ".avif", ".jxl"};

std::vector<fs::path> picturesIn(const fs::path& folder)
{
    std::vector<std::pair<std::string, fs::path>> found;
    std::error_code problem;
    fs::directory_iterator entries(folder, problem);
    for (; !problem && entries != fs::directory_iterator(); entries.increment(problem)) {
        const fs::path& file = entries->path();
        std::error_code ignored;
        if (isPictureName(file) && entries->is_regular_file(ignored))
            found.emplace_back(platform::naturalSortKey(file.filename().string()), file);
    }
    if (problem)
        throw TamloError::io(
            T("cli.folderUnread", {{"folder", folder.string()}, {"error", problem.message()}}));
    if (found.empty()) throw TamloError::io(T("cli.emptyFolder", {{"folder", folder.string()}}));
    std::ranges::sort(found);
    std::vector<fs::path> files;
    for (auto& [key, file] : found) files.push_back(std::move(file));
    return files;
}

} // namespace

bool isPictureName(const fs::path& file)
{
    if (file.filename().string().starts_with('.')) return false;
    const std::string extension = platform::lowerCased(file.extension().string());
    return ImageLoader::isRAW(file) ||
           std::ranges::find(kEncodedExtensions, extension) != kEncodedExtensions.end();
}

std::vector<fs::path> expandedInputs(const std::vector<fs::path>& inputs)
{
    std::error_code ignored;
    std::vector<fs::path> named, out;
    for (const fs::path& input : inputs)
        if (!fs::is_directory(input, ignored)) named.push_back(fs::weakly_canonical(input, ignored));
    for (const fs::path& input : inputs) {
        if (!fs::is_directory(input, ignored)) {
            out.push_back(input);
            continue;
        }
        for (fs::path& file : picturesIn(input))
            if (std::ranges::find(named, fs::weakly_canonical(file, ignored)) == named.end())
                out.push_back(std::move(file));
    }
    return out;
}

void checkInput(const fs::path& input)
{
    std::error_code problem;
    if (fs::status(input, problem).type() == fs::file_type::not_found)
        throw TamloError::io(T("cli.noFile", {{"file", input.string()}}));
    if (fs::is_directory(input)) throw TamloError::io(T("cli.isFolder", {{"file", input.string()}}));
}

std::string namingInput(const fs::path& input, const std::string& reason)
{
    const bool named = reason.find(input.filename().string()) != std::string::npos;
    return named ? reason : input.string() + ": " + reason;
}

} // namespace tamlo::cli
