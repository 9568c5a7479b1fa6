// A film of each type with the plainest curves, for tests of what is done to a film's numbers.
#pragma once

#include "core/profiles/formats/film_profile.h"

namespace tamlo::test {

inline NegativeLayer plainLayer(double dmax)
{
    NegativeLayer layer;
    layer.dmin = 0.2;
    layer.dmax = dmax;
    layer.gamma = 0.6;
    return layer;
}

/// One silver curve or three dye curves from 0.2 to dmax, gamma 0.6; no other block.
inline FilmProfile plainFilm(const std::string& type, double dmax)
{
    FilmProfile film;
    film.type = type;
    if (type == "bw" || type == "collodion" || type == "tricolor")
        film.negative = plainLayer(dmax);
    else
        film.layers = ColorLayers{plainLayer(dmax), plainLayer(dmax), plainLayer(dmax)};
    return film;
}

} // namespace tamlo::test
