// From a camera's own colours to linear sRGB. The plan works out, from the camera's colour matrix, which
// gains make the wanted white neutral and which matrix takes balanced camera colours to sRGB primaries; the
// pass applies matrix and level to the demosaiced samples and turns the frame upright on the way.
#pragma once

#include "core/image/plane.h"
#include "core/io/raw_decode.h"
#include "platform/raw_engine.h"

#include <array>
#include <cstdint>

namespace tamlo::ImageLoader {

/// Rows R, G, B over the four samples of a pixel.
struct RawToLinear {
    std::array<std::array<float, 4>, 3> matrix{};
};

struct RawColourPlan {
    /// For the engine; the smallest is 1.
    std::array<double, 4> gains{1.0, 1.0, 1.0, 1.0};
    /// From the engine's 16-bit samples to light in which 1 is the level where the first channel of a
    /// neutral surface saturates.
    RawToLinear toLinear;
};

/// Colour of the white that `film` develops for: a black body of 5500 K, on its locus (tint 0).
inline constexpr double kFilmWhiteK = 5500.0;

/// Without a usable matrix the engine's daylight gains (or the camera's own) balance the frame and its
/// colours are taken as they are.
RawColourPlan planRawColour(const platform::RawColour& colour, WBMode wbMode);

/// The stored frame as the engine has it.
struct RawSamples {
    const std::uint16_t* samples = nullptr;
    std::int64_t width = 0;
    std::int64_t height = 0;
    int flip = 0;

    /// Size when it stands upright.
    Size uprightSize() const;
};

/// Rows start...end of the upright frame: matrix, negatives to 0, values above 1 kept.
/// Shape: `linear` is the whole upright frame, three floats a pixel.
void raw_to_linear(const RawSamples& from, const RawToLinear& params, float* linear, std::int64_t start,
                   std::int64_t end) noexcept;

} // namespace tamlo::ImageLoader
