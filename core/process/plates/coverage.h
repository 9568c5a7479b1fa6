// Where a poured plate has a layer at all: the edge falls short of the glass, unevenly, and the corner that
// the fingers held is bare. The last step of the plate, on absolute density, behind the grain.
#pragma once

#include "core/process/plates/collodion.h"

namespace tamlo::Plate {

class Coverage {
public:
    Coverage(const Extent& extent, const CollodionParams& params, double amount, const PlateDice& dice);

    /// density × c + dmin × (1 - c), c the share of the layer at the pixel.
    Plane apply(Plane density, float dmin) const;

private:
    struct Corner {
        double radiusPx = 0.0, perSoftPx = 1.0; ///< 0: none is held
        std::int64_t x = 0, y = 0;
        GridField rough;
        double reachPx = 0.0; ///< beyond, nothing is bare
    };
    /// Reads one band's rows.
    class Band;

    Extent extent_;
    double edgePx_ = 0.0, reachPx_ = 0.0;
    GridField coarse_, fine_;
    Corner corner_;
};

} // namespace tamlo::Plate
