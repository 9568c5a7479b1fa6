#include "core/sensitometry/plate_measure.h"

#include "core/film/emulsion/development.h"
#include "core/film/print/black_and_white.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using Sensitometry::PlateReport;

constexpr double kGrey = 0.18;
constexpr double kPitchUm = 100.0;
constexpr std::int64_t kWidth = 1010, kHeight = 760;
constexpr std::int64_t kInsidePx = 120, kRimPx = 20;

Plane densityOf(RGBImage light, const DevelopedFilm& film, const RenderOptions& options)
{
    return Film::bwNegativeDb(std::move(light), film, options, kPitchUm).density;
}

/// Pixels' distance from the nearest edge.
std::int64_t fromEdge(std::int64_t x, std::int64_t y)
{
    return std::min({x, y, kWidth - 1 - x, kHeight - 1 - y});
}

/// Mean over the pixels whose distance from the edge lies in least...most.
double meanBetween(const Plane& plane, std::int64_t least, std::int64_t most)
{
    double sum = 0.0, count = 0.0;
    for (std::int64_t y = 0; y < kHeight; ++y)
        for (std::int64_t x = 0; x < kWidth; ++x)
            if (const std::int64_t d = fromEdge(x, y); d >= least && d <= most) {
                sum += plane.at(x, y);
                ++count;
            }
    return sum / count;
}

template <typename Holds>
double shareOf(const Holds& holds)
{
    std::int64_t count = 0;
    for (std::int64_t i = 0; i < kWidth * kHeight; ++i) count += holds(static_cast<std::size_t>(i)) ? 1 : 0;
    return static_cast<double>(count) / static_cast<double>(kWidth * kHeight);
}

void measureEvenness(PlateReport& report, const Plane& exposed, double base)
{
    const double mean = meanBetween(exposed, kInsidePx, kWidth);
    double squares = 0.0, least = 1e9, most = -1e9;
    std::int64_t count = 0;
    for (std::int64_t y = kInsidePx; y < kHeight - kInsidePx; ++y)
        for (std::int64_t x = kInsidePx; x < kWidth - kInsidePx; ++x, ++count) {
            const double d = exposed.at(x, y) - mean;
            squares += d * d;
            least = std::min(least, d);
            most = std::max(most, d);
        }
    report.unevenness = std::sqrt(squares / static_cast<double>(count));
    report.thinnest = least;
    report.thickest = most;
    report.rim = meanBetween(exposed, 0, kRimPx - 1) - mean;
    const double half = base + (mean - base) / 2.0;
    report.bare = shareOf([&](std::size_t i) { return exposed.data[i] < half; });
}

/// A small light far above the plate's range: where what its halo adds is greatest, away from the light.
std::optional<double> measureRing(const DevelopedFilm& film, RenderOptions options)
{
    constexpr std::int64_t kSide = 401, kMiddle = kSide / 2, kBesidePx = 6;
    constexpr float kLight = 2e4f, kSurround = 0.02f;
    if (!film.film.halation || !(film.film.halation->glassMm.value_or(0.0) > 0.0)) return std::nullopt;
    options.platePour = 0.0;
    RGBImage light(kSide, kSide, Vec3f{kSurround, kSurround, kSurround});
    std::fill_n(light.mutableData() + (kMiddle * kSide + kMiddle) * 3, 3, kLight);
    DevelopedFilm plain = film;
    plain.film.halation->glassMm.reset();
    plain.film.adjacency.reset();
    plain.adjacency = 0.0;
    DevelopedFilm glass = plain;
    glass.film.halation->glassMm = film.film.halation->glassMm;
    const Plane with = densityOf(light, glass, options), without = densityOf(light, plain, options);
    double most = 1e-3; // density that is seen at all
    std::optional<double> ring;
    for (std::int64_t i = kBesidePx; i < kMiddle; ++i) {
        const double added = with.at(kMiddle + i, kMiddle) - without.at(kMiddle + i, kMiddle);
        if (added <= most) continue;
        most = added;
        ring = static_cast<double>(i) * kPitchUm / 1000.0;
    }
    return ring;
}

} // namespace

std::optional<PlateReport> Sensitometry::measurePlate(const FilmProfile& film, const RenderOptions& asked)
{
    if (!film.isCollodion() && !film.dryplate) return std::nullopt;
    RenderOptions options = asked;
    options.grainMult = options.halationMult = 0.0;
    const DevelopedFilm developed = applyFilmStateAndDevelopment(film, options);
    const auto even = [&](double light, const DevelopedFilm& plate) {
        const auto v = static_cast<float>(light);
        return densityOf(RGBImage(kWidth, kHeight, Vec3f{v, v, v}), plate, options);
    };
    DevelopedFilm clean = developed; // the same plate before anything has grown on it
    if (clean.film.isCollodion()) {
        if (!clean.film.collodion) clean.film.collodion.emplace();
        clean.film.collodion->crystal = 0.0;
    }
    const double base = developed.film.negative ? developed.film.negative->dmin : 0.0;
    PlateReport report;
    measureEvenness(report, even(kGrey, clean), base);
    const Plane dark = even(0.0, developed), unsprinkled = even(0.0, clean);
    report.veil = meanBetween(unsprinkled, kInsidePx, kWidth) - base;
    report.crystals = shareOf([&](std::size_t i) { return dark.data[i] - unsprinkled.data[i] >= 0.05f; });
    options.halationMult = asked.halationMult;
    report.ringMm = measureRing(developed, options);
    return report;
}

} // namespace tamlo
