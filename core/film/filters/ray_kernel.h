// The kernel of a star or streak filter: lines through the centre that fade along their length and have a
// Gaussian cross-section. Kernels are kept, since the same filter comes back with every render.
#pragma once

#include "core/image/plane.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tamlo::Filters {

/// A star of rays. Units: length and sigma in pixels, angleDeg in degrees, tau a fraction of the length in
/// which the light falls to 1/e.
struct RayShape {
    double length = 0.0;
    std::int64_t families = 2; ///< lines; each gives two rays
    double angleDeg = 0.0;
    double tau = 0.32;
    double sigma = 1.0;
};

/// Shape: side 2 × rint(length) + 1, at least 3; sums to 1.
Plane rayKernel(const RayShape& shape);

/// The kernel kept from an earlier call, or made now, outside the lock. At most kKeptRayKernels stay, and
/// no more than kKeptRayKernelBytes of them.
std::shared_ptr<const Plane> cachedRayKernel(const RayShape& shape);
inline constexpr std::size_t kKeptRayKernels = 12;
inline constexpr std::size_t kKeptRayKernelBytes = std::size_t{128} << 20;
std::size_t keptRayKernels();

} // namespace tamlo::Filters
