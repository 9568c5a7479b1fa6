#include "core/film/emulsion/film_state.h"

#include "core/film/emulsion/hd_curve.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo {
namespace {

// Fitted to scans of expired film: fog grows towards 0.55 of the span, a stop is lost in about thirty years.
constexpr double kFogLimit = 0.55;
constexpr double kFogPerYear = 0.0095;
constexpr Vec3d kLayerFog{0.75, 1.0, 1.5}; // blue fogs fastest
constexpr double kRedscaleStrength = 0.16; // of a film without halation of its own

/// Grain size at which a film ages at the nominal rate, micrometres.
double sizeRefUm(const FilmProfile& film)
{
    if (film.isBW()) return 7.6;
    if (film.type == "color") return 6.4;
    return film.isSlide() ? 5.6 : 7.0;
}

double midDefault(const FilmProfile& film)
{
    if (film.isSlide()) return kPaperAnchor;
    return film.isBW() || film.isTricolor() ? 0.95 : 0.85;
}

double toeDefault(const FilmProfile& film)
{
    if (film.isSlide()) return 1.2;
    return film.isBW() || film.isTricolor() ? 1.6 : 1.5;
}

double fogAfter(double age)
{
    return kFogLimit * (1.0 - std::exp(-kFogPerYear * age));
}

/// Coarse grain fogs faster.
double effectiveAge(const FilmProfile& film, double years)
{
    const double sizeUm = film.grain ? film.grain->sizeUm.value_or(0.0) : 0.0;
    return sizeUm > 0.0 ? years * std::clamp(sizeUm / sizeRefUm(film), 0.5, 2.8) : years;
}

/// Fog closes the span from below, on a slide from above, and the curve shrinks into what is left.
void fogLayer(NegativeLayer& layer, double fog, const FilmProfile& film)
{
    const double span = layer.dmax - layer.dmin;
    if (film.isSlide()) {
        layer.dmin += span * fog * 0.1; // a slide hardly fogs: it loses its black
        layer.dmax -= span * fog;
    } else {
        layer.dmin += span * fog;
    }
    const double before = std::max(span, 1e-6);
    const double ratio = std::max(before * 0.05, layer.dmax - layer.dmin) / before;
    layer.gamma *= ratio;
    layer.midDensity = ratio * layer.midDensity.value_or(midDefault(film));
    layer.toe = (1.0 + 0.4 * fog) * layer.toe.value_or(toeDefault(film));
}

/// Sensitisation fades towards the blue that plain silver sees.
void fadeSensitisation(FilmProfile& film, double fog)
{
    constexpr Vec3d kPlainSilver{0.05, 0.25, 0.7};
    const double share = 0.5 * fog;
    Vec3d weights = film.spectralWeights.value_or(Vec3d{0.3, 0.36, 0.34});
    double sum = weights[0] + weights[1] + weights[2];
    if (sum == 0.0) sum = 1.0;
    for (std::size_t c = 0; c < 3; ++c)
        weights[c] = (1.0 - share) * weights[c] / sum + share * kPlainSilver[c];
    film.spectralWeights = weights;
}

std::array<NegativeLayer*, 3> layersOf(FilmProfile& film)
{
    return {&film.layers->r, &film.layers->g, &film.layers->b};
}

/// Fog grains add to the film's own: the growth of granularity at mid grey.
double grainGrowth(const FilmProfile& film, double fog)
{
    const NegativeLayer* layer = nullptr;
    if (film.isBW() && film.negative) layer = &*film.negative;
    if (!film.isBW() && film.layers) layer = &film.layers->g;
    const double span = layer ? std::max(layer->dmax - layer->dmin, 1e-6) : 2.0;
    const double mid = layer ? layer->midDensity.value_or(midDefault(film)) : midDefault(film);
    return std::sqrt(1.0 + span * fog / std::max(mid, 0.1));
}

void expire(FilmState::Result& state, double years)
{
    FilmProfile& film = state.film;
    const double age = effectiveAge(film, years);
    const double fog = fogAfter(age);
    const double growth = grainGrowth(film, fog);
    if ((film.type == "color" || film.isSlide()) && film.layers) {
        const auto layers = layersOf(film);
        for (std::size_t i = 0; i < 3; ++i) fogLayer(*layers[i], fogAfter(age * kLayerFog[i]), film);
    }
    if (film.isBW() && film.negative) {
        fogLayer(*film.negative, fog, film);
        fadeSensitisation(film, fog);
    }
    if (film.grain) {
        scale(film.grain->amount, growth);
        scale(film.grain->amountRms, growth);
    }
    state.exposureShift = -8.0 * fog;
}

void loadBackToFront(FilmState::Result& state)
{
    HalationParams halation = state.film.halation.value_or(HalationParams{});
    halation.strength =
        halation.strength ? *halation.strength * FilmState::redscaleHalation : kRedscaleStrength;
    state.film.halation = halation;
    state.layerEV = FilmState::redscaleLayerEV;
}

bool canExpire(const FilmProfile& film)
{
    return (film.type == "color" || film.isBW() || film.isSlide() || film.isInstant()) && !film.dryplate;
}

/// Contrast and density of an aged pack; the colour of its luck on three layers.
void agePaste(FilmProfile& film, double colourLost, double contrastLost, bool turnsYellow)
{
    film.dminRef =
        NumberMap{{"r", film.layers->r.dmin}, {"g", film.layers->g.dmin}, {"b", film.layers->b.dmin}};
    for (NegativeLayer* layer : layersOf(film)) {
        const double dmin = layer->dmin, span = layer->dmax - layer->dmin;
        layer->dmin = dmin + 0.08 * contrastLost * span;
        layer->dmax = dmin + (1.0 - 0.35 * contrastLost) * span;
        layer->gamma *= 1.0 - 0.5 * contrastLost;
    }
    if (film.isMonoInstant()) return;
    if (turnsYellow) {
        film.layers->b.dmin += 0.33 * colourLost;
    } else {
        film.layers->r.dmin += 0.231 * colourLost;
        film.layers->g.dmin += 0.231 * colourLost;
    }
}

void roughenPaste(FilmProfile& film, double factor)
{
    if (film.texture) {
        scale(film.texture->mottleAmp, factor);
        scale(film.texture->fineAmp, factor);
        scale(film.texture->streaksAmp, factor);
        if (film.texture->chatter) {
            scale(film.texture->chatter->amp, factor);
            scale(film.texture->chatter->pasteAmp, factor);
        }
    }
    if (film.toneMottle) film.toneMottle->amp = factor * film.toneMottle->amp.value_or(0.0);
}

} // namespace

