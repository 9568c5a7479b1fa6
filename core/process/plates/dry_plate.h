// The coat of a dry plate, laid by machine: a rim of thicker emulsion along the edges, whose width wanders,
// and frilling where the gelatine lifted. It acts on light ahead of the curve, and fogs behind it.
// Units: numbers of the profile in millimetres, pixels a millimetre from Plate::Extent.
#pragma once

#include "core/image/random.h"
#include "core/process/plates/grid_field.h"
#include "core/profiles/formats/film_profile.h"

#include <array>
#include <vector>

namespace tamlo::Glass {

/// Offset of the dry plate's generator in the `film` stream.
inline constexpr std::uint64_t kDrySalt = 87;

/// Thickness of the coat, 1 away from the edges.
class Coat {
public:
    /// `amount` is the knob platePour, 0 or more. One draw for the seed, then one for each side.
    Coat(const Plate::Extent& extent, const DryPlateParams& params, double amount, GrainRNG& rng);

    /// Whether a side's gelatine lifted: top, bottom, left, right.
    std::array<bool, 4> frilled() const;
    /// Y × thickness, in place.
    Plane onLight(Plane light) const;
    /// D + (thickness - 1) × edge_fog, in place.
    Plane onDensity(Plane density) const;

private:
    /// One side of the plate, by the pixels along it.
    struct Side {
        std::vector<float> rimMm;   ///< width of the rim
        std::vector<float> frillMm; ///< depth of the ripples; empty where nothing lifted
        double reachMm = 0.0;       ///< beyond, the side changes nothing
    };
    template <typename Use>
    Plane eachThick(Plane plane, Use&& use) const;
    void thicken(float& thick, const Side& side, std::size_t along, double distMm) const;
    float thickAt(std::int64_t x, std::int64_t y) const;

    Plate::Extent extent_;
    double gain_ = 0.0, fog_ = 0.0, ripple_ = 0.0;
    std::array<Side, 4> sides_;
};

} // namespace tamlo::Glass
