#include "core/process/altprint/brushed_coat.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/image/ring_bands.h"
#include "core/image/rounding.h"
#include "core/process/altprint/alt_passes.h"
#include "core/process/altprint/coat_passes.h"
#include "core/process/noise/line_noise.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using AltPrint::CoatProfiles;
using Line = std::vector<float>;

constexpr double kWildest = 100.0;    // far beyond a stroke that keeps its margin
constexpr double kWidestMargin = 0.1; // share of the long side: 3 cm of brushed coat round a print of 30 cm

/// A sigma in pixels of a side of `length`, in draws.
double inDraws(double sigmaPx, std::int64_t length)
{
    return sigmaPx * static_cast<double>(kLineDraws) / static_cast<double>(length);
}

/// How far a stroke stays from its side of the canvas: a level of the hand, a slow drift and the bristles.
Line drawEdge(std::int64_t length, double slowPx, double m, double rough, GrainRNG& rng)
{
    const double base = m * (0.26 + 0.3 * rng.random());
    const Line a = unitNoise1D(length, inDraws(slowPx, length), rng);
    const Line b = unitNoise1D(length, inDraws(std::max(0.22 * m, 4.0), length), rng);
    Line edge(a.size());
    for (std::size_t i = 0; i < edge.size(); ++i)
        edge[i] = static_cast<float>(
            std::clamp(base + m * rough * (0.3 * a[i] + 0.055 * b[i]), 0.06 * m, 0.96 * m));
    return edge;
}

Line fromFarSide(Line edge, std::int64_t last)
{
    for (float& v : edge) v = static_cast<float>(last) - v;
    return edge;
}

/// A mask that runs from 0 to 1 two pixels inside both ends, softened.
Line cleanEdge(std::int64_t length)
{
    constexpr std::int64_t kInset = 2;
    constexpr double kSoftPx = 1.2;
    Plane line(length, 1);
    float* values = line.mutableData();
    for (std::int64_t i = kInset; i < length - kInset; ++i) values[i] = 1.0f;
    const Plane soft = gaussianFilter1D(std::move(line), kSoftPx, FilterAxis::x, EdgeMode::nearest);
    return {soft.data.begin(), soft.data.end()};
}

CoatRow rowOf(const CoatProfiles& coat, std::int64_t y)
{
    const auto i = static_cast<std::size_t>(y);
    return {coat.top.data(),     coat.bottom.data(),  coat.streakX.data(), static_cast<float>(y),
            coat.left[i],        coat.right[i],       coat.streakY[i],     coat.band,
            1.0f / coat.maskDen, 1.0f / coat.fadeDen, coat.streakK};
}

/// Columns first...end - 1 of the mask along row y.
void maskColumns(const CoatProfiles& coat, std::int64_t y, float* mask, std::int64_t first, std::int64_t end)
{
    if (!coat.clean) return coat_mask(mask, rowOf(coat, y), first, end);
    const float down = coat.edgeY[static_cast<std::size_t>(y)];
    for (std::int64_t x = first; x < end; ++x) mask[x] = coat.edgeX[static_cast<std::size_t>(x)] * down;
}

/// How far from the canvas's sides the mask is below 1.
std::int64_t maskReach(const CoatProfiles& coat)
{
    constexpr std::int64_t kCleanReach = 8;
    return coat.clean ? kCleanReach : coat.m + 1;
}

} // namespace

std::string AltPrint::coatStyle(const PaperProfile& paper, const RenderOptions& options)
{
    if (options.coat && !options.coat->empty()) return *options.coat;
    return paper.coat ? paper.coat->style.value_or("none") : "none";
}

float AltPrint::coatBand(const PaperProfile& paper)
{
    constexpr double kBand = 0.82;
    return static_cast<float>(std::clamp(paper.coat ? paper.coat->band.value_or(kBand) : kBand, 0.0, 1.0));
}

std::int64_t AltPrint::coatMarginPx(Size picture, const PaperProfile& paper, const RenderOptions& options)
{
    constexpr double kMargin = 0.045;
    if (coatStyle(paper, options) == "none") return 0;
    const double margin = paper.coat ? paper.coat->margin.value_or(kMargin) : kMargin;
    const double longSide = static_cast<double>(std::max(picture.width, picture.height));
    return roundAway(std::clamp(margin, 0.0, kWidestMargin) * longSide);
}

