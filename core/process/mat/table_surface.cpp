#include "core/process/mat/table_surface.h"

#include "core/image/gaussian.h"
#include "core/image/rounding.h"
#include "core/image/tamlo_error.h"
#include "core/process/mat/table_passes.h"
#include "core/process/noise/noise_fields.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo::Table {
namespace {

struct Row {
    std::string_view name;
    Vec3f albedo;
    double fine, slow; ///< deviations of the two structures; 0 for linen, which has no grid
};

// Taste: painted boards, and undyed linen.
constexpr std::array<Row, 4> surfaces{{{"white", {0.80f, 0.79f, 0.77f}, 0.006, 0.004},
                                       {"grey", {0.28f, 0.275f, 0.265f}, 0.012, 0.007},
                                       {"black", {0.025f, 0.024f, 0.023f}, 0.04, 0.02},
                                       {"linen", {0.624f, 0.591f, 0.539f}, 0.0, 0.0}}};

struct LegacyRow {
    std::string_view retired, heir;
};
constexpr std::array<LegacyRow, 2> legacy{{{"oak", "grey"}, {"walnut", "grey"}}};

constexpr std::uint32_t kFineLayer = 1, kSlowLayer = 2, kNapLayer = 148;

const Row& rowOf(std::string_view name)
{
    const auto found =
        std::find_if(surfaces.begin(), surfaces.end(), [&](const Row& row) { return row.name == name; });
    if (found != surfaces.end()) return *found;
    std::string text = "Стола «" + std::string(name) + "» нет. Есть: none";
    for (const Row& row : surfaces) text += ", " + std::string(row.name);
    throw TamloError::invalidArgument(text);
}

/// How much coarser than usual a grid is: a table of some two square metres is read from fewer nodes, so that
/// memory stays bounded whatever the scale.
double coarsening(double columns, double rows)
{
    constexpr double kMostNodes = 1e8, kLongestLine = 1e7;
    return std::max(
        {1.0, std::sqrt(columns * rows / kMostNodes), columns / kLongestLine, rows / kLongestLine});
}

/// Noise at grid nodes under a Gaussian.
Plane structure(Size nodes, double sigma, NoiseKey key)
{
    return gaussianFilter(noisePlane(nodes, key), sigma, EdgeMode::reflect);
}

/// 1 and both structures, at the nodes of the fine one.
Plane smoothGrid(const GridDims& dims, const Row& row, std::uint32_t seed)
{
    const auto scaleTo = [](double deviation, const Plane& field) {
        return static_cast<float>(deviation) * unitScale(planeStats(field));
    };
    Plane grid = structure(dims.fine, gridPerSigma / dims.coarsening, {seed, kFineLayer});
    const Plane slow = structure(dims.slow, gridPerSigma, {seed, kSlowLayer});
    add_zoomed(grid, scaleTo(row.fine, grid), {slow, scaleTo(row.slow, slow)},
               zoomAxis(slow.width, grid.width), zoomAxis(slow.height, grid.height));
    return grid;
}

constexpr double kNapMm = 0.08, kNapDeviation = 0.02;

double napSigma(double ppmm)
{
    return std::max(kNapMm * ppmm, 0.3);
}

/// What brings white noise under the nap's blur to its deviation.
float napScale(double sigma)
{
    double squares = 0.0; // of the weights: what the blur leaves of a unit noise's variance along one axis
    for (const double w : gaussianKernel1D(sigma, static_cast<std::int64_t>(4.0 * sigma + 0.5)))
        squares += w * w;
    return static_cast<float>(kNapDeviation / squares);
}

} // namespace

std::string kind(const OptText& name)
{
    const std::string asked = name.value_or("none");
    const auto found = std::find_if(legacy.begin(), legacy.end(),
                                    [&](const LegacyRow& row) { return row.retired == asked; });
    return found != legacy.end() ? std::string(found->heir) : asked;
}

Vec3f base(std::string_view kind)
{
    return rowOf(kind).albedo;
}

std::vector<AxisTap> zoomAxis(std::int64_t src, std::int64_t dst)
{
    const double step = dst > 1 ? static_cast<double>(src - 1) / static_cast<double>(dst - 1) : 0.0;
    std::vector<AxisTap> taps(static_cast<std::size_t>(dst));
    for (std::int64_t i = 0; i < dst; ++i) {
        const double at = step * static_cast<double>(i);
        const auto first = std::min<std::int64_t>(src - 1, static_cast<std::int64_t>(at));
        taps[static_cast<std::size_t>(i)] = {static_cast<std::int32_t>(first),
                                             static_cast<std::int32_t>(std::min(first + 1, src - 1)),
                                             static_cast<float>(at - static_cast<double>(first))};
    }
    return taps;
}

GridDims gridDims(Size canvas, double ppmm)
{
    const auto nodes = [](double cells) { return std::max<std::int64_t>(pyRound(cells) + 1, 8); };
    const auto cells = [&](std::int64_t px) {
        return static_cast<double>(px) / ppmm / (fineMm / gridPerSigma);
    };
    GridDims dims;
    dims.coarsening = coarsening(cells(canvas.width), cells(canvas.height));
    const auto fine = [&](std::int64_t px) { return nodes(cells(px) / dims.coarsening); };
    const auto slow = [&](std::int64_t n) {
        return nodes(static_cast<double>(n) * dims.coarsening / (slowMm / fineMm));
    };
    dims.fine = {fine(canvas.width), fine(canvas.height)};
    dims.slow = {std::min(slow(dims.fine.width), dims.fine.width),
                 std::min(slow(dims.fine.height), dims.fine.height)};
    return dims;
}

Surface::Surface(std::string_view kind, Size canvas, double ppmm, GrainRNG& rng) : albedo_(base(kind))
{
    if (kind == "linen") {
        linen_ = planLinen(canvas, ppmm, rng);
        linen_.nap = napScale(napSigma(ppmm));
        const NoiseKey key{static_cast<std::uint32_t>(rng.nextUInt64()), kNapLayer};
        nap_ = gaussianFilter(noisePlane(canvas, key), napSigma(ppmm), EdgeMode::nearest);
        return;
    }
    const GridDims dims = gridDims(canvas, ppmm);
    grid_ = smoothGrid(dims, rowOf(kind), static_cast<std::uint32_t>(rng.nextUInt64()));
    across_ = zoomAxis(grid_.width, canvas.width);
    down_ = zoomAxis(grid_.height, canvas.height);
}

Surface::Rows::Rows(const Surface& surface)
    : surface_(surface),
      nodes_(static_cast<std::size_t>(surface.grid_.width)),
      line_(std::max(surface.across_.size(), surface.linen_.cosX.size()))
{}

const float* Surface::Rows::run(std::int64_t y, std::int64_t x0, std::int64_t x1)
{
    const auto row = static_cast<std::size_t>(y);
    if (surface_.nap_.count() > 0) {
        linen_row(surface_.linen_, surface_.nap_.row(y), row, x0, x1, line_.data());
    } else {
        const AxisTap& down = surface_.down_[row];
        const Plane& grid = surface_.grid_;
        zoomed_row({grid.row(down.first), grid.row(down.second), down.fraction, nodes_.data()},
                   surface_.across_, x0, x1, line_.data());
    }
    return line_.data();
}

} // namespace tamlo::Table
