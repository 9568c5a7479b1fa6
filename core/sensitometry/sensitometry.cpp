#include "core/sensitometry/sensitometry.h"

#include "core/film/emulsion/development.h"
#include "core/film/light/emulsion_input.h"
#include "core/film/print/black_and_white.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/slide.h"
#include "core/image/tamlo_error.h"
#include "core/pipeline/film_dispatch.h"
#include "core/process/press/repro.h"
#include "core/sensitometry/instant_measure.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace tamlo {
namespace {

using namespace Sensitometry;

constexpr double kGrey = 0.18;
constexpr double kFarApartUm = 1e4; // a pixel so large that no step of a wedge reaches the next
constexpr int kStepPx = 8;

/// Densities of a target, one plane a layer.
using Densities = std::vector<Plane>;

/// A film on the bench: exposes targets and reads densities.
class Bench {
public:
    Bench(const FilmProfile& film, RenderOptions options) : options_(std::move(options))
    {
        // The film's own light: its balance is no part of its curves.
        options_.wbMode = "custom";
        options_.crop.reset();
        // Targets lie in the middle of a plate, away from how it was coated.
        options_.platePour = 0.0;
        film_ = applyFilmStateAndDevelopment(film, options_);
        if (film_.film.isCollodion()) {
            if (!film_.film.collodion) film_.film.collodion.emplace();
            film_.film.collodion->edgeMm = 0.0;
        }
    }

    const DevelopedFilm& film() const { return film_; }
    const RenderOptions& options() const { return options_; }
    bool isSlide() const { return film_.film.isSlide(); }

    /// Units: pxUm micrometres of film a pixel. grain, halation: multiples of the options' own amount.
    Densities expose(RGBImage light, double pxUm, double grain, double halation) const
    {
        RenderOptions options = options_;
        options.grainMult *= grain;
        options.halationMult *= halation;
        options.formatLongUm = pxUm * static_cast<double>(light.longSide());
        light = Film::applyEmulsion(std::move(light), film_.film, options.interlayer, options.wbMode);
        if (film_.film.isBW() || film_.film.isCollodion())
            return {Film::bwNegativeDb(std::move(light), film_, options, pxUm).density};
        if (film_.film.isInstant()) return instantDensities(std::move(light), film_, options, pxUm);
        RGBImage density;
        Vec3f base{};
        if (isSlide()) {
            density = Film::slideDensity(std::move(light), film_, options, pxUm).density;
        } else {
            Film::ColorNegative negative = Film::colorNegativeDb(std::move(light), film_, options, pxUm);
            density = std::move(negative.db);
            base = negative.d0;
        }
        Densities planes;
        for (int c = 0; c < 3; ++c) {
            planes.push_back(density.plane(c));
            float* to = planes.back().mutableData();
            for (std::int64_t i = 0; i < planes.back().count(); ++i)
                to[i] += base[static_cast<std::size_t>(c)];
        }
        return planes;
    }

private:
    DevelopedFilm film_;
    RenderOptions options_;
};

RGBImage target(std::int64_t width, std::int64_t height, const std::function<double(std::int64_t)>& lightAt)
{
    RGBImage image(width, height);
    float* to = image.mutableData();
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            std::fill_n(to + (y * width + x) * 3, 3, static_cast<float>(lightAt(x)));
    return image;
}

/// Even patches side by side, `kStepPx` wide.
RGBImage patches(const std::vector<double>& logExposures)
{
    return target(static_cast<std::int64_t>(logExposures.size()) * kStepPx, kStepPx, [&](std::int64_t x) {
        return kGrey * std::pow(10.0, logExposures[static_cast<std::size_t>(x / kStepPx)]);
    });
}

/// Reads the middle of each patch.
template <typename Value>
std::vector<double> readPatches(std::size_t count, Value&& valueAt)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(valueAt(static_cast<std::int64_t>(i) * kStepPx + kStepPx / 2, kStepPx / 2));
    return values;
}

std::vector<double> ramp(double from, double to, double step)
{
    std::vector<double> values;
    for (int i = 0; from + i * step <= to + 1e-9; ++i) values.push_back(from + i * step);
    return values;
}

