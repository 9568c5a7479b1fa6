#include "core/film/emulsion/dev_field.h"

#include "core/film/emulsion/dev_field_passes.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

/// The field's grid in the film's own frame: x along the long side, y across it.
struct Grid {
    std::int64_t nx = 0, ny = 0;
    double longMm = 0.0, shortMm = 0.0;

    Grid(Size size, double pxUm)
        : longMm(pxUm / 1000.0 * static_cast<double>(std::max(size.width, size.height))),
          shortMm(pxUm / 1000.0 * static_cast<double>(std::min(size.width, size.height)))
    {
        nx = cells(longMm);
        ny = cells(shortMm);
    }
    /// A strip of a pixel's height is hundreds of metres of film: beyond two metres the cells grow instead.
    static std::int64_t cells(double mm)
    {
        constexpr std::int64_t kLeast = 8, kMost = 4096;
        return std::clamp<std::int64_t>(pyRound(mm / DevField::cellMm), kLeast, kMost);
    }
    double xMm(std::int64_t i) const
    {
        return longMm / static_cast<double>(nx) * (static_cast<double>(i) + 0.5);
    }
    double yMm(std::int64_t j) const
    {
        return shortMm / static_cast<double>(ny) * (static_cast<double>(j) + 0.5);
    }
    /// The cells whose centres lie within reachMm of a place along the film, half open.
    std::pair<std::int64_t, std::int64_t> cellsAround(double atMm, double reachMm) const
    {
        const double perMm = static_cast<double>(nx) / longMm, n = static_cast<double>(nx);
        const double first = std::clamp(std::floor((atMm - reachMm) * perMm), 0.0, n);
        const double end = std::clamp(std::ceil((atMm + reachMm) * perMm), 0.0, n);
        return {static_cast<std::int64_t>(first), static_cast<std::int64_t>(end)};
    }
    /// Distance of row j from the edge of a pass over the top or the bottom of the film.
    double edgeMm(std::int64_t j, bool top) const { return top ? yMm(j) : shortMm - yMm(j); }
};

using Line = std::vector<double>;

/// Standard deviation of a line of floats, raised to at least 1e-6.
double deviation(const std::vector<float>& line)
{
    return std::max(Plane(static_cast<std::int64_t>(line.size()), 1, std::span<const float>(line)).std(),
                    1e-6);
}

/// Depths of the tongues along one edge, in millimetres.
Line tongueDepthsMm(const Grid& grid, GrainRNG& rng)
{
    constexpr int kSigmaCells = 8, kRadius = 32;
    const std::vector<double> kernel = gaussianKernel1D(kSigmaCells, kRadius);
    std::vector<float> noise(static_cast<std::size_t>(grid.nx));
    for (float& v : noise) v = rng.nextNormal();
    std::vector<float> smooth(noise.size());
    for (std::int64_t i = 0; i < grid.nx; ++i) {
        double sum = 0.0;
        for (int j = -kRadius; j <= kRadius; ++j)
            sum += kernel[static_cast<std::size_t>(j + kRadius)] *
                   noise[static_cast<std::size_t>(reflectIndex(i + j, grid.nx))];
        smooth[static_cast<std::size_t>(i)] = static_cast<float>(sum);
    }
    const double s = deviation(smooth);
    Line depths(smooth.size());
    for (std::size_t i = 0; i < depths.size(); ++i) {
        const double z = smooth[i] / s;
        const double depth = z <= -1.8 ? 0.3 * DevField::edgeDepthMm
                                       : DevField::edgeDepthMm * (std::min(z, 1.8) / 1.8 * 0.7 + 1.0);
        depths[i] = std::max(depth, 0.4);
    }
    return depths;
}

void addTongues(Line& field, const Grid& grid, double amount, GrainRNG& rng)
{
    for (const bool top : {true, false}) {
        const Line depths = tongueDepthsMm(grid, rng);
        for (std::int64_t j = 0; j < grid.ny; ++j)
            for (std::int64_t i = 0; i < grid.nx; ++i)
                field[static_cast<std::size_t>(j * grid.nx + i)] +=
                    amount * DevField::edgeAmp *
                    std::exp(-grid.edgeMm(j, top) / depths[static_cast<std::size_t>(i)]);
    }
}

