#include "core/sensitometry/tube_measure.h"

#include "core/image/rounding.h"
#include "core/process/crt/crt_screen.h"
#include "core/sensitometry/wave_finder.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace tamlo {
namespace {

constexpr double kLinePx = 12.0;       // of the target: lines and dots of some ten pixels
constexpr std::int64_t kCutPx = 256;   // of its middle
constexpr std::int64_t kWidthPx = 320; // an upright strip of the screen
constexpr float kUnclippedGrey = 0.02f;
constexpr double kMostRowsPx = 40'000.0;

/// An even screen of that many pixels, no brighter or bent in one place than in another.
RGBImage shownEvenly(PaperProfile paper, const RenderOptions& options, Size size, double pxUm, float grey)
{
    if (!paper.crt) paper.crt.emplace();
    paper.crt->bulge = paper.crt->vignette = paper.crt->convergeMm = paper.crt->cornerR = 0.0;
    return CRTScreen::apply(RGBImage(size.width, size.height, Vec3f{grey, grey, grey}), size, paper, options,
                            pxUm);
}

/// Green in the middle of a screen.
Plane middle(const RGBImage& image)
{
    const std::int64_t w = std::min(kCutPx, image.width), h = std::min(kCutPx, image.height);
    Plane out(w, h);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x)
            to[y * w + x] = image.pixel(x + (image.width - w) / 2, y + (image.height - h) / 2)[1];
    return out;
}

std::vector<double> rowMeans(const Plane& plane)
{
    std::vector<double> out;
    for (std::int64_t y = 0; y < plane.height; ++y) {
        double sum = 0.0;
        for (std::int64_t x = 0; x < plane.width; ++x) sum += static_cast<double>(plane.at(x, y));
        out.push_back(sum / static_cast<double>(plane.width));
    }
    return out;
}

/// The swing of a wave of that many cycles a sample, over the mean.
double swing(const std::vector<double>& values, double cycles)
{
    std::complex<double> sum = 0.0;
    double mean = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum += values[i] * std::polar(1.0, -2.0 * std::numbers::pi * cycles * static_cast<double>(i));
        mean += values[i];
    }
    return mean > 0.0 ? 2.0 * std::abs(sum) / mean : 0.0;
}

} // namespace

std::optional<Sensitometry::TubeReport> Sensitometry::measureTube(const PaperProfile& paper,
                                                                  const RenderOptions& options)
{
    if (paper.repro != "crt") return std::nullopt;
    const CRTScreen::Screen screen = CRTScreen::screen(paper, options);
    const double rows =
        std::clamp(std::rint(screen.lines * kLinePx), static_cast<double>(kCutPx), kMostRowsPx);
    const double pxUm = screen.heightMm * 1000.0 / rows;
    const Plane target = middle(
        shownEvenly(paper, options, {kWidthPx, static_cast<std::int64_t>(rows)}, pxUm, kUnclippedGrey));

    TubeReport report;
    const std::vector<double> light = rowMeans(target);
    Plane lines(32, target.height), dots = target;
    for (std::int64_t y = 0; y < target.height; ++y) {
        const double mean = light[static_cast<std::size_t>(y)];
        for (std::int64_t x = 0; x < lines.width; ++x)
            lines.mutableData()[y * lines.width + x] = static_cast<float>(mean);
        for (std::int64_t x = 0; x < dots.width; ++x)
            dots.mutableData()[y * dots.width + x] /= static_cast<float>(std::max(mean, 1e-6));
    }
    if (const auto wave = strongestWave(lines)) {
        report.linePitchMm = pxUm / 1000.0 / std::max(std::abs(wave->fy), 1e-9);
        report.ripple = swing(light, wave->fy);
    }
    if (CRTScreen::hasMask(paper))
        if (const auto wave = strongestWave(dots))
            report.maskCyclesPerMm = std::hypot(wave->fx, wave->fy) * 1000.0 / pxUm;

    constexpr Size kSmall{240, 160}; // below any structure: the tone that a view has
    const Vec3f colour = CRTScreen::tube(paper, options).colour;
    for (std::size_t i = 0; i < kAskedGreys.size(); ++i) {
        const RGBImage shown =
            shownEvenly(paper, options, kSmall, screen.longCm * 10'000.0 / static_cast<double>(kSmall.width),
                        static_cast<float>(kAskedGreys[i]));
        report.light[i] = static_cast<double>(shown.channelMeans()[1] / colour[1]);
    }
    return report;
}

} // namespace tamlo
