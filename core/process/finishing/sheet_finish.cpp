#include "core/process/finishing/sheet_finish.h"

#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/process/finishing/sheet_marks_passes.h"

#include <algorithm>

namespace tamlo::Finishing {
namespace {

/// A line of n pixels, 1 from first to end - 1, softened.
std::vector<float> softRun(std::int64_t n, std::int64_t first, std::int64_t end, double sigma)
{
    Plane line(n, 1);
    std::fill(line.mutableData() + first, line.mutableData() + end, 1.0f);
    line = gaussianFilter1D(std::move(line), sigma, FilterAxis::x, EdgeMode::nearest);
    return {line.data.begin(), line.data.end()};
}

Reserve reserveOf(const SheetPlan& plan)
{
    Reserve reserve;
    const auto add = [&](const SheetRect& rect, float sign) {
        if (rect.isEmpty()) return;
        reserve.boxes.push_back({softRun(plan.w, rect.x0, rect.x1, plan.reserveSigma),
                                 softRun(plan.h, rect.y0, rect.y1, plan.reserveSigma), sign});
    };
    for (const SheetRect& rect : plan.reserve) add(rect, 1.0f);
    if (plan.reserve.size() == 2) {
        const SheetRect &a = plan.reserve[0], &b = plan.reserve[1];
        add({std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)}, -1.0f);
    }
    return reserve;
}

constexpr std::array<double, 1> kOneGroove{0.0};

} // namespace

void applySheetFinish(RGBImage& image, const RenderOptions& options)
{
    if (!wantsEmboss(options)) return;
    const RenderProfiler::Scope booked("pressed marks", image.pixelCount());
    const SheetPlan plan = sheetPlan(image.width, image.height, options);
    if (plan.line) {
        const std::vector<double> offsets(plan.line->steps.begin(), plan.line->steps.end());
        if (const auto shade = planShade(lineDepth, plan.line->lw, offsets))
            press_line(image, *plan.line, reserveOf(plan), *shade);
    }
    if (plan.stamp)
        if (const auto shade = planShade(stampDepth, plan.stamp->lw, kOneGroove))
            press_stamp(image, *plan.stamp, *shade);
    if (plan.text)
        if (const auto shade = planShade(stampTextDepth, plan.text->feature, kOneGroove))
            press_text(image, *plan.text, *shade, static_cast<float>(stampTextTint));
}

} // namespace tamlo::Finishing
