// What one picture of a run is developed with: the choices of the run, taken to the picture's own size. The
// frame of the film takes the picture in, and --long becomes a size of the source.
#pragma once

#include "cli/develop_choices.h"

#include <filesystem>

namespace tamlo::cli {

struct PictureChoices {
    RenderChoices render;
    Size source;                 ///< of the file, before any cut
    std::int64_t sourceLong = 0; ///< long side to reduce the source to; 0 leaves it
    Size exposed;                ///< the source so reduced
    std::vector<std::string> notes;
};

/// --fit crop cuts a picture to its frame, as the camera would have; --fit inside lays the whole picture in
/// the frame. Without it frames of 6 × 6 and 6 × 7 are cut. A crop of the user's own stays as it is.
/// --long is the long side of the finished picture, also when a crop or a card takes a part of the source.
/// Errors: those of ImageLoader::pictureSize.
PictureChoices choosePicture(const DevelopChoices& choices, const RenderArguments& arguments,
                             const std::filesystem::path& picture);

} // namespace tamlo::cli
