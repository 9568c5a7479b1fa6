#include "core/film/grain/grain_stage.h"

#include "core/film/grain/classic_grain.h"
#include "core/film/grain/growth_grain.h"
#include "core/image/render_profiler.h"
#include "core/profiles/options/seed_stream.h"

#include <utility>

namespace tamlo {
namespace {

bool isGrown(const RenderOptions& options)
{
    return options.grainEngine == GrainEngine::growth && options.formatLongUm > 0.0;
}

Grain::GrowthFrame growthFrame(const FilmProfile& film, const RenderOptions& options, std::uint32_t seed)
{
    return {.grain = Film::grainProfile(film, options),
            .formatLongUm = options.formatLongUm,
            .seed = seed,
            .ampMult = options.grainMult,
            .sizeMult = options.grainSizeMult,
            .zone = options.grainZone,
            .tiling = {}};
}

Grain::ClassicGrain classicGrain(const FilmProfile& film, const RenderOptions& options, double pxUm)
{
    return {Film::grainProfile(film, options), pxUm, options.grainSizeMult, options.grainMult,
            Seeds::growthSeed(options)};
}

} // namespace

RGBImage Film::addGrain(RGBImage density, const std::array<HDCurve, 3>& curves, const FilmProfile& film,
                        const RenderOptions& options, double pxUm)
{
    const RenderProfiler::Scope booked("grain", density.pixelCount());
    const Vec3d dmins{curves[0].dmin, curves[1].dmin, curves[2].dmin};
    const Vec3d dmaxs{curves[0].dmax, curves[1].dmax, curves[2].dmax};
    if (isGrown(options))
        return Grain::growthColor(std::move(density), dmins, dmaxs,
                                  growthFrame(film, options, Seeds::growthSeed(options)));
    return Grain::addColor(std::move(density), dmins, dmaxs, classicGrain(film, options, pxUm));
}

Plane Film::addGrain(Plane density, const HDCurve& curve, const FilmProfile& film,
                     const RenderOptions& options, double pxUm, std::optional<std::uint32_t> growthSeed)
{
    const RenderProfiler::Scope booked("grain", density.width * density.height);
    if (isGrown(options))
        return Grain::growthBW(std::move(density), curve.dmin, curve.dmax,
                               growthFrame(film, options, growthSeed.value_or(Seeds::growthSeed(options))));
    return Grain::addBW(std::move(density), curve.dmin, curve.dmax, classicGrain(film, options, pxUm));
}

} // namespace tamlo
