#include "core/process/altprint/plate_mark.h"

#include "core/image/bands.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

/// The pressed rectangle, about the middle of the sheet.
struct PlateParams {
    float halfWidth = 0.0f;
    float halfHeight = 0.0f;
    float linePx = 1.0f;
    float depth = 0.0f;
    float reachPx = 0.0f; // beyond which the line can't be seen
};

float factorAt(const PlateParams& p, float ax, float ay)
{
    const float outX = ax - p.halfWidth, outY = ay - p.halfHeight;
    const float d = outX <= 0.0f && outY <= 0.0f ? std::max(outX, outY)
                                                 : std::hypot(std::max(outX, 0.0f), std::max(outY, 0.0f));
    const float a = (d + p.linePx) / p.linePx, b = (d - p.linePx) / p.linePx;
    return 1.0f + p.depth * (0.55f * std::exp(-b * b) - std::exp(-a * a));
}

/// The line over the sheet: only the pixels within its reach are touched.
void alt_plate(RGBImage& sheet, const PlateParams& params)
{
    float* pixels = sheet.mutableData();
    const float cx = static_cast<float>(sheet.width - 1) * 0.5f,
                cy = static_cast<float>(sheet.height - 1) * 0.5f;
    const auto press = [&](float* row, float ay, std::int64_t first, std::int64_t end) {
        for (std::int64_t x = std::max<std::int64_t>(first, 0); x < std::min(end, sheet.width); ++x) {
            const float factor = factorAt(params, std::abs(static_cast<float>(x) - cx), ay);
            for (std::int64_t c = 0; c < 3; ++c)
                row[x * 3 + c] = std::clamp(row[x * 3 + c] * factor, 0.0f, 1.0f);
        }
    };
    parallelBands(sheet.height, sheet.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            float* row = pixels + y * sheet.width * 3;
            const float ay = std::abs(static_cast<float>(y) - cy);
            if (ay > params.halfHeight + params.reachPx) continue;
            const bool along = ay > params.halfHeight - params.reachPx;
            const auto column = [](float at) { return static_cast<std::int64_t>(std::floor(at)); };
            const std::int64_t outer = column(cx - params.halfWidth - params.reachPx);
            const std::int64_t inner = column(cx - params.halfWidth + params.reachPx) + 1;
            const std::int64_t far = sheet.width - inner;
            if (along || inner >= far) {
                press(row, ay, outer, sheet.width - outer);
            } else {
                press(row, ay, outer, inner);
                press(row, ay, far, sheet.width - outer);
            }
        }
    });
}

} // namespace

bool AltPrint::plateAvailable(const PaperProfile& paper)
{
    return paper.isAlt();
}

bool AltPrint::plateEnabled(const PaperProfile& paper, const RenderOptions& options)
{
    if (!plateAvailable(paper)) return false;
    return options.plateMark.value_or(paper.plate && paper.plate->enabled.value_or(false));
}

std::optional<double> AltPrint::plateEdgePx(const PaperProfile& paper, const RenderOptions& options,
                                            double marginPx, double pxUm)
{
    constexpr double kFarthestMm = 18.0, kLeastLeftMm = 0.4;
    if (!plateEnabled(paper, options) || !(marginPx > 0.0)) return std::nullopt;
    const double marginMm = marginPx * pxUm / 1000.0;
    const PaperPlate plate = paper.plate.value_or(PaperPlate{});
    const double cap = plate.marginMm.value_or(plate.offsetMm.value_or(kFarthestMm));
    const double edgeMm = marginMm - std::min(cap, std::max(plateMarginFrac * marginMm, plateMinMm));
    if (edgeMm < kLeastLeftMm) return std::nullopt;
    return edgeMm * 1000.0 / std::max(pxUm, 1e-6);
}

RGBImage AltPrint::embossPlate(RGBImage sheet, const PaperProfile& paper, const RenderOptions& options)
{
    constexpr double kWidthMm = 0.9, kDepth = 0.1, kDepthOfBlock = 0.09, kLeastLinePx = 1.2;
    constexpr float kReach = 6.0f; // line widths: exp(-5²) is nothing
    const double inset = options.plateInsetPx;
    if (inset < 1.0 || inset > 0.45 * static_cast<double>(sheet.shortSide())) return sheet;
    const RenderProfiler::Scope booked("plate mark", sheet.pixelCount());
    PlateParams params;
    params.halfWidth = static_cast<float>(static_cast<double>(sheet.width - 1) * 0.5 - inset);
    params.halfHeight = static_cast<float>(static_cast<double>(sheet.height - 1) * 0.5 - inset);
    const double widthMm = paper.plate ? paper.plate->widthMm.value_or(kWidthMm) : kWidthMm;
    params.linePx =
        static_cast<float>(std::max(widthMm * 1000.0 / std::max(options.printPxUm, 1e-6), kLeastLinePx));
    params.depth = static_cast<float>(paper.plate ? paper.plate->depth.value_or(kDepthOfBlock) : kDepth);
    params.reachPx = kReach * params.linePx;
    alt_plate(sheet, params);
    return sheet;
}

} // namespace tamlo
