// What lies and what is printed along the edges of a film: the perforations of 135, and the frame's number
// and a word that the maker exposes on the film, here one of the user's own or the film's plain name. The
// print is light on the film ahead of the emulsion, so that it has the film's curve, grain and halation. A
// hole is no film: on a slide it shows as bright as the light behind it, on the print of a negative as black
// as paper gets. Lengths are millimetres of film.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/rebate/negative_frame.h"

#include <cstdint>
#include <string>

namespace tamlo::FilmEdge {

/// A strip's two edges and what is on them.
struct Plan {
    bool alongX = true;  ///< the film runs along the canvas's rows
    double filmMm = 5.5; ///< from the picture to the film's edge
    bool perforated = false;
    std::string word;        ///< on the upper edge (the left one of a standing film)
    std::int64_t number = 0; ///< on the other; 0 for none
    double ppm = 1.0;        ///< pixels a millimetre
};

/// Exposes word and number on a padded picture.
RGBImage expose(RGBImage padded, const Plan& plan, const NegativeFrame::Layout& layout);

/// The holes in a canvas of the layout enlarged to the image's size, filled with a colour.
RGBImage punch(RGBImage image, const Plan& plan, const NegativeFrame::Layout& layout, const Vec3f& colour);

} // namespace tamlo::FilmEdge
