#include "core/process/noise/noise_fields.h"

#include "core/image/each_pixel.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

constexpr double kMinPxUm = 1e-6;
constexpr double kGaussianCellsPerSigma = 6.0;
constexpr double kDifferenceCellsPerSigma = 3.0;

FieldStats statsOf(double sum, double squares, double count, double shift)
{
    if (count < 1.0) return {};
    const double mean = sum / count;
    return {mean + shift, std::sqrt(std::max(squares / count - mean * mean, 0.0))};
}

void scalePlane(Plane& plane, float factor)
{
    eachBand(plane, [&](float* values, std::int64_t, std::size_t n) {
        scale_run(values, factor, static_cast<std::int64_t>(n));
    });
}

/// Noise under one Gaussian less the same noise under another.
Plane differenceOfGaussians(Size size, double sigmaA, double sigmaB, NoiseKey key)
{
    Plane b = noisePlane(size, key);
    Plane a = gaussianFilter(b, sigmaA, EdgeMode::nearest);
    b = gaussianFilter(std::move(b), sigmaB, EdgeMode::nearest);
    float* to = a.mutableData();
    parallelBands(a.height, a.width, [&](std::int64_t start, std::int64_t end) {
        subtract_run(to + start * a.width, to + start * a.width, b.row(start), (end - start) * a.width);
    });
    return a;
}

/// Weighted products of neighbouring nodes along one axis, summed over its pixels: the matrix of the weights'
/// second moments, which has three diagonals.
struct Moments {
    std::vector<double> first;  // sum of a node's weights
    std::vector<double> own;    // of their squares
    std::vector<double> beside; // of the products with the next node's
};

template <typename Taps>
Moments momentsOf(const Taps& taps, std::int64_t nodes)
{
    const auto n = static_cast<std::size_t>(nodes);
    Moments m{std::vector<double>(n), std::vector<double>(n), std::vector<double>(n)};
    for (const auto& tap : taps) {
        const auto i = static_cast<std::size_t>(tap.first), j = static_cast<std::size_t>(tap.second);
        const double v = tap.fraction, u = i == j ? 1.0 : 1.0 - v;
        m.first[i] += u;
        m.own[i] += u * u;
        if (i == j) continue;
        m.first[j] += v;
        m.own[j] += v * v;
        m.beside[i] += u * v;
    }
    return m;
}

} // namespace

float unitScale(const FieldStats& stats)
{
    constexpr double kEven = 1e-6;
    return stats.sd > kEven ? static_cast<float>(1.0 / stats.sd) : 1.0f;
}

FieldStats planeStats(const Plane& plane)
{
    if (plane.count() == 0) return {};
    const float shift = plane.data[0]; // sums about a sample keep their digits under a large mean
    std::vector<RunSums> rows(static_cast<std::size_t>(plane.height));
    parallelBands(plane.height, plane.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            rows[static_cast<std::size_t>(y)] = field_sums(plane.row(y), plane.width, shift);
    });
    return statsOfRows(rows, static_cast<double>(plane.count()), shift);
}

FieldStats statsOfRows(std::span<const RunSums> rows, double count, float shift)
{
    double sum = 0.0, squares = 0.0;
    for (const RunSums& row : rows) {
        sum += row.sum;
        squares += row.squares;
    }
    return statsOf(sum, squares, count, shift);
}

Plane normalizePlane(Plane plane)
{
    scalePlane(plane, unitScale(planeStats(plane)));
    return plane;
}

Plane noisePlane(Size size, NoiseKey key, NoisePlace first)
{
    Plane plane(size.width, size.height);
    float* values = plane.mutableData();
    std::vector<std::uint32_t> columns(static_cast<std::size_t>(size.width));
    noise_columns(columns, key.seed, first.x);
    parallelBands(size.height, size.width * 4, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            virtual_noise(values + y * size.width, columns, first.y + y, key.layer);
    });
    return plane;
}

Plane altField(Size size, double sigmaPx, NoiseKey key)
{
    return normalizePlane(blurChannel(noisePlane(size, key), sigmaPx));
}

Plane altDoG(Size size, double sigmaAPx, double sigmaBPx, NoiseKey key)
{
    constexpr std::int64_t kLeastSide = 16;
    const double k = std::max(sigmaAPx / kDifferenceCellsPerSigma, 1.0);
    if (k == 1.0) return normalizePlane(differenceOfGaussians(size, sigmaAPx, sigmaBPx, key));
    const auto side = [&](std::int64_t n) {
        return std::max(roundAway(static_cast<double>(n) / k), kLeastSide);
    };
    const Plane small =
        differenceOfGaussians({side(size.width), side(size.height)}, sigmaAPx / k, sigmaBPx / k, key);
    return normalizePlane(pilResize(small, size, Resampling::bilinear));
}

