// The larger canvas that a mat or a table needs.
#pragma once

#include "core/image/rgb_image.h"

namespace tamlo::Finishing {

/// A canvas is never larger: 12 GiB of samples, more than twice what any film and paper come to in a mat on a
/// table.
inline constexpr std::int64_t kLargestCanvasPx = std::int64_t{1} << 30;

/// Errors: unsupported with the size, for one that is larger. Asked before anything of it is made.
void checkCanvas(Size canvas);

} // namespace tamlo::Finishing
