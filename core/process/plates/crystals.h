// Gold crystals of an overdeveloped wet plate: specks of silver sprinkled where the layer is thick and the
// image thin. All draws come in one fixed order; a speck is the Gaussian that it is, laid onto the rows that
// it reaches, so that a plate without crystals costs nothing and one with them no blurred frame.
// Domain: absolute density.
#pragma once

#include "core/image/random.h"
#include "core/process/plates/collodion.h"

#include <cstdint>
#include <vector>

namespace tamlo::Plate {

/// One grain of a crystal; its mass is spread over a Gaussian of Crystals::sigmaPx.
struct CrystalGrain {
    std::int32_t x = 0, y = 0;
    float mass = 0.0f;
};

struct Crystals {
    std::vector<CrystalGrain> grains; ///< by rows, those of one row in the order of their draws
    double sigmaPx = 0.0;             ///< 0: a grain is a pixel
};

/// What lets crystals grow at a pixel, 0 to 1.
class CrystalGate {
public:
    struct Range {
        double dmin = 0.0, dmax = 0.0;
    };
    CrystalGate(const Extent& extent, const PlateDice& dice, Range range);
    float at(std::int64_t x, std::int64_t y, const Plane& density, const Thickness& thickness) const;

private:
    Extent extent_;
    Range range_;
    GridField patches_;
    EdgeWeight weight_;
};

/// Below this amount there are none.
inline constexpr double kCrystalsFrom = 0.001;

/// `amount` is push × pour × the profile's readiness, above kCrystalsFrom. The plate's generator goes on.
Crystals growCrystals(const Extent& extent, double amount, GrainRNG& rng, const CrystalGate& gate,
                      const Plane& density, const Thickness& thickness);

/// density += v / (1 + v / 1.2) of the crystals' own density v.
Plane applyCrystals(Plane density, const Crystals& crystals);

} // namespace tamlo::Plate
