#include "core/process/gum/gum_layers.h"

#include "core/film/print/black_and_white_passes.h"
#include "core/film/print/print.h"
#include "core/image/render_profiler.h"
#include "core/image/rounding.h"
#include "core/process/altprint/alt_passes.h"
#include "core/process/altprint/alt_steps.h"
#include "core/process/altprint/alt_texture.h"
#include "core/process/altprint/brushed_coat.h"
#include "core/process/altprint/paper_base.h"
#include "core/process/gum/gum_passes.h"
#include "core/process/relief/relief.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr double kMostDensity = 1e6; // far beyond any pigment, and still a number to reckon with
constexpr std::uint64_t kShiftSalt = 0x5E6157;
constexpr std::uint64_t kLayerSeedStep = 0x632BE5AB;

/// Channel that a layer prints from; 3 for the brightness.
std::size_t sourceOf(const PaperLayer& layer)
{
    if (layer.from == "r") return 0;
    if (layer.from == "g") return 1;
    return layer.from == "b" ? 2 : 3;
}

double pigmentOf(const PaperLayer& layer, std::size_t channel)
{
    return channel < layer.pigment.size() ? layer.pigment[channel] : 0.0;
}

/// The profile with the layer's own curve.
PaperProfile layerPaper(const PaperProfile& paper, const PaperLayer& layer)
{
    PaperProfile own = paper;
    own.layers.reset();
    if (layer.dmin) own.dmin = layer.dmin;
    if (layer.dmax) own.dmax = layer.dmax;
    if (layer.gamma) own.gamma = layer.gamma;
    if (layer.toe) own.toe = layer.toe;
    return own;
}

/// The negative as one layer sees it: a colour separation, or the only plane that there is.
Plane separation(const AltPrint::Negative& negative, const PaperLayer& layer)
{
    constexpr std::array<Vec3f, 4> kWeights{
        {{1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}, {0.3f, 0.55f, 0.15f}}};
    if (negative.db.pixelCount() == 0) return negative.density;
    const RenderProfiler::Scope booked("print", negative.db.pixelCount());
    Plane plane(negative.db.width, negative.db.height);
    dot3(plane, negative.db, kWeights[sourceOf(layer)], {});
    return plane;
}

/// What the layers of one print share.
struct Coats {
    const AltPrint::Negative& negative;
    const AltPrint::Job& job;
    const Plane* window;
    std::vector<std::pair<double, double>> shiftsMm;
    std::uint64_t seed;
    GrainRNG coatRng;
};

/// Amount of pigment that layer i leaves on the canvas.
Plane layerAmount(std::size_t i, Coats& coats)
{
    const RenderOptions& options = coats.job.options;
    const PaperLayer& layer = (*coats.job.paper.layers)[i];
    const PaperProfile paper = layerPaper(coats.job.paper, layer);
    const HDCurve curve = Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);
    Plane amount = AltPrint::printAmount(separation(coats.negative, layer), coats.negative.d0, curve,
                                         options.printEv + layer.ev.value_or(0.0));
    amount = AltPrint::shapeAmount(std::move(amount), paper);
    amount = AltPrint::applyTexture(std::move(amount), paper, options, coats.seed + (i + 1) * kLayerSeedStep);
    const auto shift = AltPrint::layerShiftPx(coats.shiftsMm[i], options.printPxUm);
    if (shift != std::pair<std::int64_t, std::int64_t>{}) amount = AltPrint::shiftEdge(amount, shift);
    if (coats.window) alt_window(amount, *coats.window, AltPrint::coatBand(paper));
    const auto coat = AltPrint::coatProfiles(amount.size(), paper, options, coats.coatRng);
    if (!coat) return amount;
    return AltPrint::maskAmount(AltPrint::coatCanvas(amount, *coat), *coat);
}

} // namespace

std::optional<Vec3d> AltPrint::solve3x3(std::array<std::array<double, 4>, 3> rows)
{
    constexpr double kSingular = 1e-12;
    for (std::size_t k = 0; k < 3; ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k + 1; i < 3; ++i)
            if (std::abs(rows[i][k]) > std::abs(rows[pivot][k])) pivot = i;
        if (!(std::abs(rows[pivot][k]) >= kSingular)) return std::nullopt;
        std::swap(rows[k], rows[pivot]);
        for (std::size_t i = k + 1; i < 3; ++i) {
            const double factor = rows[i][k] / rows[k][k];
            for (std::size_t j = k; j < 4; ++j) rows[i][j] -= factor * rows[k][j];
        }
    }
    Vec3d x{};
    for (std::size_t k = 3; k-- > 0;) {
        x[k] = rows[k][3];
        for (std::size_t j = k + 1; j < 3; ++j) x[k] -= rows[k][j] * x[j];
        x[k] /= rows[k][k];
    }
    return x;
}

