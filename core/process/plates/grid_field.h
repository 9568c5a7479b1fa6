// Fields of a plate: noise on a grid in millimetres, numbered from the plate's corner, read up bilinearly.
// The nodes are hashes of their numbers, so that a preview and a file show one wander, and they are few: a
// field is never a plane of the picture's size. Domain: a dimensionless field about 0. Units: millimetres of
// the plate; ppmm pixels a millimetre.
#pragma once

#include "core/image/plane.h"
#include "core/process/noise/noise_fields.h"
#include "core/profiles/formats/profile_values.h"

#include <cstdint>
#include <vector>

namespace tamlo::Plate {

/// The picture on the plate.
struct Extent {
    Size size;
    double ppmm = 1.0;

    static Extent of(Size size, double pxUm);
    double widthMm() const { return static_cast<double>(size.width) / ppmm; }
    double heightMm() const { return static_cast<double>(size.height) / ppmm; }
    /// Distance in pixels from a pixel's centre to the nearest edge of the plate.
    double edgePx(std::int64_t x, std::int64_t y) const;
};

/// A profile's number or its default, held within what pixels can carry.
double numberOf(const OptNumber& number, double otherwise, double least, double most);

/// Grid nodes a standard deviation.
inline constexpr double kGridPerSigma = 3.0;

class GridField {
public:
    GridField() = default;
    /// Node (i, j) lies i × cellMm from the plate's top and j × cellMm from its left.
    GridField(Plane nodes, double cellMm, const Extent& extent);

    /// Smallest value that any reading can have.
    float least() const;
    /// The field at one pixel.
    float at(std::int64_t x, std::int64_t y) const;
    const Plane& nodes() const { return nodes_; }

    /// Reads rows for one band; it holds the band's scratch lines.
    class Rows {
    public:
        explicit Rows(const GridField& field);
        /// Goes to row y, to be read with at().
        void seek(std::int64_t y);
        float at(std::int64_t x) const;
        /// The whole of row y, good until the next call.
        const float* row(std::int64_t y);

    private:
        const GridField& field_;
        std::vector<float> nodes_, line_;
    };

private:
    struct Axis {
        std::vector<std::int32_t> first;
        std::vector<float> fraction;
        Axis() = default;
        Axis(std::int64_t pixels, std::int64_t nodes, double cellsPerPx);
    };

    Plane nodes_;
    Axis across_, down_;
};

/// Nodes (row0, column0)... of the plate's noise under a Gaussian of three nodes, of deviation `deviation`.
/// Beyond the grid stands more of the same noise, so that it has no edge.
struct GridSpan {
    std::int64_t row0 = 0, column0 = 0, rows = 1, columns = 1;
};
Plane gridNoise(const GridSpan& span, double deviation, NoiseKey key);

/// Noise of sigmaMm, alike in all directions, `deviation` in the field's own units.
GridField fieldEven(const Extent& extent, double sigmaMm, double deviation, NoiseKey key);

/// How the layer ran: away from `corner` (0 top left, then clockwise), drawn out by `aniso` along the way.
struct Pour {
    int corner = 0;
    double aniso = 1.0;
};
/// Noise of sigmaMm across the pour.
GridField fieldPour(const Extent& extent, double sigmaMm, double deviation, const Pour& pour, NoiseKey key);

/// 1 at the plate's edge, 0 from `mm` on: u² (3 - 2u).
struct EdgeWeight {
    double reachPx = 1.0;
    EdgeWeight(double mm, double ppmm);
    double at(double edgePx) const;
};

} // namespace tamlo::Plate
