// How large a frame of the file comes out, and at which physical scale, before any pixel has been computed:
// the pipeline's geometry replayed with numbers only. Export, the preview's tiers and the rack's notes ask
// here, and the answer is exactly what the render gives. The copies made of a finished picture live here too.
// Domain: sizes of at least one pixel; total on them.
#pragma once

#include "core/image/rgb_image.h"
#include "core/process/raster/raster.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tamlo::Pipeline {

struct OutputPlan {
    std::int64_t width = 0; ///< of the finished picture, pixels
    std::int64_t height = 0;
    int supersample = 1;     ///< factor by which a reproduction is computed above the output
    bool dotsDrawn = false;  ///< the printing screen or the tube's mask resolves at this size
    bool linesDrawn = false; ///< the tube's scan lines resolve
    /// How far a press enlarges the picture for its structure, and the same as a sentence; absent for other
    /// papers.
    ReproPrint::RasterPlan raster;
    std::optional<std::string> rasterNote;
    Size picture;           ///< the picture alone: no coat, border, card, mat or table, at full size
    double fmtUm = 0.0;     ///< film under the picture's long side, micrometres
    double pxUm = 0.0;      ///< micrometres of film a pixel, where the film is exposed
    double printCm = 0.0;   ///< long side of the print, centimetres
    double printPxUm = 0.0; ///< micrometres of print a pixel of the full-size picture
    std::int64_t matPx = 0; ///< board above and at both sides, 0 without a mat
    std::int64_t matBottomPx = 0;
    std::int64_t tablePx = 0; ///< table on each side, 0 without one
    std::int64_t coatPx = 0;  ///< margin of a brushed coat on each side of the picture, at full size

    Size size() const { return {width, height}; }
};

/// scale multiplies the finished size: 1 for the full size, 0.5 and 0.25 for reduced exports.
OutputPlan outputPlan(Size input, const FilmProfile& film, const PaperProfile& paper,
                      const RenderOptions& options, double scale);
Size outputSize(Size input, const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options,
                double scale);

/// The long side to reduce a source to before it is exposed, so that the picture that a crop and a card leave
/// of it has the wanted long side; that of the source where it is smaller.
std::int64_t sourceLongFor(Size source, const FilmProfile& film, const RenderOptions& options,
                           std::int64_t wantedLong);

/// The long side, of the candidates, that a preview is cheapest rendered from while all structure that the
/// largest candidate shows still resolves. The source's long side without candidates.
std::int64_t previewInputLong(Size source, const FilmProfile& film, const PaperProfile& paper,
                              const RenderOptions& options, std::span<const std::int64_t> candidates);

/// Size of the copy for social networks, and that copy of a finished picture: socialCrop45 cuts the centre to
/// 4:5, socialPx limits the width or, with socialBy "long", the long side.
Size socialSize(Size input, const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options);
RGBImage socialVariant(RGBImage image, const RenderOptions& options);

/// Reduced by a factor with the Lanczos filter; one of 1 or above changes nothing.
RGBImage exportDownscale(RGBImage image, double factor);
/// The size that exportDownscale gives.
Size downscaledSize(Size size, double factor);

/// "W × H", with `megapixelUnit` also the megapixels with one decimal and that unit.
std::string sizeLabel(Size size, std::string_view megapixelUnit = {});

} // namespace tamlo::Pipeline
