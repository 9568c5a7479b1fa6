#include "core/film/emulsion/development.h"

#include "core/film/emulsion/film_state.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using Row = std::pair<Development, DevPreset>;

// The developers' figures are taste, set against prints of each process.
const std::array<Row, 4>& bwTable()
{
    static const std::array<Row, 4> table{{
        {Development::standard, {}},
        {Development::acutance,
         {.adjacency = 0.22, .adjacencyUm = 110.0, .grainAmount = 1.15, .grainSize = 0.95}},
        {Development::fine, {.gamma = 0.96, .grainAmount = 0.78, .grainSize = 1.05}},
        {Development::stand,
         {.gamma = 0.93,
          .dmax = 0.94,
          .fog = 0.02,
          .adjacency = 0.3,
          .adjacencyUm = 180.0,
          .adjacencySat = 0.16,
          .grainAmount = 1.05}},
    }};
    return table;
}

const std::array<Row, 3>& c41Table()
{
    static const std::array<Row, 3> table{{
        {Development::standard, {}},
        {Development::hand, {.fog = 0.015, .grainAmount = 1.15, .layerGamma = Vec3d{1.0, 0.97, 0.93}}},
        {Development::bleachBypass, {.fog = 0.01, .grainAmount = 1.35, .retainedSilver = 0.38}},
    }};
    return table;
}

const std::array<Row, 2>& collodionTable()
{
    static const std::array<Row, 2> table{{
        {Development::iron, {}},
        {Development::pyro, {.gamma = 1.18, .dmax = 1.12, .silverTint = Vec3d{0.9, 0.84, 0.74}}},
    }};
    return table;
}

template <typename Table>
std::optional<DevPreset> findIn(const Table& table, Development dev)
{
    for (const auto& [key, preset] : table)
        if (key == dev) return preset;
    return std::nullopt;
}

DevPreset presetFor(const FilmProfile& film, Development dev, double c41TempC)
{
    if (film.type == "color" && dev == Development::hand) return c41HandAt(c41TempC);
    if (const auto preset = DevPreset::find(film, dev)) return *preset;
    return *DevPreset::find(film, film.isCollodion() ? Development::iron : Development::standard);
}

/// What push and developer make of any curve of the film.
struct CurveChange {
    double gamma = 1.0;
    double span = 1.0;
    double fog = 0.0;
    double mid = 1.0;
};

CurveChange planCurveChange(const DevPreset& preset, double push, bool isSlide)
{
    const double pushed = std::max(push, 0.0);
    CurveChange change;
    change.gamma = std::max((1.0 + 0.13 * push) * preset.gamma, 0.3);
    change.span = std::max((1.0 + (isSlide ? -0.05 : 0.06) * push) * preset.dmax, 0.4);
    change.fog = preset.fog + pushed * (isSlide ? 0.01 : 0.035); // a pull adds no fog
    change.mid = isSlide ? 1.0 : std::max(1.0 + 0.13 * push, 0.3);
    return change;
}

void develop(NegativeLayer& layer, const CurveChange& change, double layerGamma)
{
    layer.gamma *= change.gamma * layerGamma;
    layer.dmax = layer.dmin + change.span * (layer.dmax - layer.dmin);
    layer.dmin += change.fog;
    layer.dmax += change.fog;
    if (layer.midDensity && std::abs(change.mid - 1.0) > 1e-9)
        layer.midDensity = std::min(change.mid * *layer.midDensity, (layer.dmax - layer.dmin) * 0.92);
}

void developCurves(FilmProfile& film, const DevPreset& preset, const CurveChange& change)
{
    if (film.isBW() || film.isTricolor() || film.isCollodion()) {
        if (film.negative) develop(*film.negative, change, 1.0);
        return;
    }
    if (!film.layers) return;
    const Vec3d layerGamma = preset.layerGamma.value_or(Vec3d{1.0, 1.0, 1.0});
    develop(film.layers->r, change, layerGamma[0]);
    develop(film.layers->g, change, layerGamma[1]);
    develop(film.layers->b, change, layerGamma[2]);
}

void developGrain(FilmProfile& film, const DevPreset& preset, double push)
{
    GrainParams grain = film.grain.value_or(GrainParams{});
    grain.amount = (1.0 + 0.22 * std::max(push, 0.0)) * preset.grainAmount * grain.amount.value_or(0.08);
    grain.sizeUm = preset.grainSize * grain.sizeUm.value_or(5.0);
    film.grain = grain;
}

/// How far an instant picture develops off room temperature: -1 cold ... 1 hot, times its sensitivity.
double instantWarmth(const FilmProfile& film, double devTempC)
{
    double t = std::clamp((devTempC - INSTANT_TEMP_REF) / 17.0, -1.0, 1.0);
    if (film.tempSensitivity) t *= *film.tempSensitivity;
    return t > 0.0 ? t * 0.75 : t; // heat does less than cold
}

