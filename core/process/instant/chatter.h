// Roller chatter of pack film: the sheet is pulled by hand between two rollers, which spread the paste in
// bars across the pull, gathered in clumps and stronger at both ends; where the paste lies thicker it leaves
// patches. In density, on the picture's millimetres; the pull runs along its long side.
#pragma once

#include "core/image/random.h"
#include "core/process/instant/picture_mm.h"
#include "core/process/instant/surface_passes.h"
#include "core/process/noise/mm_field.h"

#include <optional>
#include <string_view>
#include <vector>

namespace tamlo::Film {

struct ChatterPlan {
    NoiseField fine, clumps;
    std::optional<NoiseField> coarse;
    std::vector<NoiseField> paste; ///< of all layers, then of each; empty for none
    std::vector<float> ends;       ///< strength at each pixel of the long side
    bool alongX = false;
    ChatterParams32 params;
};

/// How rough the reagent works.
struct Roughness {
    double devMottle = 1.0; ///< the knob, which acts once
    double temperature = 1.0;
};

/// Takes two or three draws: the card's strength, the ends, the fields' seed. sizeKey: the sheet's size.
ChatterPlan peelChatter(Size picture, int layers, const ChatterParams& chatter, const PictureScale& scale,
                        Roughness roughness, std::string_view sizeKey, GrainRNG& rng);

/// Adds the chatter to rows of density, one band's at a time.
class ChatterRows {
public:
    ChatterRows(const ChatterPlan& plan, Size picture);
    void apply(std::int64_t y, const DensityRow& density);

private:
    const ChatterPlan& plan_;
    NoiseField::Rows fine_, clumps_;
    std::optional<NoiseField::Rows> coarse_;
    std::vector<NoiseField::Rows> paste_;
    std::vector<float> ends_;
};

} // namespace tamlo::Film
