// What a sheet lies on: a smooth table with a fine and a slow structure, or linen. A surface is an albedo
// times a value at each pixel; the value is read by rows, so that no plane of the canvas's size is made for a
// smooth table. All random draws are made when it is planned. Domain: linear albedo. Units: ppmm pixels a
// millimetre of print.
#pragma once

#include "core/image/plane.h"
#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/process/mat/linen.h"
#include "core/profiles/formats/profile_values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo::Table {

inline constexpr double fineMm = 0.4;
inline constexpr double slowMm = 12.0;
inline constexpr double gridPerSigma = 3.0;

/// A name as it is known today: retired surfaces read as their heirs, an absent name as "none".
std::string kind(const OptText& name);

/// Albedo of a surface. Errors: invalidArgument with the names there are.
Vec3f base(std::string_view kind);

/// Where along an axis a finer line reads a coarser one: nodes first and second, fraction of the second.
struct AxisTap {
    std::int32_t first = 0, second = 0;
    float fraction = 0.0f;
};
std::vector<AxisTap> zoomAxis(std::int64_t src, std::int64_t dst);

/// Nodes of both structures of a smooth table; counted in millimetres of the canvas, so that a preview and a
/// file draw the same nodes.
struct GridDims {
    Size fine, slow;
    double coarsening = 1.0; ///< of the fine grid; above 1 for a table of metres
};
GridDims gridDims(Size canvas, double ppmm);

class Surface {
public:
    /// Errors: invalidArgument for a name that base() rejects.
    Surface(std::string_view kind, Size canvas, double ppmm, GrainRNG& rng);

    const Vec3f& albedo() const { return albedo_; }

    /// Reads rows for one band; it holds the band's scratch lines.
    class Rows {
    public:
        explicit Rows(const Surface& surface);
        /// The values of row y at x0 ... x1 - 1, good until the next call.
        const float* run(std::int64_t y, std::int64_t x0, std::int64_t x1);

    private:
        const Surface& surface_;
        std::vector<float> nodes_, line_;
    };

private:
    Vec3f albedo_;
    // A smooth table: the grid and where pixels read it.
    Plane grid_;
    std::vector<AxisTap> across_, down_;
    // Linen, of which the nap is a plane.
    Linen linen_;
    Plane nap_;
};

} // namespace tamlo::Table
