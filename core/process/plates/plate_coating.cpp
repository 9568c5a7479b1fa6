#include "core/process/plates/plate_coating.h"

#include "core/process/plates/coverage.h"
#include "core/process/plates/crystals.h"

#include <algorithm>
#include <utility>

namespace tamlo::Plate {
namespace {

constexpr double kMostAmount = 100.0; // floats carry it, however a profile multiplies it

} // namespace

Coating::Coating(const FilmProfile& film, const RenderOptions& options, Size size, double pxUm)
    : extent_(Extent::of(size, pxUm)),
      amount_(std::clamp(options.platePour, 0.0, kMostAmount)),
      push_(std::max(options.push, 0.0)),
      poured_(pour(film, options))
{
    if (!film.dryplate) return;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film, Glass::kDrySalt);
    dry_.emplace(extent_, *film.dryplate, amount_, rng);
}

std::optional<Coating::Poured> Coating::pour(const FilmProfile& film, const RenderOptions& options) const
{
    if (!film.isCollodion()) return std::nullopt;
    const CollodionParams params = film.collodion.value_or(CollodionParams{});
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film, kSalt);
    PlateDice dice;
    dice.corner = static_cast<int>(rng.nextUInt64() & 3);
    dice.seed = static_cast<std::uint32_t>(rng.nextUInt64());
    return Poured{params, dice, rng, Thickness(extent_, params, amount_, dice)};
}

Plane Coating::onLight(Plane light) const
{
    if (poured_) light = applyThickness(std::move(light), poured_->thickness);
    if (dry_) light = dry_->onLight(std::move(light));
    return light;
}

Plane Coating::onDensity(Plane density, double dmin, double dmax)
{
    if (dry_) density = dry_->onDensity(std::move(density));
    if (!poured_) return density;
    const Poured& plate = *poured_;
    if (const auto veil = Veil::of(extent_, plate.params, amount_, plate.dice))
        density = applyVeil(std::move(density), *veil, plate.thickness);
    const double crystals = push_ * amount_ * numberOf(plate.params.crystal, 0.5, 0.0, 100.0);
    if (!(crystals > kCrystalsFrom)) return density;
    const CrystalGate gate(extent_, plate.dice, {dmin, dmax});
    const Crystals grown = growCrystals(extent_, crystals, poured_->rng, gate, density, plate.thickness);
    return applyCrystals(std::move(density), grown);
}

Plane Coating::atTheEnd(Plane density, double dmin) const
{
    if (!poured_) return density;
    return Coverage(extent_, poured_->params, amount_, poured_->dice)
        .apply(std::move(density), static_cast<float>(dmin));
}

} // namespace tamlo::Plate
