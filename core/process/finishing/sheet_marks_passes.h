// Passes of the pressed marks: heights of a line, a stamp and type, each pressed where it has any.
#pragma once

#include "core/process/finishing/height_shade.h"
#include "core/process/finishing/sheet_plan.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tamlo::Finishing {

/// Where a line gives way, as a sum of products of a value for the column and one for the row: soft
/// rectangles are such products, and where two overlap one is taken away again.
struct Reserve {
    struct Box {
        std::vector<float> x, y;
        float sign = 1.0f;
    };
    std::vector<Box> boxes;
};

/// mask = coverage / 255.
void coverage_mask(Plane& mask, std::span<const std::uint8_t> coverage);

/// A groove along the line, except in the reserve.
void press_line(RGBImage& image, const SheetPlan::Line& line, const Reserve& reserve,
                const ShadeParams& params);

/// A raised frame with its grain dot.
void press_stamp(RGBImage& image, const SheetPlan::Stamp& stamp, const ShadeParams& params);

/// Letters pressed in, with a darker floor, to which less light comes: tint at full depth.
void press_text(RGBImage& image, const SheetPlan::Text& text, const ShadeParams& params, float tint);

} // namespace tamlo::Finishing
