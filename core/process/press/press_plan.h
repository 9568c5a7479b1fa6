// Plans of the presses: profile, options and the frame's draws into what the passes need. A plan makes every
// draw of its press, in a fixed order: offset draws ink by ink its misregister and its screen's phases, and
// then registers black with the rosette; inkjet draws the swaths, then where each ink starts in the table of
// drops, then its misalignment.
#pragma once

#include "core/image/random.h"
#include "core/process/press/separation.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo::ReproPrint {

/// What both presses do after the inks are down: light spreads in the paper, and the ink lies in clouds.
struct Laydown {
    double pxUm = 1.0; ///< micrometres of print a pixel of the printed picture
    double psfSigmaPx = 0.0;
    double mottle = 0.0;
    double fineUm = 0.0, wideUm = 0.0, wideAmp = 0.0;
    std::uint32_t fineLayer = 0, wideLayer = 0;
    std::uint32_t seed = 0;
};

/// One plate of an offset press.
struct InkPlate {
    std::size_t ink = kBlack;
    std::int64_t dx = 0, dy = 0; ///< misregister in drawn pixels
    double phase0 = 0.0, phase1 = 0.0;
};

struct OffsetPlan {
    Separation separation;
    Vec3f base{};
    std::vector<InkPlate> plates;
    bool screened = false; ///< dots are drawn; else the inks lie continuous
    double cellPx = 0.0;   ///< cell in drawn pixels
    int ss = 1;            ///< drawn pixels a side of a printed one
    Laydown laydown;
};

/// Least and largest misregister that is drawn, pixels: the second bounds what has to be held of a picture.
inline constexpr double kLeastShiftPx = 0.5;
inline constexpr double kMostShiftPx = 512.0;

/// Units: pxUm micrometres of print a pixel of the printed picture; each is drawn ss × ss.
OffsetPlan planOffset(const PaperProfile& paper, const RenderOptions& options, double pxUm, int ss,
                      bool mono);

struct InkjetPlan {
    Separation separation;
    Vec3f base{};
    std::vector<float> band;  ///< ink of each line of the feed
    bool bandAlongX = false;  ///< lines are columns
    bool dither = false;      ///< drops are laid; else the inks lie continuous
    double cellPx = 0.0;      ///< cell of a drop; below 1.05 a pixel is a cell
    double edgeSigmaPx = 0.0; ///< soft edge of a drop; 0 for none
    std::array<std::array<std::int64_t, 2>, kInkCount> start{}; ///< row and column in the table of drops
    std::array<std::array<std::int64_t, 2>, kInkCount> shift{}; ///< misalignment, dx and dy
    Laydown laydown;
};

/// A cell up to this is one pixel.
inline constexpr double kPixelCellPx = 1.05;

/// Units: pxUm micrometres of print a pixel of a picture of that size.
InkjetPlan planInkjet(const PaperProfile& paper, const RenderOptions& options, double pxUm, Size size);

} // namespace tamlo::ReproPrint
