// The tube of a television paper with every number resolved: what the profile leaves out, what closeness
// changes, and limits beyond which a profile describes no tube.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/raster/tube_geometry.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::CRTScreen {

enum class MaskKind { none, grille, delta };

struct Tube {
    MaskKind mask = MaskKind::delta;
    double pitchMm = 0.72, dot = 0.85, depth = 0.5;
    double spot = 0.3; ///< sigma of the beam's spot, of a line
    std::int64_t wires = 0;
    double wireMm = 0.12, wireDepth = 0.55;
    double lumaCycles = 200.0, chromaCycles = 40.0; ///< along a line of the frame
    double bloom = 0.0, bloomMm = 1.5;
    double convergeMm = 0.0, vignette = 0.0, cornerR = 0.0;
    double bulge = 0.0;
    bool cylinder = false;
    double overscan = 0.0;
    double cameraPsfUm = 60.0, whiteMean = 0.95;
    Vec3f colour{1.0f, 1.0f, 1.0f}; ///< of a white, by phosphor or by the tube's white

    bool mono() const { return mask == MaskKind::none; }
};

/// The block as it acts at this closeness: nearer, the camera sees less of what varies across the screen,
/// and the signal has fewer lines in the frame.
CRTParams frameCfg(CRTParams cfg, double zoom);

/// The tube of a paper at the closeness of the options.
Tube tube(const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::CRTScreen