FilmState::Result FilmState::apply(const FilmProfile& film, const RenderOptions& options)
{
    const double years = canExpire(film) ? std::max(options.expiredYears, 0.0) : 0.0;
    if (years > 0.0 && film.isInstant()) return ageInstant(film, years, options);
    Result state{film, std::nullopt, 0.0};
    if (options.redscale && film.type == "color") loadBackToFront(state);
    if (years > 0.0) expire(state, years);
    return state;
}

FilmState::Result FilmState::ageInstant(const FilmProfile& film, double years, const RenderOptions& options)
{
    const double y = std::min(years, instantYearsMax);
    const double colourLost = 1.0 - std::exp(-std::pow(y / 9.0, 1.5));
    const double contrastLost = 1.0 / (1.0 + std::exp(-(y - 16.0) / 4.0));
    constexpr std::uint64_t kPackOffset = 31;
    GrainRNG luck = Seeds::streamRNG(options, Seeds::SeedStream::film, kPackOffset);

    Result state{film, std::nullopt, -(contrastLost + 0.4 * colourLost)};
    if (state.film.layers) agePaste(state.film, colourLost, contrastLost, luck.random() < 0.5);
    roughenPaste(state.film, 1.0 + 3.0 * contrastLost);
    return state;
}

} // namespace tamlo
