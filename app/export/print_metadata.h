// PrintMetadata: what a finished picture tells about itself: the source's own fields, the film and paper that
// it was printed on, the scale of the print, and the program.
#pragma once

#include "core/io/output_metadata.h"
#include "core/pipeline/backend.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tamlo::PrintMetadata {

struct Signature {
    std::optional<std::string> author, copyright; ///< before the preferences' and the source's own
    std::string software;
};

/// printPxUm: micrometres of print a pixel of the file, 0 where it isn't known. Never fails: what the source
/// does not tell is left out.
OutputMetadata of(const std::filesystem::path& source, const RenderChoices& choices, double printPxUm,
                  const Signature& signature);
/// Of a picture that was not developed.
OutputMetadata ofOriginal(const std::filesystem::path& source, const Signature& signature);

} // namespace tamlo::PrintMetadata