Size AltPrint::coatedSize(Size picture, const PaperProfile& paper, const RenderOptions& options)
{
    const std::int64_t m = coatMarginPx(picture, paper, options);
    return {picture.width + 2 * m, picture.height + 2 * m};
}

GrainRNG AltPrint::coatRNG(const RenderOptions& options)
{
    return Seeds::streamRNG(options, Seeds::SeedStream::print, 0xC0A7);
}

std::optional<CoatProfiles> AltPrint::coatProfiles(Size picture, const PaperProfile& paper,
                                                   const RenderOptions& options, GrainRNG& rng)
{
    CoatProfiles coat;
    coat.m = coatMarginPx(picture, paper, options);
    if (coat.m < 1) return std::nullopt;
    coat.band = coatBand(paper);
    const std::int64_t w = picture.width + 2 * coat.m, h = picture.height + 2 * coat.m;
    coat.clean = coatStyle(paper, options) == "clean";
    if (coat.clean) {
        coat.edgeX = cleanEdge(w);
        coat.edgeY = cleanEdge(h);
        return coat;
    }
    const double chosen = options.coatRough.value_or(0.0);
    const double drawn = chosen != 0.0 ? chosen : paper.coat ? paper.coat->rough.value_or(1.0) : 1.0;
    const double rough = std::clamp(drawn, -kWildest, kWildest);
    const double m = static_cast<double>(coat.m);
    const double slowX = std::max(static_cast<double>(w) / 6.0, 3.0);
    const double slowY = std::max(static_cast<double>(h) * 0.25, 3.0);
    const double streakPx = std::max(0.5 * m, 4.0);
    coat.top = drawEdge(w, slowX, m, rough, rng);
    coat.bottom = fromFarSide(drawEdge(w, slowX, m, rough, rng), h - 1);
    coat.left = drawEdge(h, slowY, m, rough, rng);
    coat.right = fromFarSide(drawEdge(h, slowY, m, rough, rng), w - 1);
    // A stroke runs from side to side: what it lays on varies across it far more than along it.
    coat.streakX = unitNoise1D(w, inDraws(streakPx, w), rng);
    coat.streakY = readAlong(smoothNormals(inDraws(streakPx, h), rng), h, 1.0);
    coat.maskDen = static_cast<float>(std::max(0.06 * m, 1.2));
    coat.fadeDen = static_cast<float>(std::max(0.75 * m, 1.0));
    coat.streakK = static_cast<float>(0.1 * rough);
    return coat;
}

Plane AltPrint::coatCanvas(const Plane& amount, const CoatProfiles& coat)
{
    const RenderProfiler::Scope booked("coat", amount.count());
    Plane canvas(amount.width + 2 * coat.m, amount.height + 2 * coat.m);
    float* values = canvas.mutableData();
    inRing(canvas.size(), coat.m, [&](std::int64_t y, std::int64_t first, std::int64_t end) {
        float* row = values + y * canvas.width;
        if (coat.clean)
            std::fill(row + first, row + end, coat.band);
        else
            alt_coat(row, rowOf(coat, y), first, end);
    });
    parallelBands(amount.height, amount.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            std::copy_n(amount.row(y), amount.width, values + (y + coat.m) * canvas.width + coat.m);
    });
    return canvas;
}

Plane AltPrint::maskAmount(Plane canvas, const CoatProfiles& coat)
{
    const RenderProfiler::Scope booked("coat", canvas.count());
    float* values = canvas.mutableData();
    inRing(canvas.size(), maskReach(coat), [&](std::int64_t y, std::int64_t first, std::int64_t end) {
        Line mask(static_cast<std::size_t>(canvas.width));
        maskColumns(coat, y, mask.data(), first, end);
        for (std::int64_t x = first; x < end; ++x)
            values[y * canvas.width + x] *= mask[static_cast<std::size_t>(x)];
    });
    return canvas;
}

RGBImage AltPrint::maskPrint(RGBImage canvas, const CoatProfiles& coat, const Vec3f& base)
{
    const RenderProfiler::Scope booked("coat", canvas.pixelCount());
    float* pixels = canvas.mutableData();
    inRing(canvas.size(), maskReach(coat), [&](std::int64_t y, std::int64_t first, std::int64_t end) {
        Line mask(static_cast<std::size_t>(canvas.width));
        maskColumns(coat, y, mask.data(), first, end);
        composite_run(pixels + (y * canvas.width + first) * 3, mask.data() + first, end - first, base);
    });
    return canvas;
}

} // namespace tamlo
