// Names of finished pictures: what --name puts together of the picture and the choices it is developed with.
#pragma once

#include "cli/develop_choices.h"

#include <filesystem>
#include <string>

namespace tamlo::cli {

inline constexpr const char* kUsualName = "{stem}-tamlo.{ext}";

/// A picture's place in its run.
struct PictureInRun {
    std::filesystem::path input;
    std::size_t n = 1, total = 1;
};

/// The file name that a pattern gives. Fields: stem, source (extension of the source), folder, film, lens,
/// paper, preset, n, ext. Errors: UsageError for an unknown field, a brace that is not closed, and a name
/// that leaves its folder.
std::string outputName(const std::string& pattern, const PictureInRun& picture,
                       const DevelopChoices& choices);

} // namespace tamlo::cli
