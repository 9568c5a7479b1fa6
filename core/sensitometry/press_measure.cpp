#include "core/sensitometry/press_measure.h"

#include "core/process/press/ink_sets.h"
#include "core/process/press/repro.h"
#include "core/process/raster/raster.h"
#include "core/sensitometry/wave_finder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using namespace Sensitometry;
using ReproPrint::kBlack;
using ReproPrint::kInkCount;

constexpr std::int64_t kTargetPx = 512;
/// Pixels that targets are drawn with: a screen's cell large enough that its overprints can be told apart,
/// and a drop below the size where its edge is drawn.
constexpr double kCellPx = 24.0;
constexpr double kDropPx = 1.9;
constexpr double kLeastTargetUm = 0.5, kMostTargetUm = 200.0;
/// A wave is a screen when it holds this share of a tint's variance.
constexpr double kScreenShare = 0.1;
constexpr const char* kInkNames[] = {"c", "m", "y", "k"};

/// The press on the bench: prints flat targets.
class PressBench {
public:
    PressBench(const PaperProfile& paper, const RenderOptions& options) : paper_(paper), options_(options)
    {
        options_.reproRaster = "off"; // targets are drawn as large as they are meant
        options_.inkjetBanding = 0.0;
        const ReproPrint::Raster structure = *ReproPrint::raster(paper, 1.0, options_);
        pxUm_ = std::clamp(structure.sizeUm / (structure.kind == "inkjet" ? kDropPx : kCellPx),
                           kLeastTargetUm, kMostTargetUm);
    }

    double pxUm() const { return pxUm_; }

    RGBImage print(const Vec3d& positive, bool blackAlone, std::int64_t side = kTargetPx) const
    {
        RenderOptions options = options_;
        options.printPxUm = pxUm_;
        const Vec3f light{static_cast<float>(positive[0]), static_cast<float>(positive[1]),
                          static_cast<float>(positive[2])};
        return Film::applyRepro(RGBImage(side, side, light), paper_, options, blackAlone);
    }

    /// The same press with clean plates: no light spreads in the paper, no clouds, inks in register.
    PressBench clean() const
    {
        PressBench out = *this;
        if (out.paper_.offset)
            out.paper_.offset->psfUm = out.paper_.offset->mottle = out.paper_.offset->misregisterMm = 0.0;
        if (out.paper_.inkjet)
            out.paper_.inkjet->psfUm = out.paper_.inkjet->mottle = out.paper_.inkjet->misalignDrops = 0.0;
        return out;
    }

private:
    PaperProfile paper_;
    RenderOptions options_;
    double pxUm_ = 1.0;
};

Vec3d meansOf(const RGBImage& image)
{
    Vec3d sum{};
    for (std::int64_t i = 0; i < image.pixelCount(); ++i)
        for (std::size_t c = 0; c < 3; ++c) sum[c] += image.data[static_cast<std::size_t>(i) * 3 + c];
    for (double& v : sum) v /= static_cast<double>(image.pixelCount());
    return sum;
}

double visualDensity(const Vec3d& light)
{
    return -std::log10(std::max(0.2126 * light[0] + 0.7152 * light[1] + 0.0722 * light[2], 1e-5));
}

/// Colours of an ink's tints over the paper, as the picture asks for them. Black is asked for as grey.
Vec3d tintOf(const Vec3f& solid, std::size_t ink, double share)
{
    Vec3d out{};
    const double grey = (double{solid[0]} + solid[1] + solid[2]) / 3.0;
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = 1.0 - share * (1.0 - (ink == kBlack ? grey : double{solid[c]}));
    return out;
}

