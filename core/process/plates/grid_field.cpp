#include "core/process/plates/grid_field.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/interpolation.h"
#include "core/image/position_hash.h"
#include "core/image/rounding.h"
#include "core/process/plates/plate_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo::Plate {
namespace {

constexpr std::int64_t kPadNodes = 12; // four sigmas of three nodes
constexpr std::int64_t kLeastNodes = 8;

/// The image grid of a cell: nodes down and across.
GridSpan imageGrid(const Extent& extent, double cellMm)
{
    const auto nodes = [&](double mm) { return std::max(pyRound(mm / cellMm) + 1, kLeastNodes); };
    return {0, 0, nodes(extent.heightMm()), nodes(extent.widthMm())};
}

/// Along and across the pour, in nodes; the run along it is drawn out.
struct Turned {
    double s = 0.0, p = 0.0;
};

struct PourAxes {
    double dy, dx, drawnOut;

    explicit PourAxes(const Pour& pour)
        : dy(pour.corner < 2 ? 1.0 : -1.0),
          dx(pour.corner == 0 || pour.corner == 3 ? 1.0 : -1.0),
          drawnOut(std::max(pour.aniso, 1.0))
    {}
    Turned at(std::int64_t row, std::int64_t column) const
    {
        const double y = static_cast<double>(row), x = static_cast<double>(column);
        return {(y * dy + x * dx) / std::numbers::sqrt2 / drawnOut, (y * dx - x * dy) / std::numbers::sqrt2};
    }
};

float readAt(const Plane& nodes, double row, double column)
{
    const auto held = [](double v, std::int64_t n) { return std::clamp(v, 0.0, static_cast<double>(n - 1)); };
    const double r = held(row, nodes.height), c = held(column, nodes.width);
    const auto r0 = std::min(static_cast<std::int64_t>(r), nodes.height - 2);
    const auto c0 = std::min(static_cast<std::int64_t>(c), nodes.width - 2);
    const auto fr = static_cast<float>(r - static_cast<double>(r0));
    const auto fc = static_cast<float>(c - static_cast<double>(c0));
    const float *a = nodes.row(r0) + c0, *b = nodes.row(r0 + 1) + c0;
    return lerp(lerp(a[0], a[1], fc), lerp(b[0], b[1], fc), fr);
}

} // namespace

Extent Extent::of(Size size, double pxUm)
{
    return {size, 1000.0 / std::max(pxUm, 1e-6)};
}

double Extent::edgePx(std::int64_t x, std::int64_t y) const
{
    return static_cast<double>(std::min({x, y, size.width - 1 - x, size.height - 1 - y})) + 0.5;
}

double numberOf(const OptNumber& number, double otherwise, double least, double most)
{
    return std::clamp(number.value_or(otherwise), least, most);
}

GridField::Axis::Axis(std::int64_t pixels, std::int64_t nodes, double cellsPerPx)
    : first(static_cast<std::size_t>(pixels)), fraction(first.size())
{
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double at =
            std::min((static_cast<double>(i) + 0.5) * cellsPerPx, static_cast<double>(nodes - 1));
        first[i] = static_cast<std::int32_t>(std::min(static_cast<std::int64_t>(at), nodes - 2));
        fraction[i] = static_cast<float>(at - first[i]);
    }
}

GridField::GridField(Plane nodes, double cellMm, const Extent& extent)
    : nodes_(std::move(nodes)),
      across_(extent.size.width, nodes_.width, 1.0 / (extent.ppmm * cellMm)),
      down_(extent.size.height, nodes_.height, 1.0 / (extent.ppmm * cellMm))
{}

float GridField::least() const
{
    return *std::min_element(nodes_.data.begin(), nodes_.data.end());
}

float GridField::at(std::int64_t x, std::int64_t y) const
{
    const auto i = static_cast<std::size_t>(x), j = static_cast<std::size_t>(y);
    const float* a = nodes_.row(down_.first[j]) + across_.first[i];
    const float* b = a + nodes_.width;
    const float left = lerp(a[0], b[0], down_.fraction[j]), right = lerp(a[1], b[1], down_.fraction[j]);
    return lerp(left, right, across_.fraction[i]);
}

GridField::Rows::Rows(const GridField& field)
    : field_(field), nodes_(static_cast<std::size_t>(field.nodes_.width)), line_(field.across_.first.size())
{}

