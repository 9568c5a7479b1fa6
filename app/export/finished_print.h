// FinishedPrint: a finished print on its way to a file. A card that can be cut out of its picture keeps its
// outline as alpha in a PNG, and lies on white in every other file.
#pragma once

#include "core/io/output_metadata.h"
#include "core/pipeline/backend.h"

#include <optional>
#include <string>

namespace tamlo::FinishedPrint {

/// What a card's outline follows from.
struct Made {
    const RenderChoices& choices;
    Size picture; ///< the picture alone, at full size
};

/// Domain and errors: those of ImageWriter::save.
void save(RGBImage image, const Made& made, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata);
/// The print as a file without alpha shows it.
RGBImage opaque(RGBImage image, const Made& made);

} // namespace tamlo::FinishedPrint
