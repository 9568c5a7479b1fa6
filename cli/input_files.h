// The photographs that a command is given: the pictures of a folder, what is wrong with one before it is
// opened, and how a failure names it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tamlo::cli {

/// Whether the file's name is one of a picture that can be read.
bool isPictureName(const std::filesystem::path& file);

/// The inputs in their order, a folder as the pictures in it (not in folders below) in natural order of their
/// names. A picture that a folder brings and that is named beside it comes once. Errors: TamloError io for a
/// folder that can't be read or holds no picture.
std::vector<std::filesystem::path> expandedInputs(const std::vector<std::filesystem::path>& inputs);

/// Errors: TamloError io when the file is not there or is a folder.
void checkInput(const std::filesystem::path& input);

/// The reason in one sentence that names the picture.
std::string namingInput(const std::filesystem::path& input, const std::string& reason);

} // namespace tamlo::cli