void GridField::Rows::seek(std::int64_t y)
{
    const auto j = static_cast<std::size_t>(y);
    const float* a = field_.nodes_.row(field_.down_.first[j]);
    const float* b = a + field_.nodes_.width;
    for (std::size_t x = 0; x < nodes_.size(); ++x) nodes_[x] = lerp(a[x], b[x], field_.down_.fraction[j]);
}

float GridField::Rows::at(std::int64_t x) const
{
    const auto i = static_cast<std::size_t>(x);
    const float* a = nodes_.data() + field_.across_.first[i];
    return lerp(a[0], a[1], field_.across_.fraction[i]);
}

const float* GridField::Rows::row(std::int64_t y)
{
    seek(y);
    grid_row(line_, nodes_.data(), field_.across_.first, field_.across_.fraction);
    return line_.data();
}

Plane gridNoise(const GridSpan& span, double deviation, NoiseKey key)
{
    Plane wide(span.columns + 2 * kPadNodes, span.rows + 2 * kPadNodes);
    float* to = wide.mutableData();
    parallelBands(wide.height, wide.width * 8, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = 0; x < wide.width; ++x)
                to[y * wide.width + x] =
                    gaussNoise(static_cast<std::int32_t>(span.column0 + x - kPadNodes),
                               static_cast<std::int32_t>(span.row0 + y - kPadNodes), key.seed, key.layer);
    });
    wide = gaussianFilter(std::move(wide), kGridPerSigma, EdgeMode::nearest);
    Plane nodes(span.columns, span.rows);
    float* inner = nodes.mutableData();
    for (std::int64_t y = 0; y < span.rows; ++y)
        std::copy_n(wide.row(y + kPadNodes) + kPadNodes, span.columns, inner + y * span.columns);
    const float scale = static_cast<float>(deviation) * unitScale(planeStats(nodes));
    for (std::int64_t i = 0; i < nodes.count(); ++i) inner[i] *= scale;
    return nodes;
}

GridField fieldEven(const Extent& extent, double sigmaMm, double deviation, NoiseKey key)
{
    const double cellMm = sigmaMm / kGridPerSigma;
    return {gridNoise(imageGrid(extent, cellMm), deviation, key), cellMm, extent};
}

GridField fieldPour(const Extent& extent, double sigmaMm, double deviation, const Pour& pour, NoiseKey key)
{
    const double cellMm = sigmaMm / kGridPerSigma;
    const GridSpan image = imageGrid(extent, cellMm);
    const PourAxes axes(pour);
    Turned least{1e300, 1e300}, most{-1e300, -1e300};
    for (const std::int64_t row : {std::int64_t{0}, image.rows - 1})
        for (const std::int64_t column : {std::int64_t{0}, image.columns - 1}) {
            const Turned t = axes.at(row, column);
            least = {std::min(least.s, t.s), std::min(least.p, t.p)};
            most = {std::max(most.s, t.s), std::max(most.p, t.p)};
        }
    const auto nodes = [](double from, double to) {
        return std::max(static_cast<std::int64_t>(std::ceil(to - from)) + 3, kLeastNodes);
    };
    const GridSpan span{static_cast<std::int64_t>(std::floor(least.s)) - 1,
                        static_cast<std::int64_t>(std::floor(least.p)) - 1, nodes(least.s, most.s),
                        nodes(least.p, most.p)};
    const Plane turned = gridNoise(span, deviation, key);
    Plane onImage(image.columns, image.rows);
    float* to = onImage.mutableData();
    for (std::int64_t y = 0; y < image.rows; ++y)
        for (std::int64_t x = 0; x < image.columns; ++x) {
            const Turned t = axes.at(y, x);
            *to++ =
                readAt(turned, t.s - static_cast<double>(span.row0), t.p - static_cast<double>(span.column0));
        }
    return {std::move(onImage), cellMm, extent};
}

EdgeWeight::EdgeWeight(double mm, double ppmm) : reachPx(std::max(mm * ppmm, 1.0))
{}

double EdgeWeight::at(double edgePx) const
{
    const double u = std::clamp(1.0 - edgePx / reachPx, 0.0, 1.0);
    return u * u * (3.0 - 2.0 * u);
}

} // namespace tamlo::Plate
