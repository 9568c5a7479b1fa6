// The sheet of a peel-apart picture: its soft, chipped edge, the cream of the receiving sheet where the
// emulsion broke away, paper fibre in the margins, and yellowing from the edge. Worked out as the sheet left
// the camera and laid turned where the picture is. Domain: display-linear.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/process/noise/noise_fields.h"
#include "core/profiles/formats/film_profile.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo {

/// The sheet as it left the camera, in pixels.
struct PeelParams {
    Size picture; ///< in this orientation
    Size canvas;
    std::int64_t side = 0, top = 0;
    bool turned = false;
    double ppmm = 1.0;
    /// Where the emulsion begins and ends, for each column and each row of the canvas.
    std::vector<float> topEdge, bottomEdge, leftEdge, rightEdge;
    /// The window by itself, along each axis, as soft as its mask.
    std::vector<float> windowX, windowY;
    double maskSigmaPx = 0.0; ///< 0 leaves the mask sharp
    std::int64_t reachPx = 0; ///< from the window's edge inwards, beyond which all is picture
    double fibreSigmaPx[2]{};
    std::uint32_t seed = 0;
    Vec3f base{};
    double yellow = 0.0;
    std::optional<NoiseField> blot; ///< of the canvas, at unit deviation by its scale
};

/// The sheet with its picture. Shape: `to` is the canvas as it lies, turned with the picture.
void peel_compose(RGBImage& to, const RGBImage& picture, const PeelParams& params);

namespace Pipeline {

/// Everything random of a sheet. Draws: four edges, the yellowing where there is any, the seed.
/// knob: `devMottle`. Shape: `picture` as it is shown.
PeelParams planPeel(Size picture, const InstantFrameParams& frame, const OptText& peelSize, double knob,
                    GrainRNG& rng);

RGBImage peelFrame(const RGBImage& picture, const InstantFrameParams& frame, const OptText& peelSize,
                   double devMottle, GrainRNG& rng);

} // namespace Pipeline
} // namespace tamlo
