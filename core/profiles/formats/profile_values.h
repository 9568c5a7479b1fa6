// The value types that every profile format shares: optional numbers and texts, triples, matrices and small
// maps. An absent key of a JSON profile is an empty optional, which means that its effect is off unless the
// stage that reads it states a default. Lists and matrices keep what the file says, whatever its length:
// the stage that takes one decides what a malformed one means.
#pragma once

#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

using OptNumber = std::optional<double>;
using OptInteger = std::optional<std::int64_t>;
using OptBool = std::optional<bool>;
using OptText = std::optional<std::string>;
/// R, G, B.
using OptTriple = std::optional<Vec3d>;
/// A list of numbers of any length.
using OptList = std::optional<std::vector<double>>;
using TextList = std::vector<std::string>;
/// Numbers by a short key: "r", "g", "b", or a sheet size such as "4x5".
using NumberMap = std::map<std::string, double>;
/// Rows of numbers as the file gives them; meant as 3 × 3.
using ProfileMatrix = std::vector<std::vector<double>>;
using Matrix3d = std::array<Vec3d, 3>;

/// Multiplies a number that is there.
inline void scale(OptNumber& value, double factor)
{
    if (value) *value *= factor;
}

/// The matrix as three rows of three, or nothing when it has another shape.
std::optional<Matrix3d> asMatrix3(const ProfileMatrix& matrix);

} // namespace tamlo
