// The geometry of cutting, straightening and fitting a frame. A crop is a rectangle in the unit square of the
// source, in the axes of the straightened picture; its tilt turns the whole source about the source's own
// centre. The render cuts once, ahead of the film, so that grain, vignette and rebate belong to the cropped
// frame; the interface fits while the user drags.
// Units: angles in degrees; width and height of the source in pixels.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/options/crop.h"

#include <array>
#include <optional>

namespace tamlo::Pipeline {

/// Corners of a rectangle in whole pixels; holds at least one pixel.
struct PixelRect {
    std::int64_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    std::int64_t width() const { return x1 - x0; }
    std::int64_t height() const { return y1 - y0; }
    bool operator==(const PixelRect&) const = default;
};

struct PointPx {
    double x = 0.0, y = 0.0;
};

using OptCrop = std::optional<Crop>;
using OptAngle = std::optional<double>;

/// Sides of 0, below or above 1 become 1; the corner is moved into the unit square. The tilt stays.
Crop clamped(Crop crop);

PixelRect cropRectPx(const Crop& crop, Size source);
/// A centred rectangle of the aspect long / short, its long side along the source's.
PixelRect aspectRect(Size source, double aspect);
/// What survives a crop and an optional card aspect.
PixelRect effectiveCrop(const OptCrop& crop, Size source, std::optional<double> aspect);

/// Size of the picture that rotateCropInput cuts.
Size croppedSize(const OptCrop& crop, Size source);
/// Copies the rows of a rectangle; the whole picture comes back as it is.
RGBImage cropTo(RGBImage image, const PixelRect& rect);
/// Straight cut: rows are copied; the whole source comes back as it is.
RGBImage cropInput(RGBImage image, const OptCrop& crop);
/// Cut and straightened by a separable Catmull-Rom of 4 × 4 taps; beyond the source its edge repeats.
/// angle, when given, goes before the crop's own. Below 1e-9 degrees it is the straight cut.
RGBImage rotateCropInput(RGBImage image, const OptCrop& crop, OptAngle angle = std::nullopt);

/// Four corners in source pixels, top left first and clockwise, of the rectangle scaled about its centre.
std::array<PointPx, 4> cropCornersSrc(const OptCrop& crop, OptAngle angle, Size source, double scale = 1.0);
/// Whether the corners lie in the source, tol pixels beyond its edges allowed.
bool cropFits(const OptCrop& crop, OptAngle angle, Size source, double tol);
/// The largest scale about the rectangle's centre that keeps all corners in the source; 0 when none does.
double maxCropScale(const OptCrop& crop, OptAngle angle, Size source);
/// Scaled about its centre, never below minPx on the short side; not clamped to the unit square.
Crop scaleCrop(const OptCrop& crop, double scale, Size source, double minPx);
/// The rectangle after the tilt changed: shrunk, or with `grow` enlarged, to fit. With `ref` every call of a
/// drag starts from it, so that turning back restores the rectangle.
Crop fitCropToAngle(const OptCrop& crop, double angle, Size source, bool grow, const OptCrop& ref = {});
/// The largest rectangle of an aspect (width / height) round the same centre; an aspect of 0 or less is the
/// source's own, none is the rectangle's.
Crop expandCrop(const OptCrop& crop, Size source, std::optional<double> aspect,
                OptAngle angle = std::nullopt);

/// Between the source's axes and those shown to the user.
Crop orientRect(const Crop& crop, int rotateDegrees, bool mirror);
Crop unorientRect(const Crop& crop, int rotateDegrees, bool mirror);
double orientAngle(double angle, bool mirror);

} // namespace tamlo::Pipeline
