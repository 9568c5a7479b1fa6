// What a finished picture tells about itself: the camera's own fields, the film and paper it was printed
// on, and the program.
#pragma once

#include "core/io/image_writer.h"
#include "core/pipeline/backend.h"

#include <filesystem>

namespace tamlo::cli {

/// Never fails: what the source does not tell is left out.
OutputMetadata outputMetadata(const std::filesystem::path& source, const RenderChoices& choices);

} // namespace tamlo::cli