PrintedInk measureInk(const PressBench& bench, const Vec3f& solid, std::size_t ink, const Vec3d& paper)
{
    const bool alone = ink == kBlack;
    const std::size_t channel = alone ? 1 : ink; // cyan stops red, magenta green, yellow blue
    const auto printed = [&](double share) {
        return meansOf(bench.print(tintOf(solid, ink, share), alone))[channel] / paper[channel];
    };
    PrintedInk out;
    out.name = kInkNames[ink];
    const double full = printed(1.0);
    out.solidDensity = -std::log10(std::max(full, 1e-5));
    for (std::size_t i = 0; i < kAskedTones.size(); ++i)
        out.tone[i] = (1.0 - printed(kAskedTones[i])) / std::max(1.0 - full, 1e-6);
    const RGBImage tint = bench.clean().print(tintOf(solid, ink, 0.5), alone);
    const std::optional<Wave> wave = strongestWave(tint.plane(static_cast<int>(channel)));
    if (wave && wave->share >= kScreenShare) {
        const double perPx = std::hypot(wave->fx, wave->fy);
        const double degrees = std::atan2(wave->fy, wave->fx) * 180.0 / std::numbers::pi;
        // An angle a hair under 90 is one a hair under 0.
        const double angle = std::remainder(degrees, 90.0);
        out.ruling = Ruling{perPx * 25'400.0 / bench.pxUm(), angle < -1.0 ? angle + 90.0 : angle};
    }
    return out;
}

/// The ink of a black, counted on a clean print: each pixel is the overprint of the inks whose solids
/// multiply to it. Pixels at the edge of a dot are none of them and are left out, as many inside as outside.
std::optional<double> countedInk(const RGBImage& black, const std::array<Vec3f, kInkCount>& solids,
                                 const Vec3d& paper)
{
    std::array<std::array<double, 3>, 16> overprints{};
    for (unsigned set = 0; set < 16; ++set)
        for (std::size_t c = 0; c < 3; ++c) {
            double light = paper[c];
            for (std::size_t ink = 0; ink < kInkCount; ++ink)
                if (set >> ink & 1u) light *= solids[ink][c];
            overprints[set][c] = std::log(light);
        }
    constexpr double kFarthest = 0.02 * 0.02; // square of a distance in natural logarithms
    std::int64_t inked = 0, told = 0;
    for (std::int64_t i = 0; i < black.pixelCount(); ++i) {
        double best = kFarthest;
        std::optional<unsigned> found;
        for (unsigned set = 0; set < 16; ++set) {
            double distance = 0.0;
            for (std::size_t c = 0; c < 3; ++c) {
                const double light = std::max<double>(black.data[static_cast<std::size_t>(i) * 3 + c], 1e-9);
                const double off = std::log(light) - overprints[set][c];
                distance += off * off;
            }
            if (distance < best) {
                best = distance;
                found = set;
            }
        }
        if (!found) continue;
        inked += std::popcount(*found);
        ++told;
    }
    if (told < black.pixelCount() / 10) return std::nullopt;
    return static_cast<double>(inked) / static_cast<double>(told);
}

} // namespace

std::optional<PressReport> Sensitometry::measurePress(const PaperProfile& paper, const RenderOptions& options)
{
    if (paper.repro != "offset" && paper.repro != "inkjet") return std::nullopt;
    const bool offset = paper.repro == "offset";
    const PressBench bench(paper, options);
    const auto solids = ReproPrint::relativeInks(
        offset ? ReproPrint::inks(paper.offset.value_or(OffsetParams{}).inks.value_or(""), "offset_coated")
               : ReproPrint::inks(paper.inkjet.value_or(InkjetParams{}).inks.value_or(""), "inkjet_office"));
    PressReport out;
    const Vec3d white = meansOf(bench.print({1.0, 1.0, 1.0}, false));
    out.paperDensity = visualDensity(white);
    out.blackDensity = visualDensity(meansOf(bench.print({0.0, 0.0, 0.0}, false)));
    for (std::size_t ink = 0; ink < (offset ? kInkCount : kBlack); ++ink)
        out.inks.push_back(measureInk(bench, solids[ink], ink, white));
    if (ReproPrint::raster(paper, bench.pxUm(), options)->resolved)
        out.totalInk = countedInk(bench.clean().print({0.0, 0.0, 0.0}, false), solids, white);
    return out;
}

} // namespace tamlo
