// Where the pressed marks of a sheet lie: a line round the picture, a studio's stamp and a line of type, in
// pixels of the sheet with its margins. Measures are millimetres of the print through printPxUm.
#pragma once

#include "core/process/finishing/height_shade.h"
#include "core/process/finishing/text_tile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo::Finishing {

inline constexpr double stampTextBandFrac = 0.5;
inline constexpr double stampTextDepth = 0.22;
inline constexpr double stampTextTint = 0.16;
inline constexpr double lineDepth = 0.1;
inline constexpr double stampDepth = 0.16;

struct SheetPlan {
    struct LineStep {
        float top, bot; ///< the two horizontals
        float cx, half; ///< centre and half-length of them
        float cy, r;    ///< corner radius
        float bx, by;   ///< half-size of the rounded rectangle's core
    };
    struct Line {
        float lw = 0.0f; ///< half-width of the groove
        bool tb = false; ///< only top and bottom
        std::vector<float> steps;
        std::vector<LineStep> geo;
    };
    struct Stamp {
        float cx, cy, hx, hy; ///< centre and half-size of the frame's core
        float r, lw;
        float gx, gy0, gr; ///< the grain dot
    };
    struct Text {
        TextTile tile;
        std::int64_t x0 = 0, y0 = 0; ///< where the tile's corner lands
        float feature = 0.0f;
    };

    std::int64_t w = 0, h = 0;
    std::vector<SheetRect> reserve; ///< round stamp and type, where the line breaks
    double reserveSigma = 0.0;
    std::optional<Line> line;
    std::optional<Stamp> stamp;
    std::optional<Text> text;
};

/// Whether the options ask for any pressed mark.
bool wantsEmboss(const RenderOptions& options);

/// Cap height of the type in millimetres; a narrow band of bandMm shrinks it.
double stampTextCapMm(const RenderOptions& options, double bandMm);

SheetPlan sheetPlan(std::int64_t width, std::int64_t height, const RenderOptions& options);

} // namespace tamlo::Finishing