void addJets(Line& field, const Grid& grid, double amount, GrainRNG& rng)
{
    constexpr double kPitch = DevField::sprocketMm, kJetMm = 0.7;
    constexpr double kJetReach = 12.0; // beyond it a jet adds less than the last bit of its neighbour's
    const double phase = rng.uniform(0.0, kPitch);
    const int holes = static_cast<int>(std::ceil((grid.longMm + kPitch - phase) / kPitch));
    for (const bool top : {true, false}) {
        Line line(static_cast<std::size_t>(grid.nx));
        for (int hole = 0; hole < holes; ++hole) {
            const double strength = rng.uniform(0.7, 1.3);
            const double atMm = phase + hole * kPitch;
            const auto [first, end] = grid.cellsAround(atMm, kJetReach * kJetMm);
            for (std::int64_t i = first; i < end; ++i) {
                const double d = (grid.xMm(i) - atMm) / kJetMm;
                line[static_cast<std::size_t>(i)] += strength * std::exp(-0.5 * d * d);
            }
        }
        for (std::int64_t j = 0; j < grid.ny; ++j) {
            const double depth =
                amount * DevField::surgeAmp * std::exp(-grid.edgeMm(j, top) / DevField::surgeDepthMm);
            for (std::int64_t i = 0; i < grid.nx; ++i)
                field[static_cast<std::size_t>(j * grid.nx + i)] += depth * line[static_cast<std::size_t>(i)];
        }
    }
}

void addPatches(Line& field, const Grid& grid, double amount, GrainRNG& rng)
{
    Plane noise(grid.nx, grid.ny);
    float* values = noise.mutableData();
    for (std::int64_t i = 0; i < noise.count(); ++i) values[i] = rng.nextNormal();
    constexpr double kSigmaCells = DevField::blotchSigmaMm / DevField::cellMm;
    const Plane smooth = gaussianFilter2(std::move(noise), kSigmaCells, kSigmaCells, EdgeMode::reflect);
    const double s = std::max(smooth.std(), 1e-6);
    for (std::size_t i = 0; i < field.size(); ++i)
        field[i] += amount * DevField::blotchAmp * smooth.data[i] / s;
}

Plane transposed(const Plane& plane)
{
    Plane out(plane.height, plane.width);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x) to[y * out.width + x] = plane.at(y, x);
    return out;
}

} // namespace

std::optional<Plane> DevField::field(Size size, double pxUm, const std::string& format, double amount,
                                     GrainRNG& rng)
{
    if (amount <= 0.0001) return std::nullopt;
    const Grid grid(size, pxUm);
    Line cells(static_cast<std::size_t>(grid.nx * grid.ny));
    addTongues(cells, grid, amount, rng);
    if (format == "135" || format == "half") addJets(cells, grid, amount, rng);
    addPatches(cells, grid, amount, rng);

    Plane coarse(grid.nx, grid.ny);
    float* values = coarse.mutableData();
    for (std::size_t i = 0; i < cells.size(); ++i)
        values[i] = static_cast<float>(std::clamp(cells[i], -0.75, 0.8));
    Plane fine = pilResize(coarse, std::max(size.width, size.height), std::min(size.width, size.height),
                           Resampling::lanczos);
    return size.height > size.width ? transposed(fine) : fine;
}

Plane DevField::apply(Plane density, float dmin, const Plane& field)
{
    dev_uneven(density, dmin, field);
    return density;
}

RGBImage DevField::apply(RGBImage density, const Vec3f& dmins, const Plane& field, const Vec3f& layerW,
                         float sign)
{
    dev_uneven(density, dmins, field, {layerW[0] * sign, layerW[1] * sign, layerW[2] * sign});
    return density;
}

std::optional<Plane> DevField::unevenField(Size size, double pxUm, const std::string& format,
                                           const FilmProfile& film, const RenderOptions& options)
{
    if (film.isInstant() || film.isCollodion() || options.devUneven <= 0.0001) return std::nullopt;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::develop, 0);
    return DevField::field(size, pxUm, format, options.devUneven, rng);
}

} // namespace tamlo
