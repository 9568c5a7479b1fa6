// Entries of the front filters (graduated, rays) and of the rear slots (colour, diffusion): which glass is
// mounted, and the order it acts in. Each kind of glass stands in its own filter_*.cpp.

#include "core/film/filters/filters.h"

#include "core/image/render_profiler.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/profile_error.h"

#include <utility>

namespace tamlo {
namespace {

OptText nonEmpty(const OptText& name)
{
    return name && !name->empty() ? name : std::nullopt;
}

} // namespace

std::optional<FilterProfile> Filters::resolve(const OptText& name, const ProfileStore& store)
{
    if (!nonEmpty(name)) return std::nullopt;
    // A project outlives the filters of whoever made it: its pictures still come out.
    try {
        return store.filterProfile(*name);
    } catch (const ProfileError&) {
        return std::nullopt;
    } catch (const TamloError&) {
        return std::nullopt;
    }
}

Filters::Slots Filters::slots(const RenderOptions& options, const ProfileStore& store)
{
    Slots slots{nonEmpty(options.filterCut), options.filterCutAmount, nonEmpty(options.filterDiffusion),
                options.filterDiffusionAmount};
    const OptText single = nonEmpty(options.filter);
    if (!single || slots.cut || slots.diffusion) return slots;
    const auto profile = resolve(single, store);
    if (profile && profile->type == "cut") {
        slots.cut = single;
        slots.cutAmount = options.filterAmount;
    } else {
        slots.diffusion = single;
        slots.diffusionAmount = options.filterAmount;
    }
    return slots;
}

std::optional<FilterProfile> Filters::raysProfile(const RenderOptions& options, const ProfileStore& store)
{
    auto profile = resolve(options.filterRays, store);
    if (profile && profile->strength && !(*profile->strength > 1e-5)) return std::nullopt;
    return profile;
}

RGBImage Filters::applyFront(RGBImage image, const RenderOptions& options, const ProfileStore& store,
                             bool rays)
{
    const RenderProfiler::Scope booked("front filters", image.pixelCount());
    if (const auto grad = resolve(options.filterGrad, store))
        image = applyGrad(std::move(image), *grad, options.gradPos, options.gradAngle);
    if (!rays) return image;
    if (const auto profile = raysProfile(options, store))
        image = applyRays(std::move(image), *profile, options.raysAngle);
    return image;
}

RGBImage Filters::apply(RGBImage image, const FilmProfile& film, const RenderOptions& options,
                        const ProfileStore& store)
{
    const RenderProfiler::Scope booked("rear filters", image.pixelCount());
    const Slots chosen = slots(options, store);
    if (const auto cut = resolve(chosen.cut, store))
        image = applyCut(std::move(image), *cut, chosen.cutAmount, film);
    if (const auto diffusion = resolve(chosen.diffusion, store))
        image = applyDiffusion(std::move(image), *diffusion, chosen.diffusionAmount);
    return image;
}

} // namespace tamlo