std::vector<double> wedge()
{
    const double half = kStepLogE * (kWedgeSteps - 1) / 2.0;
    return ramp(-half, half, kStepLogE);
}

/// Layers weigh as the eye weighs light (ITU-R BT.709 luminance).
constexpr Vec3d kLuminance{0.2126, 0.7152, 0.0722};

double visual(const Densities& planes, std::int64_t x, std::int64_t y)
{
    if (planes.size() == 1) return planes[0].at(x, y);
    double sum = 0.0;
    for (std::size_t c = 0; c < 3; ++c) sum += kLuminance[c] * planes[c].at(x, y);
    return sum;
}

/// Where a table of y over x, rising or falling, first crosses a value; linear between its entries.
std::optional<double> crossing(const std::vector<double>& x, const std::vector<double>& y, double value)
{
    for (std::size_t i = 1; i < y.size(); ++i) {
        const double a = y[i - 1] - value, b = y[i] - value;
        if (a == b || a * b > 0.0) continue;
        return x[i - 1] + (x[i] - x[i - 1]) * a / (a - b);
    }
    return std::nullopt;
}

/// Slope of the least-squares line through four steps from i on.
double slopeFrom(const std::vector<double>& density, std::size_t i)
{
    const double rise = 3.0 * (density[i + 3] - density[i]) + density[i + 2] - density[i + 1];
    return rise / (10.0 * kStepLogE);
}

std::vector<Layer> measureLayers(const Bench& bench)
{
    constexpr double kDark = -9.0, kLight = 6.0; // far beyond any curve
    const std::vector<double> steps = wedge(), fine = ramp(-4.5, 4.5, 0.01);
    const Densities ends = bench.expose(patches({kDark, kLight}), kFarApartUm, 0.0, 0.0);
    const Densities onWedge = bench.expose(patches(steps), kFarApartUm, 0.0, 0.0);
    const Densities onFine = bench.expose(patches(fine), kFarApartUm, 0.0, 0.0);

    constexpr const char* kNames[] = {"red", "green", "blue"};
    std::vector<Layer> layers;
    for (std::size_t c = 0; c < onWedge.size(); ++c) {
        const auto read = [c](const Densities& planes, std::size_t count) {
            return readPatches(count, [&](auto x, auto y) { return double{planes[c].at(x, y)}; });
        };
        Layer layer;
        layer.name = onWedge.size() == 1 ? "silver" : kNames[c];
        layer.density = read(onWedge, steps.size());
        const std::vector<double> limits = read(ends, 2);
        layer.dmin = std::min(limits[0], limits[1]);
        layer.dmax = std::max(limits[0], limits[1]);
        for (std::size_t i = 0; i + 3 < steps.size(); ++i) {
            const double slope = slopeFrom(layer.density, i);
            if (std::abs(slope) > std::abs(layer.gamma)) layer.gamma = slope;
        }
        layer.speedPoint = crossing(fine, read(onFine, fine.size()), layer.dmin + 0.10);
        layers.push_back(std::move(layer));
    }
    return layers;
}

/// Exposure of an even patch whose visual density is 1.0 above its least.
std::optional<double> exposureOfNetOne(const Bench& bench)
{
    const std::vector<double> fine = ramp(-4.5, 4.5, 0.01);
    const Densities planes = bench.expose(patches(fine), kFarApartUm, 0.0, 0.0);
    const std::vector<double> density =
        readPatches(fine.size(), [&](auto x, auto y) { return visual(planes, x, y); });
    const double least = *std::min_element(density.begin(), density.end());
    return crossing(fine, density, least + 1.0);
}

/// Offsets of the pixels whose centres lie in a round aperture about a pixel's corner.
std::vector<std::pair<int, int>> disc(double diameterPx)
{
    const double r = diameterPx / 2.0;
    const int reach = static_cast<int>(std::ceil(r));
    std::vector<std::pair<int, int>> inside;
    for (int y = -reach; y < reach; ++y)
        for (int x = -reach; x < reach; ++x)
            if (std::hypot(x + 0.5, y + 0.5) <= r) inside.emplace_back(x, y);
    return inside;
}

