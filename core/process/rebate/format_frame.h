// The edges of roll and sheet film: what a camera back or a film holder covers of the exposure, how much film
// lies beyond, and the code notches of a sheet. Units: pixels; sides and corners as in negative_frame.h.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"
#include "core/process/rebate/negative_frame.h"

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace tamlo::FormatFrame {

enum class Kind { f120, sheet4x5 };
/// The kind of a format; none for 135.
std::optional<Kind> kind(std::string_view format);

/// What a camera back or holder covers, softened by its distance from the film.
struct Gate {
    /// A side closed to a depth; with an ear it stays open along `len` from one end, behind a shoulder.
    struct Ear {
        double len = 0.0, r = 0.0;
        bool fromEnd = false;
    };
    struct Closed {
        NegativeFrame::Side side = NegativeFrame::top;
        double inset = 0.0;
        std::optional<Ear> ear;
    };
    struct Round {
        std::size_t corner = 0;
        double r = 0.0;
    };
    /// A band that stops short of both ends of its side, on a slope.
    struct BandEars {
        NegativeFrame::Side side = NegativeFrame::top;
        double bandIn = 0.0, ear = 0.0, slope = 0.0;
    };
    using Op = std::variant<Closed, Round, BandEars>;

    std::vector<Op> ops;
    double penumbra = 1.0;

    /// Takes the light that the gate covers from the picture, in the picture's own raster.
    RGBImage apply(RGBImage image) const;
};

struct NotchShape {
    enum class Form { v, u, square } form = Form::v;
    double width = 0.0, depth = 0.0;
};

/// The code notches beside a sheet's corner, by which its emulsion is told in the dark.
struct Notches {
    bool flapTop = false;
    double edgeAlong = 0.0, edgeAcross = 0.0;
    double startPx = 0.0, gapPx = 0.0;
    std::vector<NotchShape> items;

    /// Cuts them out of the film's mask.
    Plane cut(Plane mask) const;
};

struct Plan {
    NegativeFrame::Layout layout;
    Gate gate;
    std::optional<Notches> notches;
};

/// How a format's edge is laid out.
struct Request {
    Kind kind = Kind::f120;
    bool wide = false;
    NegativeFrame::StyleParams style;
    double ppm = 1.0;   ///< pixels a millimetre of film
    double cm120 = 6.0; ///< of a 120 frame
    double scale = 1.0; ///< of all its lengths
    /// The film beyond its bands to its own edge, millimetres; what is printed there needs it.
    std::optional<double> bandFilmMm;
};
Plan build(Size picture, const Request& request);

/// Sides of a 120 frame at the edges of the film, not between two frames.
bool bandsLeftRight(Size picture, double cm120);

} // namespace tamlo::FormatFrame
