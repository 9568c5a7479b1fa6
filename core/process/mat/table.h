// A finished sheet lying on a table, with its shadow: the last stage of a print. Larger by the table's margin
// on all sides. Domain: display-linear.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tamlo::Table {

inline constexpr double widthCmDefault = 3.0;
inline constexpr double paperThicknessMm = 0.25;

/// Whether the options ask for a table at all.
bool wantsTable(const RenderOptions& options);

/// Table on each side of the sheet, pixels; never less than 2.
std::int64_t marginPx(double widthCm, double printPxUm);

/// What lies on the table, and how.
struct Lying {
    double widthCm = widthCmDefault;
    double printPxUm = 60.0;
    double thicknessMm = paperThicknessMm;
};

/// Lays the image on a surface. mask: coverage of the image's size; without one it is a rectangle.
/// Errors: invalidArgument for a surface that does not exist, unsupported for a canvas too large to draw.
RGBImage apply(const RGBImage& image, std::string_view kind, const Lying& lying,
               const std::optional<Plane>& mask, GrainRNG& rng);

} // namespace tamlo::Table
