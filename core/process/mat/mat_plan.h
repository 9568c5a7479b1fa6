// A mat: a board over the print with an opening whose bevel shows the board's core. The last but one stage of
// a sheet, ahead of its table. Here is where everything of it lies, in pixels of the enlarged canvas;
// measures come in millimetres of the print through printPxUm, so that a preview and a file carry the same
// board. Domain: display-linear colours.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tamlo::Finishing {

/// The mats that a sheet's size is planned for.
inline constexpr std::array<std::string_view, 4> styles{"classic", "double", "emboss", "french"};

/// Board round the sheet, pixels: above and at both sides, and below.
struct MatMargins {
    std::int64_t m = 0;
    std::int64_t mb = 0;
};
MatMargins matMargins(const RenderOptions& options);

/// Whether the options ask for a mat at all.
bool wantsMat(const RenderOptions& options);

/// An inclusive range of whole pixels; empty when last is below first.
struct PixelRange {
    std::int64_t first = 0;
    std::int64_t last = -1;
    bool holds(std::int64_t v) const { return v >= first && v <= last; }
};
/// The integers strictly between lo and hi.
PixelRange openRange(double lo, double hi);

/// The sides of an opening, in the order that decides ties.
enum MatSide { kTop, kBottom, kLeft, kRight };

struct MatPlan {
    struct Bevel {
        std::int64_t top, bot, left, right; ///< first and last row and column of its opening
        double bev;                         ///< width
        float strength;
    };

    std::string style;
    std::int64_t m = 0, mb = 0;
    std::int64_t W = 0, H = 0; ///< the canvas
    std::int64_t top = 0, bot = 0, left = 0, right = 0;
    Vec3f surf{}, core{};
    std::int64_t rev = 0; ///< width of the reveal, 0 without
    Vec3f rcol{};
    std::vector<Bevel> bevels;
    double shW = 0.0;      ///< reach of the inner shadow
    std::int64_t grip = 0; ///< board over the sheet
    double embOff = 0.0, embWid = 0.0;
    PixelRange wash;
    std::array<PixelRange, 4> lines{};
    PixelRange sq; ///< corner squares
    Vec3f ink{}, washCol{};
};

/// Grips top, bottom, left, right. frameWhite: the clear strips of a rebate, which the board covers; fixed:
/// grips that the caller has settled; lap: distance from the sheet's edge to the picture. Each counts with
/// four values alone.
std::array<std::int64_t, 4> matGrips(double ppmm, std::int64_t grip, const OptList& frameWhite,
                                     const OptList& fixed, const OptList& lap);

/// The mat of a sheet of this size; absent without one. An unknown board colour is white, an unknown reveal
/// black.
std::optional<MatPlan> matPlan(Size sheet, const RenderOptions& options);

} // namespace tamlo::Finishing