std::vector<double> AltPrint::layerGains(const PaperProfile& paper)
{
    constexpr double kNeutral = 1.6, kLeastGain = 0.05;
    if (!paper.layers) return {};
    std::vector<double> gains;
    std::vector<std::size_t> colours;
    for (std::size_t i = 0; i < paper.layers->size(); ++i) {
        gains.push_back((*paper.layers)[i].amount.value_or(1.0));
        if (sourceOf((*paper.layers)[i]) < 3) colours.push_back(i);
    }
    if (colours.size() != 3) return gains;
    std::array<std::array<double, 4>, 3> rows{};
    for (std::size_t c = 0; c < 3; ++c) {
        for (std::size_t j = 0; j < 3; ++j) rows[c][j] = pigmentOf((*paper.layers)[colours[j]], c);
        rows[c][3] = paper.dmax.value_or(kNeutral);
    }
    const auto solved = solve3x3(rows);
    if (!solved) return gains;
    for (std::size_t j = 0; j < 3; ++j) gains[colours[j]] *= std::max((*solved)[j], kLeastGain);
    return gains;
}

std::vector<std::pair<double, double>> AltPrint::layerShiftsMm(const PaperProfile& paper,
                                                               const RenderOptions& options)
{
    std::vector<std::pair<double, double>> shifts;
    if (!paper.layers) return shifts;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::print, kShiftSalt);
    for (const PaperLayer& layer : *paper.layers) {
        const double s = layer.shiftMm.value_or(0.0);
        if (!(s > 0.0)) {
            shifts.emplace_back(0.0, 0.0);
            continue;
        }
        const double dy = s * rng.nextNormal();
        shifts.emplace_back(dy, s * rng.nextNormal());
    }
    return shifts;
}

std::pair<std::int64_t, std::int64_t> AltPrint::layerShiftPx(std::pair<double, double> shiftMm, double pxUm)
{
    constexpr double kFar = 1e9; // beyond any sheet
    const auto pixels = [&](double mm) {
        return roundAway(std::clamp(mm * 1000.0 / std::max(pxUm, 1e-6), -kFar, kFar));
    };
    return {pixels(shiftMm.first), pixels(shiftMm.second)};
}

Plane AltPrint::shiftEdge(const Plane& plane, std::pair<std::int64_t, std::int64_t> shift)
{
    Plane out(plane.width, plane.height);
    plane_shift_edge(out, plane, shift.first, std::clamp(shift.second, -plane.width, plane.width));
    return out;
}

RGBImage Film::renderAltLayers(const AltPrint::Negative& negative, const AltPrint::Job& job)
{
    const PaperProfile& paper = job.paper;
    const RenderOptions& options = job.options;
    if (!paper.layers || paper.layers->empty()) return {};
    const Size picture = negative.db.pixelCount() > 0 ? negative.db.size() : negative.density.size();
    const Plane* window = job.windowMask && job.windowMask->size() == picture ? job.windowMask : nullptr;
    const bool coated = AltPrint::coatStyle(paper, options) != "none";
    Coats coats{negative,
                job,
                coated ? window : nullptr,
                AltPrint::layerShiftsMm(paper, options),
                AltPrint::printSeed(options),
                AltPrint::coatRNG(options)};

    const std::vector<double> gains = AltPrint::layerGains(paper);
    const Size canvas = AltPrint::coatedSize(picture, paper, options);
    RGBImage image(canvas.width, canvas.height); // densities until the last coat is on
    Plane sum(canvas.width, canvas.height);
    for (std::size_t i = 0; i < gains.size(); ++i) {
        const Plane amount = layerAmount(i, coats);
        const RenderProfiler::Scope booked("gum coats", image.pixelCount());
        Vec3f pigment{};
        for (std::size_t c = 0; c < 3; ++c)
            pigment[c] = static_cast<float>(
                std::clamp(gains[i] * pigmentOf((*paper.layers)[i], c), -kMostDensity, kMostDensity));
        gum_accum(image, sum, amount, pigment);
    }
    const Vec3f base = AltPrint::resolveBase(paper, options);
    RenderProfiler::cpu("gum coats", image.pixelCount(),
                        [&] { gum_finish(image, sum, base, 1.0f / static_cast<float>(gains.size())); });
    image = AltPrint::applyRelief(std::move(image), sum, paper, options);
    if (window && !coated) composite_mask(image, *window, base);
    alt_clamp(image);
    return image;
}

RGBImage Film::renderGum(RGBImage light, const DevelopedFilm& film, const AltPrint::Job& job, double pxUm)
{
    return renderAltLayers(AltPrint::developNegative(std::move(light), film, job.options, pxUm), job);
}

} // namespace tamlo
