#include "cli/input_files.h"

#include "core/image/tamlo_error.h"

namespace tamlo::cli {

namespace fs = std::filesystem;

void checkInput(const fs::path& input)
{
    std::error_code problem;
    if (fs::status(input, problem).type() == fs::file_type::not_found)
        throw TamloError::io("there is no file " + input.string());
    if (fs::is_directory(input)) throw TamloError::io(input.string() + " is a folder, not a picture");
}

std::string namingInput(const fs::path& input, const std::string& reason)
{
    const bool named = reason.find(input.filename().string()) != std::string::npos;
    return named ? reason : input.string() + ": " + reason;
}

} // namespace tamlo::cli
