// What a finished picture tells about itself: the source's own fields, the film and paper it was printed on,
// the scale of the print, how it was made, and the program.
#pragma once

#include "cli/arguments.h"
#include "cli/develop_choices.h"
#include "core/io/image_writer.h"

namespace tamlo::cli {

/// A finished picture on its way to a file.
struct Finished {
    const std::filesystem::path& source;
    const RenderChoices& render; ///< with the picture's own seed
    double printPxUm = 0;        ///< micrometres of print a pixel of the file
};

/// An author and a copyright that the user gave, by option or by preference, stand before the source's own.
/// Never fails: what the source does not tell is left out.
OutputMetadata outputMetadata(const Finished& picture, const DevelopChoices& choices,
                              const DevelopArguments& arguments);

} // namespace tamlo::cli