Plane latticeNoise(Size size, const NoiseLattice& lattice, NoiseKey key)
{
    return NoiseField::fromLattice(size, lattice, key).plane();
}

double gaussianPixelGain(double sigmaUm, double pxUm)
{
    const double variance = sigmaUm * sigmaUm;
    if (!(variance > 0.0)) return 0.0;
    return std::sqrt(variance / (variance + pxUm * pxUm / 12.0));
}

double differencePixelGain(double aUm, double bUm, double pxUm)
{
    // Power of A - B under white noise, for the variances a and b of the two Gaussians.
    const auto power = [](double a, double b) { return 1.0 / a + 1.0 / b - 4.0 / (a + b); };
    const double q = pxUm * pxUm / 12.0;
    const double whole = power(aUm * aUm, bUm * bUm);
    if (!(whole > 0.0) || !std::isfinite(whole)) return 0.0;
    return std::sqrt(std::max(power(aUm * aUm + q, bUm * bUm + q), 0.0) / whole);
}

std::vector<NoiseField::Tap> NoiseField::axisTaps(std::int64_t pixels, std::int64_t nodes, double pxPerCell)
{
    std::vector<Tap> taps(static_cast<std::size_t>(pixels));
    const double last = static_cast<double>(nodes - 1);
    for (std::size_t i = 0; i < taps.size(); ++i) {
        const double at = (static_cast<double>(i) + 0.5) * pxPerCell - 0.5;
        const double below = std::floor(at);
        taps[i] = {static_cast<std::int32_t>(std::clamp(below, 0.0, last)),
                   static_cast<std::int32_t>(std::clamp(below + 1.0, 0.0, last)),
                   static_cast<float>(at - below)};
    }
    return taps;
}

/// The taps of both axes, and those along the rows as the vector code reads them.
void NoiseField::layTaps(double pxPerCell)
{
    taps_ = axisTaps(size_.width, samples_.width, pxPerCell);
    rowTaps_ = axisTaps(size_.height, samples_.height, pxPerCell);
    columns_.resize(taps_.size());
    shares_.resize(taps_.size());
    for (std::size_t x = 0; x < taps_.size(); ++x) {
        // Before the first node both taps are that node, which the repeated one stands for.
        const bool before = taps_[x].first == taps_[x].second && taps_[x].first == 0 && samples_.width > 1;
        columns_[x] = before ? 0 : taps_[x].first + 1;
        shares_[x] = taps_[x].fraction;
    }
}

NoiseField NoiseField::fromLattice(Size size, const NoiseLattice& lattice, NoiseKey key)
{
    const double pxPerCell = lattice.pxUm / lattice.cellUm;
    const auto nodes = [&](std::int64_t pixels) {
        return std::max<std::int64_t>(
            static_cast<std::int64_t>(std::ceil(static_cast<double>(pixels) * pxPerCell)), 1);
    };
    const Size grid{nodes(size.width), nodes(size.height)};
    const double sigmaA = lattice.sigmaAUm / lattice.cellUm;
    NoiseField field;
    field.size_ = size;
    field.samples_ = lattice.sigmaBUm
                         ? differenceOfGaussians(grid, sigmaA, *lattice.sigmaBUm / lattice.cellUm, key)
                         : gaussianFilter(noisePlane(grid, key), sigmaA, EdgeMode::nearest);
    field.layTaps(pxPerCell);
    return field;
}

// A bilinear reading is linear in the nodes and separable, so the sums over all pixels follow from the nodes
// and the weights' moments along each axis, without a sweep over the pixels.
FieldStats NoiseField::latticeStats() const
{
    const std::int64_t w = samples_.width, h = samples_.height;
    const Moments mx = momentsOf(taps_, w), my = momentsOf(rowTaps_, h);
    const float shift = samples_.data[0];
    const auto product = [&](const float* a, const float* b) {
        double total = 0.0;
        double a0 = a[0] - shift, b0 = b[0] - shift;
        for (std::int64_t x = 0; x < w; ++x) {
            const auto i = static_cast<std::size_t>(x);
            total += mx.own[i] * a0 * b0;
            if (x + 1 == w) break;
            const double a1 = a[x + 1] - shift, b1 = b[x + 1] - shift;
            total += mx.beside[i] * (a0 * b1 + a1 * b0);
            a0 = a1;
            b0 = b1;
        }
        return total;
    };
    std::vector<RunSums> rows(static_cast<std::size_t>(h));
    parallelBands(h, w * 8, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const auto j = static_cast<std::size_t>(y);
            const float* row = samples_.row(y);
            double line = 0.0;
            for (std::int64_t x = 0; x < w; ++x)
                line += mx.first[static_cast<std::size_t>(x)] * (row[x] - shift);
            rows[j] = {my.first[j] * line, my.own[j] * product(row, row)};
            if (y + 1 < h) rows[j].squares += 2.0 * my.beside[j] * product(row, samples_.row(y + 1));
        }
    });
    return statsOfRows(rows, static_cast<double>(size_.width * size_.height), shift);
}