/// Variance of the means of apertures laid half a diameter apart.
double variance(const Plane& density, double diameterPx)
{
    const std::vector<std::pair<int, int>> inside = disc(diameterPx);
    const auto reach = static_cast<std::int64_t>(std::ceil(diameterPx / 2.0));
    double sum = 0.0, squares = 0.0;
    std::int64_t count = 0;
    for (std::int64_t y = reach; y + reach <= density.height; y += reach)
        for (std::int64_t x = reach; x + reach <= density.width; x += reach) {
            double mean = 0.0;
            for (const auto& [dx, dy] : inside) mean += density.at(x + dx, y + dy);
            mean /= static_cast<double>(inside.size());
            sum += mean;
            squares += mean * mean;
            ++count;
        }
    const double n = static_cast<double>(count);
    return std::max((squares - sum * sum / n) / (n - 1.0), 0.0);
}

/// Standard deviation as the layers' own densitometer channels read it, their variances weighed by the eye:
/// layers of one graininess measure that graininess, however many they are.
double deviation(const Densities& planes, double diameterPx)
{
    double sum = 0.0;
    for (std::size_t c = 0; c < planes.size(); ++c)
        sum += (planes.size() == 1 ? 1.0 : kLuminance[c]) * variance(planes[c], diameterPx);
    return std::sqrt(sum);
}

std::optional<Granularity> measureGranularity(const Bench& bench)
{
    constexpr double kPitchUm = 4.0;
    constexpr std::int64_t kSidePx = 1024;
    const std::optional<double> logExposure = exposureOfNetOne(bench);
    if (!logExposure) return std::nullopt;
    const double light = kGrey * std::pow(10.0, *logExposure);
    const Densities planes =
        bench.expose(target(kSidePx, kSidePx, [&](std::int64_t) { return light; }), kPitchUm, 1.0, 0.0);
    Granularity result;
    for (std::size_t i = 0; i < kAperturesUm.size(); ++i) {
        const double areaUm2 = std::numbers::pi * kAperturesUm[i] * kAperturesUm[i] / 4.0;
        const double sigma = deviation(planes, kAperturesUm[i] / kPitchUm);
        result.rms[i] = 1000.0 * sigma;
        result.selwyn[i] = sigma * std::sqrt(2.0 * areaUm2);
    }
    return result;
}

/// Half the swing of visual density between two lights, as a pattern too coarse to suffer has it.
double coarseSwing(const Bench& bench, double modulation)
{
    const Densities planes = bench.expose(
        patches({std::log10(1.0 - modulation), std::log10(1.0 + modulation)}), kFarApartUm, 0.0, 0.0);
    const std::vector<double> d = readPatches(2, [&](auto x, auto y) { return visual(planes, x, y); });
    return std::abs(d[1] - d[0]) / 2.0;
}

/// Amplitude of the visual density's cosine at a sine target's own frequency.
double sineSwing(const Bench& bench, double cyclesPerMm, double modulation)
{
    constexpr double kPitchUm = 1.0;
    const int cycles = std::max(6, static_cast<int>(std::lround(cyclesPerMm)));
    const auto width = static_cast<std::int64_t>(std::lround(cycles * 1000.0 / (cyclesPerMm * kPitchUm)));
    const double turn = 2.0 * std::numbers::pi * cycles / static_cast<double>(width);
    const Densities planes = bench.expose(target(width, 4,
                                                 [&](std::int64_t x) {
                                                     const double phase =
                                                         turn * (static_cast<double>(x) + 0.5);
                                                     return kGrey * (1.0 + modulation * std::cos(phase));
                                                 }),
                                          kPitchUm, 0.0, 0.0);
    double re = 0.0, im = 0.0;
    for (std::int64_t x = 0; x < width; ++x) {
        const double phase = turn * (static_cast<double>(x) + 0.5), d = visual(planes, x, 2);
        re += d * std::cos(phase);
        im += d * std::sin(phase);
    }
    return 2.0 * std::hypot(re, im) / static_cast<double>(width);
}

