// The brushed coat: sensitiser laid on round the frame by hand has no negative over it, so it runs to the
// maximum of its band; towards the end of the stroke the layer thins, and the stroke's edge is ragged. The
// picture then stands on a canvas wider by the coat's margin on every side.
// Units: pixels of the canvas, lengths shares of the picture. The edges are drawn from the frame's `print`
// stream, 2,048 values a side whatever its length, so that a preview has the strokes of the file.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::AltPrint {

/// "none", "clean" (cut straight) or a brushed style; the option `coat` goes before the profile.
std::string coatStyle(const PaperProfile& paper, const RenderOptions& options);
/// What the coat runs to outside the film, 0...1.
float coatBand(const PaperProfile& paper);
/// Margin of the canvas on every side of a picture; 0 without a coat.
std::int64_t coatMarginPx(Size picture, const PaperProfile& paper, const RenderOptions& options);
/// Size of a picture with its coat.
Size coatedSize(Size picture, const PaperProfile& paper, const RenderOptions& options);

/// The coat's generator, independent of the texture's seed.
GrainRNG coatRNG(const RenderOptions& options);

/// The coat as the pass takes it. A brushed one has an edge and a streak for every column and row of the
/// canvas; a clean one none, but how its mask runs in from the sides.
struct CoatProfiles {
    std::int64_t m = 0; ///< margin, pixels
    bool clean = false;
    float band = 0.0f;
    std::vector<float> top, bottom; ///< of the canvas width: where the stroke begins and ends
    std::vector<float> left, right; ///< of the canvas height
    std::vector<float> streakX, streakY;
    float maskDen = 1.0f; ///< pixels over which the stroke's edge goes soft
    float fadeDen = 1.0f; ///< pixels over which the layer thins
    float streakK = 0.0f;
    std::vector<float> edgeX, edgeY; ///< of a clean coat: its mask is their product
};

/// Draws the coat of a picture; absent without one. A print of several coats draws them from one generator.
std::optional<CoatProfiles> coatProfiles(Size picture, const PaperProfile& paper,
                                         const RenderOptions& options, GrainRNG& rng);

/// The amount of colourant on its canvas, coat round it.
Plane coatCanvas(const Plane& amount, const CoatProfiles& coat);
/// Takes the colourant off where the stroke has ended.
Plane maskAmount(Plane canvas, const CoatProfiles& coat);
/// Lays the coloured canvas onto bare paper by the coat's mask.
RGBImage maskPrint(RGBImage canvas, const CoatProfiles& coat, const Vec3f& base);

} // namespace tamlo::AltPrint
