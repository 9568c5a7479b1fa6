// The photographs that a command is given: what is wrong with one before it is opened, and how a failure
// names it.
#pragma once

#include <filesystem>
#include <string>

namespace tamlo::cli {

/// Errors: TamloError io when the file is not there or is a folder.
void checkInput(const std::filesystem::path& input);

/// The reason in one sentence that names the picture.
std::string namingInput(const std::filesystem::path& input, const std::string& reason);

} // namespace tamlo::cli
