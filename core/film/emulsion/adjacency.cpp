#include "core/film/emulsion/adjacency.h"

#include "core/film/emulsion/emulsion_passes.h"
#include "core/image/blur_bands.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

constexpr double kMinStrength = 0.0001;
constexpr double kMinSigmaPx = 0.8;
constexpr double kUnlimitedSat = 5.0; // no film is so dense that a ceiling this high would show
constexpr double kMaxStrength = 1e6;  // 32-bit floats carry it without overflow

struct EdgePass {
    double sigmaPx;
    AdjacencyParams params;
};

EdgePass edgePass(double k, double sigmaPx, double sat)
{
    k = std::min(k, kMaxStrength);
    sigmaPx = std::max(sigmaPx, kMinSigmaPx);
    if (sat >= kUnlimitedSat) return {sigmaPx, {static_cast<float>(k), 0.0f}};
    sat = std::max(sat, 1e-6); // its inverse stays a 32-bit float
    return {sigmaPx, {static_cast<float>(k * sat), static_cast<float>(1.0 / sat)}};
}

std::vector<EdgePass> planAdjacency(const DevelopedFilm& film, double pxUm)
{
    std::vector<EdgePass> passes;
    pxUm = std::max(pxUm, 1e-6);
    if (film.adjacency > kMinStrength && film.adjacencySat > 0.0)
        passes.push_back(edgePass(film.adjacency, film.adjacencyUm / pxUm, film.adjacencySat));
    if (!film.film.adjacency) return passes;
    const FilmAdjacency& own = *film.film.adjacency;
    const double k = own.k.value_or(0.0), sigmaPx = own.um.value_or(150.0) / pxUm,
                 sat = own.sat.value_or(0.6);
    if (k > kMinStrength && sigmaPx >= 1.0 && sat > 0.0) passes.push_back(edgePass(k, sigmaPx, sat));
    return passes;
}

template <typename Image>
Image withEdges(Image density, std::int64_t channels, const DevelopedFilm& film, double pxUm)
{
    for (const EdgePass& pass : planAdjacency(film, pxUm)) {
        float* samples = density.mutableData();
        const std::int64_t rowSamples = density.width * channels;
        blurInBands(
            density.size(), channels, pass.sigmaPx,
            [&](std::int64_t y, float* to) { std::copy_n(samples + y * rowSamples, rowSamples, to); },
            [&](std::int64_t y, const float* blurred) {
                adjacency_row(samples + y * rowSamples, blurred, rowSamples, pass.params);
            });
    }
    return density;
}

} // namespace

RGBImage Film::applyAdjacency(RGBImage density, const DevelopedFilm& film, double pxUm)
{
    const RenderProfiler::Scope booked("adjacency", density.pixelCount());
    return withEdges(std::move(density), 3, film, pxUm);
}

Plane Film::applyAdjacency(Plane density, const DevelopedFilm& film, double pxUm)
{
    const RenderProfiler::Scope booked("adjacency", density.width * density.height);
    return withEdges(std::move(density), 1, film, pxUm);
}

} // namespace tamlo
