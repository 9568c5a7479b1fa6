// What a plate's coat does to the silver chain, at the three places where it acts: on light ahead of the
// curve, on density behind it, and on density at the very end. Made once for a frame from its `film` stream,
// so that re-rolling the film moves corner, wander and crystals together. A film that is no plate has none.
#pragma once

#include "core/process/plates/collodion.h"
#include "core/process/plates/dry_plate.h"
#include "core/profiles/options/render_options.h"
#include "core/profiles/options/seed_stream.h"

#include <optional>

namespace tamlo::Plate {

/// Offset of the wet plate's generator in the `film` stream.
inline constexpr std::uint64_t kSalt = 78;

class Coating {
public:
    /// Units: pxUm micrometres of the plate a pixel.
    Coating(const FilmProfile& film, const RenderOptions& options, Size size, double pxUm);

    /// Scene light, linear.
    Plane onLight(Plane light) const;
    /// Absolute density of the curve; dmin and dmax are its ends.
    Plane onDensity(Plane density, double dmin, double dmax);
    /// Absolute density with its grain.
    Plane atTheEnd(Plane density, double dmin) const;

private:
    /// The plate that was poured.
    struct Poured {
        CollodionParams params;
        PlateDice dice;
        GrainRNG rng;
        Thickness thickness;
    };
    std::optional<Poured> pour(const FilmProfile& film, const RenderOptions& options) const;

    Extent extent_;
    double amount_ = 0.0, push_ = 0.0;
    std::optional<Poured> poured_;
    std::optional<Glass::Coat> dry_;
};

} // namespace tamlo::Plate
