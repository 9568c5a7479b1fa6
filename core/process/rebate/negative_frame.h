// The film's edge printed with the picture: what lies between the picture and the paper. The exposure is
// padded with film that saw no light, so that the rebate gets the fog, grain and halation of that film, and a
// mask tells afterwards how far the film reaches: an edge filed by hand, cut by a machine, or that of a
// holder. An edge is drawn from the frame's `frame` stream, the same at every size.
// Units: pixels of the canvas, the picture with its four margins. Sides: top, bottom, left, right.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/profiles/formats/option_enums.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo::NegativeFrame {

enum Side { top, bottom, left, right };
template <typename T>
using FourSides = std::array<T, 4>;

/// How an edge is made; lengths are shares of the margin but for `frac`, a share of the picture's long side.
struct StyleParams {
    double frac = 0.0, rough = 1.0;
    double gateRound = 0.0; ///< corners of the camera's window, share of the picture's long side
    double winRound = 0.0;  ///< corners of the film's edge
    double wave = 0.0, file = 0.0, bulge = 0.0, notch = 0.0, sideVar = 0.0;
    double edgeOpen = 1.0, edgeBand = 0.0, edgeVar = 0.0; ///< how clear and how wide the edge's own band is
    bool styled = false;                                  ///< a scan style; otherwise the old cut by hand
};
/// The row of a style with what the options put in its place; `none` is the old cut by hand.
StyleParams resolve(const RenderOptions& options);
/// A style's own row.
StyleParams params(FrameStyle style);

/// All that is known of a rebate before its edges are drawn.
struct Layout {
    StyleParams style;
    FourSides<std::int64_t> margins{};
    std::optional<FourSides<double>> black; ///< visible film beyond the picture
    FourSides<bool> filmEdges{};            ///< sides that end at the film's own edge, cut by a machine
    double gateRoundPx = 0.0;
    double winRoundPx = 0.0;
    std::optional<FourSides<double>> cornerR; ///< top left, top right, bottom left, bottom right

    Size canvas(Size picture) const
    {
        return {picture.width + margins[left] + margins[right],
                picture.height + margins[top] + margins[bottom]};
    }
};

struct Profiles {
    Layout layout;
    std::vector<float> top, bottom; ///< of the canvas width: first and last row of the film
    std::vector<float> left, right; ///< of the canvas height
    FourSides<float> edgeT{};       ///< strength of each side's band
    float edgeBandPx = 0.0f;
};

/// Draws the four edges; nothing when a margin is below 1.
std::optional<Profiles> profiles(Size picture, const Layout& layout, GrainRNG& rng);

/// The picture in unexposed film, its corners rounded as the camera's window rounds them.
RGBImage pad(const RGBImage& image, const Layout& layout);
/// Coverage of the film on the canvas, 0...1.
Plane windowMask(Size picture, const Profiles& profiles);
/// How far from the sides of a canvas its mask may be below 1, pixels.
std::int64_t maskReach(const Profiles& profiles);

/// Lays a picture with its rebate onto paper: image × mask + base × (1 - mask).
/// Shape: mask of the image's size; beyond `reach` pixels from its sides it is 1.
RGBImage composite(RGBImage image, const Plane& mask, const Vec3f& base, std::int64_t reach);

/// The clear strips beyond the film's edge, for a mat that is to cover them.
FourSides<double> whiteMargins(Size picture, const Profiles& profiles);

} // namespace tamlo::NegativeFrame
