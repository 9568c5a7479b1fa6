#include "core/profiles/formats/profile_values.h"

namespace tamlo {

std::optional<Matrix3d> asMatrix3(const ProfileMatrix& matrix)
{
    if (matrix.size() != 3) return std::nullopt;
    Matrix3d out{};
    for (std::size_t i = 0; i < 3; ++i) {
        if (matrix[i].size() != 3) return std::nullopt;
        for (std::size_t j = 0; j < 3; ++j) out[i][j] = matrix[i][j];
    }
    return out;
}

} // namespace tamlo
