#include "core/process/altprint/alt_texture.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/position_hash.h"
#include "core/image/random.h"
#include "core/image/render_profiler.h"
#include "core/process/altprint/alt_texture_passes.h"
#include "core/process/noise/noise_fields.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace tamlo {
namespace {

constexpr double kMinPxUm = 1e-6;
constexpr double kLeastAmp = 1e-4;
constexpr double kMostAmp = 1e6; // far beyond black and white, and still a number to reckon with

/// Layer numbers of the fields, each its own virtual noise image.
enum Layer : std::uint32_t { kFibreFine = 20, kFibreWide, kBrush, kInkFine, kWobble, kReticulation };

double held(double share)
{
    return std::clamp(share, -kMostAmp, kMostAmp);
}

/// Where and with what a print's texture is drawn.
struct Ground {
    Size size;
    double pxUm;
    double amp;
    std::uint64_t seed;

    NoiseKey key(std::uint32_t layer) const { return {static_cast<std::uint32_t>(seed), layer}; }
};

float gainOf(double gain, const NoiseField& field)
{
    return static_cast<float>(gain) * field.scale();
}

/// Sigma that fibres of sigmaUm are drawn with at the pixels. Fibres that a pixel can't resolve are still not
/// quite strange to each other in neighbouring pixels, by exp(-1 / 4 (sigma² + 1/12)) in pixels; a kernel of
/// whole taps, whose neighbour weighs half of that, keeps what is left of them when the print is seen
/// smaller.
double drawnFibreUm(double sigmaUm, double pxUm)
{
    constexpr double kWhole = 0.6; // pixels, from which on a field is drawn as it is
    const double sigma = sigmaUm / pxUm;
    if (sigma >= kWhole) return sigmaUm;
    const double seen = sigma * sigma + 1.0 / 12.0;
    return std::min(std::sqrt(1.0 / (0.5 / seen + 2.0 * std::numbers::ln2)), kWhole) * pxUm;
}

void applyFibre(Plane& amount, const Ground& on, const PaperTexture& texture)
{
    const double fineUm = texture.fineUm.value_or(45.0), wideUm = texture.wideUm.value_or(900.0);
    const double wideAmp = held(texture.wideAmp.value_or(0.55));
    const double norm = 1.0 / std::sqrt(1.0 + wideAmp * wideAmp);
    const double px = std::max(on.pxUm, kMinPxUm);
    const NoiseField fine = NoiseField::gaussian(on.size, drawnFibreUm(fineUm, px), px, on.key(kFibreFine));
    const NoiseField wide =
        NoiseField::gaussian(on.size, std::max(wideUm, on.pxUm), on.pxUm, on.key(kFibreWide));
    const FieldMix mix{static_cast<float>(on.amp), gainOf(norm * gaussianPixelGain(fineUm, on.pxUm), fine),
                       gainOf(norm * wideAmp * gaussianPixelGain(wideUm, on.pxUm), wide)};
    float* values = amount.mutableData();
    parallelBands(amount.height, amount.width * 2, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows fineRows(fine), wideRows(wide);
        for (std::int64_t y = start; y < end; ++y)
            texture_fibre(values + y * amount.width, fineRows.row(y), wideRows.row(y), mix, amount.width);
    });
}

/// What the rows of the brush add to each pixel row: strokes side by side, their edges wandering. The
/// wandering lies on nodes of a twelfth of the brush, so that it is the same at every size.
std::vector<float> brushRows(const Ground& on, double brushUm, double strength)
{
    constexpr double kNodesPerBrush = 12.0, kWander = 1.6;
    constexpr std::uint64_t kPhaseSeed = 0x51AC;
    std::vector<float> rows(static_cast<std::size_t>(on.size.height));
    if (strength <= 0.001) return std::vector<float>(rows.size());
    const double brushRaw = brushUm / std::max(on.pxUm, kMinPxUm), brushPx = std::max(brushRaw, 1.0);
    const double nodePx = brushPx / kNodesPerBrush;
    const double sigma = std::max(1.5 * brushPx, 3.0) / nodePx;
    const auto radius = static_cast<std::int64_t>(4.0 * sigma + 0.5);
    const std::vector<double> kernel = gaussianKernel1D(sigma, radius);
    double power = 0.0;
    for (const double w : kernel) power += w * w;
    const NoiseKey key = on.key(kWobble);
    const auto last = static_cast<std::int64_t>(std::floor(static_cast<double>(on.size.height) / nodePx)) + 1;
    std::vector<double> nodes(static_cast<std::size_t>(last + 2)); // from node -1 on
    std::vector<double> noise(nodes.size() + kernel.size());       // from node -1 - radius on
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = gaussNoise(static_cast<std::int32_t>(static_cast<std::int64_t>(i) - 1 - radius), 0,
                              key.seed, key.layer);
    for (std::size_t i = 0; i < nodes.size(); ++i)
        for (std::size_t k = 0; k < kernel.size(); ++k) nodes[i] += kernel[k] * noise[i + k];

    const double phase = 2.0 * std::numbers::pi * GrainRNG(on.seed + kPhaseSeed).random();
    const double step = brushRaw > 1.0 ? std::numbers::pi / brushRaw : std::numbers::pi;
    for (std::size_t y = 0; y < rows.size(); ++y) {
        const double at = (static_cast<double>(y) + 0.5) / nodePx - 0.5;
        const auto below = static_cast<std::size_t>(std::floor(at) + 1.0);
        const double between = at - std::floor(at);
        const double wobble = std::lerp(nodes[below], nodes[below + 1], between) / std::sqrt(power);
        rows[y] =
            static_cast<float>(strength * std::sin(static_cast<double>(y) * step + phase + kWander * wobble));
    }
    return rows;
}