std::vector<MTFPoint> measureMTF(const Bench& bench)
{
    constexpr double kModulation = 0.1; // small enough for a straight piece of curve
    const double coarse = coarseSwing(bench, kModulation);
    std::vector<MTFPoint> points;
    // The pod of instant film spreads its dyes over tenths of a millimetre.
    if (bench.film().film.isInstant())
        for (const double f : {0.25, 0.5, 1.0, 1.5})
            points.push_back({f, sineSwing(bench, f, kModulation) / coarse});
    for (const double f : {2.5, 5.0, 7.5, 10.0, 12.5, 15.0, 20.0, 25.0, 30.0, 40.0, 50.0, 60.0, 80.0, 100.0,
                           125.0, 150.0, 200.0})
        points.push_back({f, sineSwing(bench, f, kModulation) / coarse});
    return points;
}

/// Between two points, straight on log-log axes.
std::optional<double> frequencyOfHalf(const std::vector<MTFPoint>& mtf)
{
    std::vector<double> f, r;
    for (const MTFPoint& p : mtf) {
        f.push_back(std::log(p.cyclesPerMm));
        r.push_back(std::log(std::max(p.response, 1e-6)));
    }
    const auto half = crossing(f, r, std::log(0.5));
    return half ? std::optional(std::exp(*half)) : std::nullopt;
}

double measureOvershoot(const Bench& bench)
{
    constexpr double kPitchUm = 2.0, kHalf = 0.5, kDouble = 2.0;
    constexpr std::int64_t kWidth = 1200;
    const Densities planes = bench.expose(
        target(kWidth, 4, [&](std::int64_t x) { return kGrey * (x < kWidth / 2 ? kHalf : kDouble); }),
        kPitchUm, 0.0, 0.0);
    const bool denseFirst = visual(planes, 2, 2) > visual(planes, kWidth - 3, 2);
    const double dense = visual(planes, denseFirst ? 2 : kWidth - 3, 2);
    const double thin = visual(planes, denseFirst ? kWidth - 3 : 2, 2);
    double peak = dense;
    for (std::int64_t x = 0; x < kWidth; ++x) peak = std::max(peak, visual(planes, x, 2));
    return (peak - dense) / (dense - thin);
}

/// A strip far brighter than its dim surround: what halation adds beside it, as exposure of the layer that
/// takes most of it.
std::optional<double> measureHalation(const Bench& bench)
{
    constexpr double kPitchUm = 8.0, kSurround = 0.05, kStrip = 20.0;
    constexpr std::int64_t kWidth = 1024, kStripPx = 32, kEdge = kWidth / 2 + kStripPx / 2;
    const auto strip = [&](std::int64_t x) {
        return std::abs(x - kWidth / 2) <= kStripPx / 2 ? kStrip : kSurround;
    };
    const std::vector<double> fine = ramp(-3.0, 3.0, 0.005);
    const Densities table = bench.expose(patches(fine), kFarApartUm, 0.0, 0.0);
    const Densities without = bench.expose(target(kWidth, 4, strip), kPitchUm, 0.0, 0.0);
    const Densities with = bench.expose(target(kWidth, 4, strip), kPitchUm, 0.0, 1.0);

    std::vector<double> distance, best;
    for (std::int64_t x = kEdge + 3; x < kWidth; ++x)
        distance.push_back(static_cast<double>(x - kEdge) * kPitchUm);
    for (std::size_t c = 0; c < table.size(); ++c) {
        const std::vector<double> densities =
            readPatches(fine.size(), [&](auto x, auto y) { return double{table[c].at(x, y)}; });
        const auto exposure = [&](double d) {
            return std::pow(10.0, crossing(fine, densities, d).value_or(0.0));
        };
        std::vector<double> halo;
        for (std::int64_t x = kEdge + 3; x < kWidth; ++x)
            halo.push_back(exposure(with[c].at(x, 2)) - exposure(without[c].at(x, 2)));
        if (best.empty() || halo.front() > best.front()) best = std::move(halo);
    }
    constexpr double kSeen = 1e-4;
    if (best.empty() || best.front() < kSeen) return std::nullopt;
    return crossing(distance, best, best.front() / 10.0);
}

double reflection(const RGBImage& print, std::int64_t x, std::int64_t y)
{
    const Vec3f v = print.pixel(x, y);
    const double light = kLuminance[0] * v[0] + kLuminance[1] * v[1] + kLuminance[2] * v[2];
    return -std::log10(std::max(light, 1e-5));
}

