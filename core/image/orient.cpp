#include "core/image/orient.h"

#include "core/image/bands.h"
#include "core/image/rounding.h"

#include <algorithm>

namespace tamlo::Pipeline {
namespace {

/// Where the pixel of output (row, column) lies in the source: start + row × rowStep + column × columnStep.
struct TurnPlan {
    Size size;
    std::int64_t start = 0;
    std::int64_t rowStep = 0;
    std::int64_t columnStep = 0;
};

TurnPlan planTurn(Size from, std::int64_t turns, bool mirror)
{
    const std::int64_t w = from.width, h = from.height;
    TurnPlan plan{turns & 1 ? Size{h, w} : from, 0, 0, 0};
    // The steps of one source column to the right and one source row down, after mirroring.
    const std::int64_t right = mirror ? -1 : 1, down = w;
    const std::int64_t left = mirror ? w - 1 : 0; // index of the first column
    switch (turns) {
    case 0:
        plan.start = left;
        plan.rowStep = down;
        plan.columnStep = right;
        break;
    case 1:
        plan.start = left + (h - 1) * w;
        plan.rowStep = right;
        plan.columnStep = -down;
        break;
    case 2:
        plan.start = left + right * (w - 1) + (h - 1) * w;
        plan.rowStep = -down;
        plan.columnStep = -right;
        break;
    default:
        plan.start = left + right * (w - 1);
        plan.rowStep = -right;
        plan.columnStep = down;
        break;
    }
    return plan;
}

} // namespace

RGBImage orientImage(RGBImage image, double rotateDegrees, bool mirror)
{
    const std::int64_t turns = roundAway(rotateDegrees / 90.0) & 3;
    if (turns == 0 && !mirror) return image;
    const TurnPlan plan = planTurn(image.size(), turns, mirror);
    RGBImage out(plan.size.width, plan.size.height);
    float* values = out.mutableData();
    const float* source = image.data.data();
    parallelBands(plan.size.height, plan.size.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            float* to = values + y * plan.size.width * 3;
            const float* from = source + (plan.start + y * plan.rowStep) * 3;
            for (std::int64_t x = 0; x < plan.size.width; ++x, to += 3, from += plan.columnStep * 3)
                std::copy_n(from, 3, to);
        }
    });
    return out;
}

} // namespace tamlo::Pipeline
