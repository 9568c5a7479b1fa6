// The tube that a television paper photographs, as a measure: how much of it is seen at the chosen closeness,
// how large that piece is, and how many pixels its scan lines and its mask take. Plain geometry of 4:3 tubes;
// what the tube shows is drawn elsewhere.
#pragma once

#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>

namespace tamlo::CRTScreen {

inline constexpr double minLinePx = 3.0;
inline constexpr double minMaskPx = 3.0;
/// Closeness that the camera can have.
inline constexpr double kNearest = 10.0;

struct Screen {
    double zoom = 1.0;     ///< closeness, 1 to 10
    double longCm = 0.0;   ///< long side of the visible piece of screen
    double heightMm = 0.0; ///< its height
    double pitchMm = 0.0;  ///< mask pitch, the same at any closeness
    std::int64_t linesTube = 1;
    double lines = 1.0;   ///< scan lines in the visible piece
    double frameCm = 0.0; ///< long side of the print
};

/// Structure of the tube in pixels of a render.
struct Geometry {
    double linePx = 0.0;
    double maskPx = 0.0; ///< 0 without a mask
    bool linesDrawn = false;
    bool maskDrawn = false;
};

/// Whether the tube has a mask; a monochrome one has none.
bool hasMask(const PaperProfile& paper);
/// The closeness that an old diagonal of d inches stands for, of a tube of `nominal` inches.
double zoomFromLegacy(double nominal, double d);
Screen screen(const PaperProfile& paper, const RenderOptions& options);
/// Units: pxUm micrometres of screen a pixel; heightPx the height of the picture.
Geometry geometry(const PaperProfile& paper, double pxUm, std::int64_t heightPx,
                  const RenderOptions& options);

} // namespace tamlo::CRTScreen