/// ISO 6846: the range of log exposure on the paper from 0.04 above its white to nine tenths of its deepest
/// net density, times 100. The exposure of the paper is the film's density, seen through.
std::optional<double> isoRange(std::vector<double> filmDensity, std::vector<double> printDensity)
{
    const auto [white, black] = std::minmax_element(printDensity.begin(), printDensity.end());
    const double low = *white + 0.04, high = *white + 0.9 * (*black - *white);
    const auto from = crossing(filmDensity, printDensity, low),
               to = crossing(filmDensity, printDensity, high);
    if (!from || !to) return std::nullopt;
    return 100.0 * std::abs(*to - *from);
}

PrintTone measurePrint(const Bench& bench, const PaperProfile& paper)
{
    const auto print = [&](const std::vector<double>& steps) {
        RenderOptions options = bench.options();
        options.grainMult = options.halationMult = 0.0;
        RGBImage light =
            Film::applyEmulsion(patches(steps), bench.film().film, options.interlayer, options.wbMode);
        std::optional<Plane> noMask;
        RGBImage out = Film::render(std::move(light), {bench.film(), paper, options, kFarApartUm, noMask});
        options.printPxUm = kFarApartUm; // far above any screen: the tone without its dots
        options.inkjetBanding = 0.0;
        if (paper.isRepro()) out = Film::applyRepro(std::move(out), paper, options, bench.film().film.isBW());
        return readPatches(steps.size(), [&](auto x, auto y) { return reflection(out, x, y); });
    };
    const std::vector<double> fine = ramp(-4.5, 4.5, 0.02);
    PrintTone tone;
    tone.density = print(wedge());
    const std::vector<double> whole = print(fine);
    tone.dmin = *std::min_element(whole.begin(), whole.end());
    tone.dmax = *std::max_element(whole.begin(), whole.end());
    if (paper.isScan() || paper.isPlate() || !paper.hasSheet()) return tone;
    const Densities film = bench.expose(patches(fine), kFarApartUm, 0.0, 0.0);
    tone.isoRange =
        isoRange(readPatches(fine.size(), [&](auto x, auto y) { return visual(film, x, y); }), whole);
    return tone;
}

void needBuilt(const FilmProfile& film)
{
    const bool isBuilt =
        film.type == "color" || film.isBW() || film.isCollodion() || film.isSlide() || film.isInstant();
    if (!isBuilt) throw TamloError::unsupported(T("measure.err.filmType", {{"type", film.type}}));
}

} // namespace

Sensitometry::Curves Sensitometry::curves(const FilmProfile& film, const RenderOptions& options)
{
    needBuilt(film);
    const std::vector<double> steps = ramp(-kCurvesReach, kCurvesReach, kCurvesStep);
    const Densities planes = Bench(film, options).expose(patches(steps), kFarApartUm, 0.0, 0.0);
    Curves out{steps, {}};
    for (const Plane& plane : planes)
        out.density.push_back(
            readPatches(steps.size(), [&](auto x, auto y) { return double{plane.at(x, y)}; }));
    return out;
}

std::optional<Sensitometry::Granularity> Sensitometry::granularity(const FilmProfile& film,
                                                                   const RenderOptions& options)
{
    needBuilt(film);
    if (film.isInstant()) return std::nullopt;
    return measureGranularity(Bench(film, options));
}

Sensitometry::Report Sensitometry::measure(const FilmProfile& film, const PaperProfile* paper,
                                           const RenderOptions& options)
{
    needBuilt(film);
    const Bench bench(film, options);
    Report report;
    report.logExposure = wedge();
    report.layers = measureLayers(bench);
    report.surface = measureInstantSurface(bench.film(), bench.options());
    if (!report.surface) report.granularity = measureGranularity(bench);
    report.mtf = measureMTF(bench);
    report.mtf50 = frequencyOfHalf(report.mtf);
    report.adjacencyOvershoot = measureOvershoot(bench);
    report.halationRadiusUm = measureHalation(bench);
    report.plate = measurePlate(film, options);
    if (!paper || film.isInstant()) return report; // an instant picture is its own print
    // A screen runs the patches of a wedge into each other; its tone is read on even fields.
    report.tube = measureTube(*paper, options);
    if (!report.tube) report.print = measurePrint(bench, *paper);
    report.press = measurePress(*paper, options);
    return report;
}

} // namespace tamlo
