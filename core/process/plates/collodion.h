// Wet collodion, poured by hand: the layer runs away from the corner where it was poured in and wanders, a
// crescent stays near that corner, a chemical veil gathers toward the edges. The layer's thickness acts on
// light ahead of the curve and on the veil behind it; it is worked out anew for each row, and never a plane.
// Units: numbers of the profile and the knob platePour in, ppmm pixels a millimetre of the plate.
#pragma once

#include "core/process/plates/grid_field.h"
#include "core/process/plates/plate_passes.h"
#include "core/profiles/formats/film_profile.h"

#include <optional>
#include <vector>

namespace tamlo::Plate {

/// Layer numbers of a plate's noise; the dry plate's line noise has 96.
enum PlateLayer : std::uint32_t {
    kPourLayer = 90,
    kVeilLayer = 91,
    kCrystalLayer = 92,
    kEdgeLayer = 93,
    kFineEdgeLayer = 94,
    kCornerLayer = 95,
    kRimLayer = 96,
};

/// Dice and scale of one plate.
struct PlateDice {
    int corner = 0; ///< held, and poured in: 0 top left, then clockwise
    std::uint32_t seed = 0;
};

/// The thickness of the layer, about 1.
class Thickness {
public:
    /// `amount` is the knob, 0 or more.
    Thickness(const Extent& extent, const CollodionParams& params, double amount, const PlateDice& dice);

    /// At one pixel.
    float at(std::int64_t x, std::int64_t y) const;
    /// Reads rows for one band.
    class Rows {
    public:
        explicit Rows(const Thickness& thickness);
        const float* row(std::int64_t y);

    private:
        const Thickness& thickness_;
        GridField::Rows wander_;
        std::vector<float> line_;
    };

private:
    PourRow rowAt(std::int64_t y) const;

    Extent extent_;
    double slope_, crescent_;
    int corner_;
    GridField wander_;
};

/// light × thickness.
Plane applyThickness(Plane light, const Thickness& thickness);

/// What the developer's chemistry leaves on the plate, density above the bare film.
struct Veil {
    double density = 0.0;
    GridField field;
    EdgeWeight weight{0.0, 1.0};

    /// Absent where there is none.
    static std::optional<Veil> of(const Extent& extent, const CollodionParams& params, double amount,
                                  const PlateDice& dice);
};
Plane applyVeil(Plane density, const Veil& veil, const Thickness& thickness);

} // namespace tamlo::Plate
