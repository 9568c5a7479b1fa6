// Development: what a tank does to a film, as numbers. It takes a profile and the knobs and gives a
// DevelopedFilm: the profile with its curves, grain and texture rewritten, plus the few values that the film
// stages read. Push is development only: it changes contrast, density range, fog and grain, and shifts the
// exposure on a slide alone.
#pragma once

#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <vector>

namespace tamlo {

/// One developer: factors and terms against the film's own numbers.
struct DevPreset {
    double gamma = 1.0;
    double dmax = 1.0;
    double fog = 0.0;
    /// Edge effect of the developer, used beside the film's own: strength, reach and limit.
    double adjacency = 0.0;
    double adjacencyUm = 150.0;
    double adjacencySat = 0.3;
    double grainAmount = 1.0;
    double grainSize = 1.0;
    /// Contrast per layer; absent means 1, 1, 1.
    std::optional<Vec3d> layerGamma = std::nullopt;
    /// Share of silver left in the dye image.
    double retainedSilver = 0.0;
    /// Colour of a silver image.
    std::optional<Vec3d> silverTint = std::nullopt;

    /// The row that the film's process has for a developer; absent when its table holds none.
    static std::optional<DevPreset> find(const FilmProfile& film, Development dev);

    bool operator==(const DevPreset&) const = default;
};

namespace Developers {

/// Developers offered for a film, in the order of the menu.
std::vector<Development> available(const FilmProfile& film);
/// The developer as the menu shows it: on collodion `standard` reads as `iron`.
Development effective(Development dev, const FilmProfile& film);
/// The developer that runs. One that the film can't have falls back to the film's standard; the stored
/// choice stays.
Development applied(Development dev, const FilmProfile& film);

} // namespace Developers

/// Process temperatures, degrees Celsius.
inline constexpr double C41_HAND_REF = 37.8;     // a hand tank equals the machine
inline constexpr double C41_HAND_NOMINAL = 30.0; // the hand row of the table holds
inline constexpr double C41_HAND_TMIN = 18.0;    // colder changes nothing more
inline constexpr double INSTANT_TEMP_REF = 21.0; // room temperature of instant film

/// The hand-tank row at a temperature: crossover and fog grow as the bath gets colder.
DevPreset c41HandAt(double tempC);

/// The development knobs of a frame.
struct DevelopmentKnobs {
    double push = 0.0; // stops
    Development dev = Development::standard;
    double devTempC = INSTANT_TEMP_REF;
    double devMottle = 1.0;
    double c41TempC = C41_HAND_NOMINAL;

    static DevelopmentKnobs of(const RenderOptions& options);
};

/// Units: push in stops, temperatures in degrees Celsius. Never fails; a film without curves keeps them
/// absent. A film without a grain block gains one of 5 µm and 0.08.
DevelopedFilm applyDevelopment(const FilmProfile& film, const DevelopmentKnobs& knobs);

/// The film's state (age, loading), then its development.
DevelopedFilm applyFilmStateAndDevelopment(const FilmProfile& film, const RenderOptions& options);

} // namespace tamlo
