// The curved face of a tube, in vector code with run-time dispatch.
#pragma once

#include "core/image/plane.h"

#include <array>
#include <span>

namespace tamlo {

/// A row of the screen as the curved face shows it: each channel's plane read by the Catmull-Rom kernel at
/// (xn f, yn f) of the frame, f = (1 + k (xn² + yn²)) × per. Shape: planes of one size.
struct FaceRow {
    std::span<const Plane> planes;
    float yn = 0.0f, yn2 = 0.0f; ///< of the row's place, -1...1; yn2 0 on a cylinder
    float k = 0.0f, per = 1.0f;
};
void face_row(std::array<float*, 3> to, const FaceRow& row) noexcept;

} // namespace tamlo
