// How large the file of an exported frame comes out, before a pixel is decoded, and how much of a RAW source
// is decoded for it.
#pragma once

#include "app/project/roll.h"
#include "core/pipeline/backend.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tamlo {

class ProfileStore;

namespace ExportSize {

/// What decides beside the frame itself.
struct Setting {
    const ProfileStore& store;
    std::optional<std::string> cropGate; ///< the project's rule
    const Roll& roll;
};

/// Long side that a RAW source is decoded to; 0 for all there is. Errors: those of its profiles.
std::int64_t decodeCap(const Frame& frame, const Setting& setting);

/// The options' copy for sharing: 2,048 pixels of the long side, any other number of the width.
void askSocial(RenderOptions& options, std::int64_t socialPx);

/// Of the file, at a scale. Absent where the source does not tell its size, or a profile is missing.
std::optional<Size> output(const Frame& frame, double scale, const Setting& setting);
/// Of its copy for sharing; absent for an original, which has none.
std::optional<Size> social(const Frame& frame, std::int64_t socialPx, const Setting& setting);

} // namespace ExportSize
} // namespace tamlo
