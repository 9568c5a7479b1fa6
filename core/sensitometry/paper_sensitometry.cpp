#include "core/sensitometry/paper_sensitometry.h"

#include "core/image/resample.h"
#include "core/image/tamlo_error.h"
#include "core/image/zcolor.h"
#include "core/process/gum/gum_layers.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using namespace Sensitometry;

constexpr double kFarApartUm = 1e5; // a pixel so large that no step of the tablet reaches the next
constexpr double kFineStep = 0.02, kFineReach = 5.0;
constexpr std::int64_t kStepPx = 4;

/// Prints densities relative to the one that prints a grey card.
RGBImage printed(Plane density, const PaperProfile& paper, const RenderOptions& options)
{
    const AltPrint::Job job{paper, options, nullptr};
    if (paper.layers && !paper.layers->empty())
        return Film::renderAltLayers({std::move(density), 0.0f, {}}, job);
    return AltPrint::printOneCoat(std::move(density), 0.0f, job);
}

double reflection(const Vec3f& v)
{
    const double light =
        double{ZColor::luma[0]} * v[0] + double{ZColor::luma[1]} * v[1] + double{ZColor::luma[2]} * v[2];
    return -std::log10(std::max(light, 1e-5));
}

/// Density of the print under each density, in even patches.
std::vector<double> toneUnder(const std::vector<double>& densities, const PaperProfile& paper,
                              RenderOptions options)
{
    options.printTexture = options.relief.emplace(0.0);
    options.printPxUm = kFarApartUm;
    Plane tablet(static_cast<std::int64_t>(densities.size()) * kStepPx, kStepPx);
    float* to = tablet.mutableData();
    for (std::int64_t i = 0; i < tablet.count(); ++i)
        to[i] = static_cast<float>(densities[static_cast<std::size_t>(i % tablet.width / kStepPx)]);
    const RGBImage print = printed(std::move(tablet), paper, options);
    std::vector<double> tone;
    for (std::size_t i = 0; i < densities.size(); ++i)
        tone.push_back(
            reflection(print.pixel(static_cast<std::int64_t>(i) * kStepPx + kStepPx / 2, kStepPx / 2)));
    return tone;
}

/// Where a falling line first comes down to a value.
std::optional<double> whereAt(const std::vector<double>& x, const std::vector<double>& y, double value)
{
    for (std::size_t i = 1; i < y.size(); ++i)
        if (y[i - 1] >= value && y[i] < value)
            return std::lerp(x[i - 1], x[i], (y[i - 1] - value) / (y[i - 1] - y[i]));
    return std::nullopt;
}

std::optional<double> steepest(const std::vector<double>& density)
{
    constexpr std::size_t kSteps = 4;
    double most = 0.0;
    for (std::size_t i = 0; i + kSteps < density.size(); ++i)
        most = std::max(most, (density[i] - density[i + kSteps]) / (kSteps * kTabletStep));
    return most > 0.0 ? std::optional(most) : std::nullopt;
}

Plane densityOf(const RGBImage& print)
{
    Plane plane(print.width, print.height);
    float* to = plane.mutableData();
    for (std::int64_t y = 0; y < print.height; ++y)
        for (std::int64_t x = 0; x < print.width; ++x)
            to[y * print.width + x] = static_cast<float>(reflection(print.pixel(x, y)));
    return plane;
}

/// Lag in pixels along the rows at which the correlation has fallen to half.
double halfCorrelationPx(const Plane& plane)
{
    const double mean = plane.mean(), variance = plane.std() * plane.std();
    double last = 1.0;
    constexpr std::int64_t kFarthest = 400;
    for (std::int64_t lag = 1; lag < kFarthest; ++lag) {
        double sum = 0.0;
        for (std::int64_t y = 0; y < plane.height; y += 4)
            for (std::int64_t x = 0; x + lag < plane.width; ++x)
                sum += (plane.at(x, y) - mean) * (plane.at(x + lag, y) - mean);
        const double pairs = static_cast<double>((plane.height + 3) / 4 * (plane.width - lag));
        const double r = sum / pairs / variance;
        if (r <= 0.5) return static_cast<double>(lag - 1) + (last - 0.5) / (last - r);
        last = r;
    }
    return static_cast<double>(kFarthest);
}

std::optional<PaperStructure> measureStructure(double middle, const PaperProfile& paper,
                                               RenderOptions options)
{
    constexpr std::int64_t kWidth = 3000, kHeight = 2000;
    constexpr double kPxMm = 0.1, kEven = 1e-6;
    options.printPxUm = kPxMm * 1000.0;
    const Plane sheet =
        densityOf(printed(Plane(kWidth, kHeight, static_cast<float>(middle)), paper, options));
    if (sheet.std() < kEven) return std::nullopt;
    PaperStructure structure;
    structure.density = sheet.mean();
    for (std::size_t i = 0; i < kStructureAperturesMm.size(); ++i) {
        const double reduction = kStructureAperturesMm[i] / kPxMm;
        const auto side = [&](std::int64_t px) { return std::lround(static_cast<double>(px) / reduction); };
        structure.rms[i] = 1000.0 * pilResize(sheet, side(kWidth), side(kHeight), Resampling::box).std();
    }
    structure.sizeMm = halfCorrelationPx(sheet) * kPxMm;
    return structure;
}

} // namespace

Sensitometry::PaperReport Sensitometry::measurePaper(const PaperProfile& paper, const RenderOptions& asked)
{
    if (!paper.isAlt()) throw TamloError::unsupported(T("measure.err.needsFilm"));
    RenderOptions options = asked;
    options.coat = "none";
    PaperReport report;
    const double middleStep = (kTabletSteps - 1) / 2.0;
    std::vector<double> under;
    for (int i = 0; i < kTabletSteps; ++i) {
        report.tabletDensity.push_back(i * kTabletStep);
        under.push_back((i - middleStep) * kTabletStep);
    }
    report.density = toneUnder(under, paper, options);
    report.gamma = steepest(report.density);

    std::vector<double> fine;
    for (double d = -kFineReach; d <= kFineReach; d += kFineStep) fine.push_back(d);
    const std::vector<double> whole = toneUnder(fine, paper, options);
    report.dmin = whole.back();
    report.dmax = whole.front();
    const double net = report.dmax - report.dmin;
    const auto dark = whereAt(fine, whole, report.dmin + 0.9 * net),
               light = whereAt(fine, whole, report.dmin + 0.04);
    if (dark && light) report.isoRange = 100.0 * (*light - *dark);
    if (const auto middle = whereAt(fine, whole, report.dmin + 0.5 * net))
        report.structure = measureStructure(*middle, paper, options);
    return report;
}

} // namespace tamlo
