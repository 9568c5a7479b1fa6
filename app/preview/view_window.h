// What a screen shows of a finished picture: any part of it, at any size, by the resampler that exports go
// through. A picture is seen as a whole of `shown` pixels, of which a window is wanted, so that windows made
// one by one fit together to the pixel and are the same whichever are made.
// Domain: 8-bit sRGB. Reductions average light; enlargements draw a smooth curve through the values as they
// are coded, which is what an eye takes for even.
#pragma once

#include "core/io/ready_image.h"

#include <cstdint>
#include <span>

namespace tamlo {

/// A part of a picture as it is shown: pixels, from its top left corner.
struct ViewWindow {
    std::int64_t x = 0, y = 0;
    std::int64_t width = 0, height = 0;
};

/// R G B A of a window, rows top-down; `into` holds window.width × window.height × 4 bytes. The window lies
/// within `shown`. Where the picture is as large as `shown` its pixels are copied. Any thread.
void drawViewWindow(const ReadyImage& picture, Size shown, const ViewWindow& window,
                    std::span<std::uint8_t> into);

/// Half the size, each pixel the mean light of four; a last odd row or column counts twice. At least 1 × 1.
ReadyImage halved(const ReadyImage& picture);

} // namespace tamlo