NoiseField NoiseField::onPixels(Plane samples)
{
    NoiseField field;
    field.size_ = samples.size();
    field.samples_ = std::move(samples);
    return field;
}

NoiseField NoiseField::normalised(NoiseField field)
{
    field.scale_ = unitScale(field.onLattice() ? field.latticeStats() : planeStats(field.samples_));
    return field;
}

NoiseField NoiseField::gaussian(Size size, double sigmaUm, double pxUm, NoiseKey key)
{
    const double px = std::max(pxUm, kMinPxUm);
    const double cell = sigmaUm / kGaussianCellsPerSigma;
    if (cell > px) return normalised(fromLattice(size, {px, cell, sigmaUm, {}}, key));
    return normalised(onPixels(gaussianFilter(noisePlane(size, key), sigmaUm / px, EdgeMode::nearest)));
}

NoiseField NoiseField::difference(Size size, double aUm, double bUm, double pxUm, NoiseKey key)
{
    const double px = std::max(pxUm, kMinPxUm);
    const double cell = aUm / kDifferenceCellsPerSigma;
    if (cell > px) return normalised(fromLattice(size, {px, cell, aUm, bUm}, key));
    return normalised(onPixels(differenceOfGaussians(size, aUm / px, bUm / px, key)));
}

NoiseField NoiseField::brushed(Size size, double aUm, double bUm, double alongUm, double pxUm, NoiseKey key)
{
    const double px = std::max(pxUm, kMinPxUm);
    const double cell = aUm / kDifferenceCellsPerSigma;
    const bool lattice = cell > px;
    NoiseField field = lattice ? fromLattice(size, {px, cell, aUm, bUm}, key)
                               : onPixels(differenceOfGaussians(size, aUm / px, bUm / px, key));
    field.samples_ = gaussianFilter1D(std::move(field.samples_), alongUm / (lattice ? cell : px),
                                      FilterAxis::x, EdgeMode::nearest);
    return normalised(std::move(field));
}

NoiseField NoiseField::onNodes(Size size, Plane nodes, double pxPerNode)
{
    NoiseField field;
    field.size_ = size;
    field.samples_ = std::move(nodes);
    field.layTaps(1.0 / pxPerNode);
    return field;
}

NoiseField NoiseField::unitOnNodes(Size size, Plane nodes, double pxPerNode)
{
    return normalised(onNodes(size, std::move(nodes), pxPerNode));
}

NoiseField::Rows::Rows(const NoiseField& field) : field_(field)
{
    if (!field.onLattice()) return;
    nodes_.resize(static_cast<std::size_t>(field.samples_.width + 2 + kNodesBeyond));
    line_.resize(field.taps_.size());
}

const float* NoiseField::Rows::run(std::int64_t y, std::int64_t first, std::int64_t end)
{
    if (!field_.onLattice()) return field_.samples_.row(y);
    const Tap down = field_.rowTaps_[static_cast<std::size_t>(y)];
    const float *a = field_.samples_.row(down.first), *b = field_.samples_.row(down.second);
    if (first >= end) return line_.data();
    // The nodes that the stretch reads; the line of nodes has its ends repeated.
    const std::int64_t last = field_.samples_.width;
    const auto column = [&](std::int64_t x) -> std::int64_t {
        return field_.columns_[static_cast<std::size_t>(x)];
    };
    const std::int64_t left = std::max<std::int64_t>(column(first), 1);
    const std::int64_t right = std::min(column(end - 1) + 1, last);
    float* nodes = nodes_.data();
    for (std::int64_t k = left; k <= right; ++k) nodes[k] = a[k - 1] + (b[k - 1] - a[k - 1]) * down.fraction;
    nodes[0] = nodes[1];
    nodes[last + 1] = nodes[last];
    lattice_row(line_.data() + first, nodes_.data(), field_.columns_.data() + first,
                field_.shares_.data() + first, end - first);
    return line_.data();
}

Plane NoiseField::plane() const
{
    Plane out(size_.width, size_.height);
    float* to = out.mutableData();
    parallelBands(out.height, out.width * 2, [&](std::int64_t start, std::int64_t end) {
        Rows rows(*this);
        for (std::int64_t y = start; y < end; ++y) std::copy_n(rows.row(y), out.width, to + y * out.width);
    });
    if (scale_ != 1.0f) scalePlane(out, scale_);
    return out;
}

} // namespace tamlo
