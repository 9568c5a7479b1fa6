#include "cli/input_files.h"

#include "core/image/tamlo_error.h"
#include "core/text/loc.h"

namespace tamlo::cli {

namespace fs = std::filesystem;

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
