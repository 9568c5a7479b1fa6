// The physical size of a render: how many pixels a master may have, how large the print is, how wide its
// border. Plain numbers, so that what a stage's size is can be asked without drawing it.
#pragma once

#include "core/image/rgb_image.h"
#include "core/pipeline/crop_geometry.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <optional>

namespace tamlo::Pipeline {

/// A master carries one pixel for this many micrometres of film.
inline constexpr double kMasterUm = 5.5;

/// The master's ceiling on the long side, in pixels, of fmtUm micrometres of film.
std::int64_t masterLongPx(const FilmProfile& film, double fmtUm);
/// Instant film is softer: four samples a cycle at half response, never finer than kMasterUm.
std::int64_t instantMasterLongPx(const FilmProfile& film, double longUm);
/// The size that a ceiling leaves; absent when the picture is not above it.
std::optional<Size> masterCapSize(Size size, std::int64_t cap);
/// Resamples to the ceiling with the Lanczos filter; an absent cap is round(fmtUm / 5.5).
RGBImage applyMasterCap(RGBImage image, double fmtUm, std::optional<std::int64_t> cap);
/// Long side of an instant picture in micrometres.
double instantLongUm(const FilmProfile& film, const std::optional<std::string>& peelSize);

/// The film under a picture in micrometres: its long side, and the length that sets the master's ceiling.
struct FilmLength {
    double fmtUm = 0.0;
    double capUm = 0.0;
    bool whole = true; ///< the picture is all that the camera exposed
};
/// Sizes before orientation; an instant picture is as long as its card says.
FilmLength filmLength(const FilmProfile& film, const RenderOptions& options, Size source, Size picture);

/// Long over short side of the picture on an instant card; absent for other films and without the card.
std::optional<double> cardAspect(const FilmProfile& film, const RenderOptions& options);
/// What a card leaves of a picture; absent when nothing is cut.
std::optional<PixelRect> cardCropRect(Size size, const FilmProfile& film, const RenderOptions& options);
RGBImage cropToCard(RGBImage image, const FilmProfile& film, const RenderOptions& options);
/// The options of an instant picture without its card: the print is as large as the card's picture.
/// Shape: `picture` is the picture as it stands then.
RenderOptions instantBareOptions(const FilmProfile& film, RenderOptions options, Size picture);

/// Sizes that later stages rescale together with the picture.
struct FrameScale {
    std::int64_t baseLong = 0; // long side of the picture without its rebate, pixels
    std::int64_t longSide = 0; // long side with it
    double fmtUm = 0.0;        // long side of the film under the picture
};

/// Settles printCm and printPxUm of a frame: a sheet holds the picture and both borders, a screen and a
/// plate have their own size.
void resolvePrintScale(RenderOptions& options, const PaperProfile& paper, const FrameScale& scale,
                       bool isInstant);

/// The border as a fraction of longSide. Clears the finishing options that the paper can't have and writes
/// borderPx and, with insets, picInsetPx.
double resolveBorder(RenderOptions& options, const PaperProfile& paper, const FrameScale& scale,
                     const std::optional<std::array<double, 4>>& insetFrac);

/// Margin in pixels of a border that is a fraction of longSide; 0 for none.
std::int64_t borderMarginPx(double border, std::int64_t longSide);

/// The rebate's four insets in pixels as fractions of baseLong; zeros without a rebate.
std::array<double, 4> frameInsetFrac(const std::optional<std::array<double, 4>>& insetsPx,
                                     std::int64_t baseLong);
/// Distance in pixels from the edge of the sheet to the plate mark, within options.borderPx; 0 where the
/// paper has no sheet to press.
double plateInset(const PaperProfile& paper, const RenderOptions& options);

/// baseLong and printPxUm after the picture's resolution changed by `ratio`.
void afterScanCap(std::int64_t& baseLong, RenderOptions& options, double ratio);

} // namespace tamlo::Pipeline
