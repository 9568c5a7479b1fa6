// How three plates of one scene fail to lie on each other: a holder that shifts, turns and stretches each of
// them a little, glass and gelatine that warp it, and the holder's opening, which cuts each a little
// differently. The red plate is the reference: it warps, but is not displaced. Everything is drawn in
// millimetres of the plate and from the frame's `film` stream, so that a preview has the fringes of the file.
#pragma once

#include "core/image/plane.h"
#include "core/image/random.h"
#include "core/profiles/formats/plate_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tamlo::Tricolor {

/// Bands that the holder covers, as fractions of width (l, r) and height (t, b).
struct Margins {
    double l = 0.0, t = 0.0, r = 0.0, b = 0.0;
};

struct PlatePlacement {
    double dx0 = 0.0, dy0 = 0.0; ///< pixels
    double th = 0.0;             ///< radians
    double s = 0.0;              ///< share by which it is too large
    Margins margins;
};

/// One render's registration, drawn once.
struct RegPlan {
    std::array<PlatePlacement, 3> plates;
    double warpAmp = 0.0; ///< pixels
    double warpCellMm = 15.0;
    double ppmm = 1.0; ///< pixels a millimetre
    std::uint32_t seed = 0;
};

/// Units: pxUm micrometres of plate a pixel. options.plateShift scales all but the margins.
RegPlan tricolorRegistrationPlan(const TricolorParams& tricolor, const RenderOptions& options, double pxUm,
                                 GrainRNG& rng);

/// Displacement of the rigid part at a point told from the picture's centre, pixels.
std::pair<double, double> globalOffset(const PlatePlacement& plate, double x, double y);

/// Displacement of a plate's picture, read by rows, so that it is never two planes of the picture's size.
class RegistrationField {
public:
    /// Nothing for a plate that lies still.
    static std::optional<RegistrationField> of(const RegPlan& plan, std::size_t plate, Size size);

    /// Reads rows for one band.
    class Rows {
    public:
        explicit Rows(const RegistrationField& field);
        /// Offsets in pixels along row y, good until the next call.
        std::pair<const float*, const float*> row(std::int64_t y);

    private:
        const RegistrationField& field_;
        std::vector<float> nodes_, line_, dx_, dy_;
    };

private:
    struct Tap {
        std::int32_t first = 0, second = 0;
        float fraction = 0.0f;
    };
    /// A warp of one octave along one axis of the displacement, pixels at unit deviation.
    struct Octave {
        Plane nodes;
        std::vector<std::int32_t> columns; ///< left node of each pixel column
        std::vector<float> shares;         ///< and the right one's share
        std::vector<Tap> rows;
        float gain = 0.0f;
        bool alongX = false;
    };
    static std::vector<Tap> taps(std::int64_t pixels, std::int64_t nodes);
    static Octave octave(const RegPlan& plan, std::size_t plate, Size size, std::uint32_t index, bool alongX);

    Size size_;
    PlatePlacement plate_;
    std::vector<Octave> octaves_;
};

} // namespace tamlo::Tricolor
