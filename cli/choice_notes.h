// What the user should know of the choices of a run before it begins: options that can't act with this film
// and paper, and stages that are not built yet. And of each picture under them: what only its size or its
// kind tells.
#pragma once

#include "cli/develop_choices.h"

#include <filesystem>

namespace tamlo::cli {

/// Adds a note for each option that was asked for and can't act, and for each stage that is left out.
void addChoiceNotes(DevelopChoices& choices);

struct PictureChoices;

/// Notes on one picture.
std::vector<std::string> pictureNotes(const DevelopChoices& choices, const PictureChoices& one,
                                      const std::filesystem::path& picture);

} // namespace tamlo::cli