/// Curves at a warmth. Returns the roughness of the surface.
double warmInstantCurves(FilmProfile& film, double t)
{
    if (std::abs(t) <= 1e-9 || !film.layers) return 1.0;
    // Cold costs the blue layer's density first, which is the blue cast of a cold picture.
    const Vec3d reach = film.isMonoInstant() ? Vec3d{0.24, 0.24, 0.24} : Vec3d{0.17, 0.23, 0.34};
    const std::array<NegativeLayer*, 3> layers{&film.layers->r, &film.layers->g, &film.layers->b};
    for (std::size_t i = 0; i < 3; ++i) {
        NegativeLayer& layer = *layers[i];
        layer.gamma *= 1.0 + 0.3 * t;
        layer.dmax = layer.dmin + (1.0 + reach[i] * t) * (layer.dmax - layer.dmin);
    }
    return 1.0 + 0.25 * std::max(t, 0.0) + 0.9 * std::max(-t, 0.0);
}

/// Warmth and the mottle knob on an instant film. Returns the roughness of the surface.
double developInstant(FilmProfile& film, const DevelopmentKnobs& knobs)
{
    const double t = instantWarmth(film, knobs.devTempC);
    const double rough = warmInstantCurves(film, t);
    if (film.texture) {
        scale(film.texture->mottleAmp, rough);
        scale(film.texture->streaksAmp, rough);
        scale(film.texture->fineAmp, 1.0 + 0.3 * std::max(-t, 0.0));
    }
    if (std::abs(knobs.devMottle - 1.0) > 1e-6) {
        if (film.texture)
            for (auto* amp : {&film.texture->mottleAmp, &film.texture->fineAmp, &film.texture->streaksAmp})
                scale(*amp, knobs.devMottle);
        if (film.toneMottle) film.toneMottle->amp = film.toneMottle->amp.value_or(0.0) * knobs.devMottle;
    }
    return rough;
}

} // namespace

std::optional<DevPreset> DevPreset::find(const FilmProfile& film, Development dev)
{
    if (film.type == "color") return findIn(c41Table(), dev);
    if (film.isCollodion()) return findIn(collodionTable(), dev);
    return findIn(bwTable(), dev);
}

std::vector<Development> Developers::available(const FilmProfile& film)
{
    if (film.isBW() || film.isTricolor())
        return {Development::standard, Development::acutance, Development::fine, Development::stand};
    if (film.type == "color") return {Development::standard, Development::hand, Development::bleachBypass};
    if (film.isCollodion()) return {Development::iron, Development::pyro};
    return {Development::standard};
}

Development Developers::effective(Development dev, const FilmProfile& film)
{
    return film.isCollodion() && dev == Development::standard ? Development::iron : dev;
}

Development Developers::applied(Development dev, const FilmProfile& film)
{
    if (film.isSlide() || film.isInstant()) return Development::standard;
    const Development wanted = effective(dev, film);
    const std::vector<Development> offered = available(film);
    if (std::find(offered.begin(), offered.end(), wanted) != offered.end()) return wanted;
    return film.isCollodion() ? Development::iron : Development::standard;
}

DevPreset c41HandAt(double tempC)
{
    constexpr double range = C41_HAND_REF - C41_HAND_NOMINAL;
    const double d = std::clamp((C41_HAND_REF - tempC) / range, 0.0, (C41_HAND_REF - C41_HAND_TMIN) / range);
    DevPreset preset = *findIn(c41Table(), Development::hand);
    preset.fog *= d;
    for (double& gamma : *preset.layerGamma) gamma = std::pow(gamma, d);
    preset.grainAmount = d * (preset.grainAmount - 1.0) + 1.0;
    return preset;
}

DevelopmentKnobs DevelopmentKnobs::of(const RenderOptions& options)
{
    return {options.push, options.dev, options.devTempC, options.devMottle, options.c41TempC};
}

DevelopedFilm applyDevelopment(const FilmProfile& film, const DevelopmentKnobs& knobs)
{
    const double push = film.isInstant() ? 0.0 : knobs.push;
    const DevPreset preset = presetFor(film, Developers::applied(knobs.dev, film), knobs.c41TempC);

    DevelopedFilm developed;
    developed.film = film;
    developCurves(developed.film, preset, planCurveChange(preset, push, film.isSlide()));
    developGrain(developed.film, preset, push);
    developed.tempRough = film.isInstant() ? developInstant(developed.film, knobs) : 1.0;
    developed.exposureShift = film.isSlide() ? push : 0.0;
    developed.adjacency = preset.adjacency;
    developed.adjacencyUm = preset.adjacencyUm;
    developed.adjacencySat = preset.adjacencySat;
    developed.retainedSilver = preset.retainedSilver;
    developed.silverTint = preset.silverTint;
    developed.devMottle = film.isInstant() ? knobs.devMottle : 1.0;
    return developed;
}

DevelopedFilm applyFilmStateAndDevelopment(const FilmProfile& film, const RenderOptions& options)
{
    const FilmState::Result state = FilmState::apply(film, options);
    DevelopedFilm developed = applyDevelopment(state.film, DevelopmentKnobs::of(options));
    developed.exposureShift += state.exposureShift;
    developed.layerEV = state.layerEV;
    return developed;
}

} // namespace tamlo
