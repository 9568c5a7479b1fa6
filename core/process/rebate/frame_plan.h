// Which rebate a frame gets, by its film format and the options, and the rebate itself: pad ahead of the
// emulsion, lay on the paper behind the print. The plan of the output asks the margins alone, which follow
// from no chance.
#pragma once

#include "core/process/rebate/film_edge.h"
#include "core/process/rebate/format_frame.h"
#include "core/process/rebate/negative_frame.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"

#include <array>
#include <optional>

namespace tamlo::Pipeline {

/// The film under a picture.
struct FilmWindow {
    double fmtUm = 36'000.0; ///< under its long side
    bool whole = true;       ///< the picture is all that the camera exposed
};

/// The options that a rebate sees: glass has no wide edge of film.
RenderOptions frameOptions(const FilmProfile& film, const RenderOptions& options);

struct FramePlan {
    NegativeFrame::Layout layout;
    std::optional<FormatFrame::Gate> gate;
    std::optional<FormatFrame::Notches> notches;
    std::optional<FilmEdge::Plan> print;

    /// From the canvas's sides to the picture, pixels: top, bottom, left, right.
    std::array<double, 4> insetsPx() const
    {
        std::array<double, 4> out{};
        for (std::size_t side = 0; side < 4; ++side) out[side] = static_cast<double>(layout.margins[side]);
        return out;
    }
};

/// Nothing without a rebate, or where it would be narrower than a pixel.
std::optional<FramePlan> framePlan(Size picture, const FilmProfile& film, const RenderOptions& options,
                                   const FilmWindow& window);

/// Whether the options' word and number, and the holes, have film to lie on.
bool hasFilmPrint(const FilmProfile& film, const RenderOptions& options, const FilmWindow& window);

/// A picture in its rebate and what is left to do once it is printed.
struct Rebate {
    FramePlan plan;
    NegativeFrame::Profiles profiles;
    Size picture, canvas;
    Plane mask;
};

/// Pads the picture; nothing where the plan draws none.
std::optional<Rebate> addRebate(RGBImage& image, const FilmProfile& film, const RenderOptions& options,
                                const FilmWindow& window);

/// Lays a printed picture with its rebate onto paper of that colour, whatever size it was printed at.
/// Shape: mask of the image's size. `hole` is what shows in a perforation.
RGBImage composite(RGBImage image, const Rebate& rebate, const Plane& mask, const Vec3f& base,
                   const Vec3f& hole);

} // namespace tamlo::Pipeline
