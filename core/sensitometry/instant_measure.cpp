#include "core/sensitometry/instant_measure.h"

#include "core/film/light/emulsion_input.h"
#include "core/pipeline/render_size.h"
#include "core/process/instant/instant_film.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using namespace Sensitometry;

constexpr float kGrey = 0.18f;
constexpr float kDeepest = 1e-5f; // light that is black
constexpr Vec3d kLuminance{0.2126, 0.7152, 0.0722};

RGBImage positive(RGBImage light, const DevelopedFilm& film, const RenderOptions& options, double pxUm)
{
    return film.film.isMonoInstant() ? Film::renderInstantMono(std::move(light), film, options, pxUm)
                                     : Film::renderInstant(std::move(light), film, options, pxUm);
}

Plane densityOf(const RGBImage& picture, int channel)
{
    return picture.plane(channel).map(
        [](float v) { return -std::log10(std::clamp(v, kDeepest, 1.0f)) + 0.0f; });
}

/// A picture of the card's own shape, on a film whose colours are left alone.
class SurfaceBench {
public:
    SurfaceBench(DevelopedFilm film, const RenderOptions& options) : film_(std::move(film)), options_(options)
    {
        constexpr double kLongPx = 1200.0;
        film_.film.look.reset();
        RenderOptions framed = options;
        framed.instantFrame = true;
        const double aspect = Pipeline::cardAspect(film_.film, framed).value_or(1.0);
        size_ = {static_cast<std::int64_t>(std::lround(kLongPx / std::max(aspect, 1.0))),
                 static_cast<std::int64_t>(kLongPx)};
        pxUm_ = Pipeline::instantLongUm(film_.film, options.peelSize) / kLongPx;
    }

    const DevelopedFilm& film() const { return film_; }

    std::array<Plane, 3> grey(const DevelopedFilm& film) const
    {
        RenderOptions options = options_;
        options.halationMult = 0.0;
        RGBImage light(size_.width, size_.height, Vec3f{kGrey, kGrey, kGrey});
        light = Film::applyEmulsion(std::move(light), film.film, options.interlayer, options.wbMode);
        const RGBImage picture = positive(std::move(light), film, options, pxUm_);
        return {densityOf(picture, 0), densityOf(picture, 1), densityOf(picture, 2)};
    }

    double deviation(const DevelopedFilm& film) const
    {
        const std::array<Plane, 3> planes = grey(film);
        double variance = 0.0;
        for (std::size_t c = 0; c < 3; ++c) variance += kLuminance[c] * std::pow(planes[c].std(), 2);
        return std::sqrt(variance);
    }

private:
    DevelopedFilm film_;
    RenderOptions options_;
    Size size_;
    double pxUm_ = 1.0;
};

struct Part {
    const char* name;
    void (*keep)(TextureParams& to, const TextureParams& from);
};

constexpr Part kParts[] = {
    {"mottle",
     [](TextureParams& to, const TextureParams& from) {
         to.mottleAmp = from.mottleAmp;
         to.mottleScale = from.mottleScale;
     }},
    {"fine", [](TextureParams& to, const TextureParams& from) { to.fineAmp = from.fineAmp; }},
    {"streaks", [](TextureParams& to, const TextureParams& from) { to.streaksAmp = from.streaksAmp; }},
    {"silk",
     [](TextureParams& to, const TextureParams& from) {
         to.silkAmp = from.silkAmp;
         to.silkScaleUm = from.silkScaleUm;
     }},
    {"chatter", [](TextureParams& to, const TextureParams& from) { to.chatter = from.chatter; }},
    {"lattice", [](TextureParams& to, const TextureParams& from) { to.silkLattice = from.silkLattice; }},
};

} // namespace

std::optional<InstantSurface> Sensitometry::measureInstantSurface(const DevelopedFilm& film,
                                                                  const RenderOptions& options)
{
    constexpr double kSeen = 1e-5;
    if (!film.film.isInstant()) return std::nullopt;
    const SurfaceBench bench(film, options);
    InstantSurface surface;
    const std::array<Plane, 3> planes = bench.grey(bench.film());
    for (std::size_t c = 0; c < 3; ++c) surface.density += kLuminance[c] * planes[c].mean();
    surface.whole = bench.deviation(bench.film());
    if (!film.film.texture) return surface;
    for (const Part& part : kParts) {
        DevelopedFilm one = bench.film();
        one.film.texture.emplace();
        one.film.texture->cardUm = film.film.texture->cardUm;
        one.film.toneMottle.reset();
        part.keep(*one.film.texture, *film.film.texture);
        const double deviation = bench.deviation(one);
        if (deviation > kSeen) surface.parts.push_back({part.name, deviation});
    }
    return surface;
}

std::vector<Plane> Sensitometry::instantDensities(RGBImage light, const DevelopedFilm& film,
                                                  const RenderOptions& options, double pxUm)
{
    DevelopedFilm clean = film;
    clean.film.texture.reset();
    clean.film.toneMottle.reset();
    // The pod spreads the dyes over a share of the card, not of the target.
    const double cardPx = Pipeline::instantLongUm(film.film, options.peelSize) / pxUm;
    if (clean.film.softenFrac)
        clean.film.softenFrac = *clean.film.softenFrac * cardPx / static_cast<double>(light.longSide());
    const RGBImage picture = positive(std::move(light), clean, options, pxUm);
    if (film.film.isMonoInstant()) return {densityOf(picture, 1)};
    return {densityOf(picture, 0), densityOf(picture, 1), densityOf(picture, 2)};
}

} // namespace tamlo