/// What a pixel leaves of strokes of this width: the mean of a sine over it, nothing from a whole period on.
double strokesLeft(double brushUm, double pxUm)
{
    const double half = 0.5 * std::numbers::pi * pxUm / std::max(brushUm, kMinPxUm);
    return half < std::numbers::pi ? std::sin(half) / half : 0.0;
}

void applyInk(Plane& amount, const Ground& on, const PaperTexture& texture, const OptNumber& inkRoller)
{
    const double r = std::clamp(inkRoller.value_or(texture.roller.value_or(0.0)), 0.0, 1.0);
    const double px = std::max(on.pxUm, kMinPxUm);
    // Half the mark's width; a roller's marks are wider and its surface calmer.
    const double brushUm = texture.brushMm.value_or(22.0) * (1.0 + 1.6 * r) * 1000.0 * 0.5;
    const double fineUm = texture.fineMm.value_or(0.55) * (1.0 + 2.0 * r) * 1000.0;
    const double drawnBrushUm = px * std::max(brushUm / px, 1.0),
                 drawnFineUm = px * std::max(fineUm / px, 0.6);
    const NoiseField brush =
        NoiseField::difference(on.size, 0.55 * drawnBrushUm, 0.95 * drawnBrushUm, px, on.key(kBrush));
    const NoiseField fine =
        NoiseField::difference(on.size, 0.5 * drawnFineUm, 1.4 * drawnFineUm, px, on.key(kInkFine));
    const double fineAmp = held(texture.fineAmp.value_or(0.85)) * (1.0 - 0.8 * r);
    const double strokes = held(texture.raster.value_or(0.22)) * (1.0 - r);
    // A sine of amplitude `strokes` has half its square for variance.
    const double norm = 1.0 / std::sqrt(1.0 + fineAmp * fineAmp + 0.5 * strokes * strokes);
    std::vector<float> rows = brushRows(on, brushUm, strokes * strokesLeft(brushUm, px));
    const double brushGain = norm * differencePixelGain(0.55 * brushUm, 0.95 * brushUm, px);
    const double fineGain = norm * fineAmp * differencePixelGain(0.5 * fineUm, 1.4 * fineUm, px);
    const FieldMix mix{static_cast<float>(on.amp), gainOf(brushGain, brush), gainOf(fineGain, fine)};
    const auto specks = static_cast<float>(held(texture.specks.value_or(0.16)));
    for (float& v : rows) v *= static_cast<float>(norm);

    float* values = amount.mutableData();
    parallelBands(amount.height, amount.width * 2, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows brushLines(brush), fineLines(fine);
        for (std::int64_t y = start; y < end; ++y)
            texture_ink(values + y * amount.width, brushLines.row(y), fineLines.row(y), mix,
                        rows[static_cast<std::size_t>(y)], specks, amount.width);
    });
}

void applyReticulation(Plane& amount, const Ground& on, const PaperTexture& texture)
{
    const double px = std::max(on.pxUm, kMinPxUm);
    const double cellUm = texture.cellUm.value_or(125.0), drawnUm = px * std::max(cellUm / px, 0.7);
    const NoiseField cells =
        NoiseField::difference(on.size, 0.45 * drawnUm, 1.15 * drawnUm, px, on.key(kReticulation));
    const FieldMix mix{static_cast<float>(on.amp),
                       gainOf(differencePixelGain(0.45 * cellUm, 1.15 * cellUm, px), cells)};
    float* values = amount.mutableData();
    parallelBands(amount.height, amount.width * 2, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows lines(cells);
        for (std::int64_t y = start; y < end; ++y)
            texture_reticulation(values + y * amount.width, lines.row(y), mix, amount.width);
    });
}

} // namespace

Plane AltPrint::applyTexture(Plane amount, const PaperProfile& paper, const RenderOptions& options,
                             std::uint64_t seed)
{
    if (!paper.texture || amount.count() == 0) return amount;
    const PaperTexture& texture = *paper.texture;
    const double amp = std::min(texture.amount.value_or(0.0) * options.printTexture, kMostAmp);
    const Ground on{amount.size(), options.printPxUm, amp, seed};
    if (!(on.amp > kLeastAmp)) return amount;
    const RenderProfiler::Scope booked("texture", amount.count());
    if (texture.kind == "fibre")
        applyFibre(amount, on, texture);
    else if (texture.kind == "ink")
        applyInk(amount, on, texture, options.inkRoller);
    else if (texture.kind == "reticulation")
        applyReticulation(amount, on, texture);
    return amount;
}

} // namespace tamlo
