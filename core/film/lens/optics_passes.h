// Pixel passes of the lens (optics.h): plain arithmetic on rows, and the vignette on vectors. Rows are
// interleaved RGB; a pass writes its own row only.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo {

bool has_negative(const RGBImage& image);
bool has_above(const RGBImage& image, float threshold);

/// k3 and k5 with r² = (dx² + dy²) × invNorm2 about the centre, in pixels.
struct DistortPlan {
    float cx, cy, invNorm2, k3, k5;
};
void distort_row(const RGBImage& from, std::int64_t y, const DistortPlan& plan, float* to);

/// Two neighbours on one axis and the share of the second.
struct ScaledTap {
    std::int32_t first, second;
    float share;
};
struct LateralPlan {
    std::vector<ScaledTap> redX, redY, blueX, blueY;
};
void ca_row(const RGBImage& from, std::int64_t y, const LateralPlan& plan, float* to);

struct VeilPlan {
    float spread;
    Vec3f even;
};
/// E + spread × blurred + even.
void veil_row(float* row, const float* blurred, std::int64_t pixels, const VeilPlan& plan);

struct BloomMix {
    float narrow = 0.0f, wide = 0.0f;
    Vec3f gains{};
};
/// E + gains × (narrow and wide light, mixed).
void bloom_row(float* row, const float* narrow, const float* wide, std::int64_t pixels, const BloomMix& mix);

/// Every `stride`-th float from `first`.
struct StridedRow {
    float* first;
    std::int64_t stride, samples;
};
/// (1 - share) × E + share × H, where H is the halo, less its core when there is one:
/// (outer - ring × core) / (1 - ring). With a stride of 1 or 3.
void glow_row(const StridedRow& row, const float* outer, const float* core, float share, float ring);

} // namespace tamlo
