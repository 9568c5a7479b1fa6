// The pass of an integral card, a row at a time: colour × shade of the body, the corners cut off. What is
// costly is worked out only where it can act: along the opening, along the rim, and in the margins of an
// embossed card, the last in vector code with run-time dispatch.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tamlo {

/// One corner of an outline in pixels; a size of 0 is square.
struct CornerPx {
    bool isChamfer = false;
    double size = 0.0;
    double round = 0.0; ///< of a chamfer
};

struct Outline {
    Size canvas;
    std::array<CornerPx, 4> corners{}; ///< top left, top right, bottom left, bottom right
    bool isCut() const
    {
        for (const CornerPx& corner : corners)
            if (corner.size > 0.0) return true;
        return false;
    }
};

/// Ridges of two families, pressed into the mask outside the line.
struct CardLattice {
    std::array<float, 2> wx{}, wy{}, phaseMm{};
    float height = 0.0f; ///< slope of a ridge over that of a wave 1 mm high
    float gain = 0.0f;   ///< 1 where the ridges resolve
    float bandPx = 0.0f; ///< of the line, where there are none
};

struct CardParams {
    Outline outline;
    Size picture;
    std::int64_t left = 0, top = 0;
    Vec3f base{}, outside{};
    bool isFlat = false; ///< a body without measures: the tint alone
    double linePx = 0.0, lineDev = 0.0;
    double skirtPx = 0.0, skirtDepth = 0.0;
    double pxMm = 1.0;
    std::optional<CardLattice> lattice;
};

/// The card round a picture.
void instant_card(RGBImage& canvas, const RGBImage& picture, const CardParams& params);

/// factors × the light on the lattice, for pixels first...end - 1 of row y.
void emboss_lattice(float* factors, std::int64_t first, std::int64_t end, std::int64_t y,
                    const CardParams& params) noexcept;

} // namespace tamlo
