#include "core/pipeline/crop_geometry.h"

#include "core/image/bands.h"
#include "core/image/orient.h"
#include "core/image/render_profiler.h"
#include "core/image/rounding.h"
#include "core/pipeline/crop_passes.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using Pipeline::OptAngle;
using Pipeline::OptCrop;

constexpr double kNoTilt = 1e-9;     // degrees
constexpr double kSmallestPx = 64.0; // a crop is not fitted below this on its short side

Crop orFull(const OptCrop& crop)
{
    return crop.value_or(Crop::full());
}

double tiltOf(const OptCrop& crop, OptAngle angle)
{
    return angle.value_or(crop ? crop->angle : 0.0);
}

struct Turn {
    double c = 1.0, s = 0.0;

    explicit Turn(double degrees)
        : c(std::cos(degrees * 3.141592653589793 / 180.0)), s(std::sin(degrees * 3.141592653589793 / 180.0))
    {}
    /// A position about the centre, brought from the straightened picture to the source.
    Pipeline::PointPx toSource(double dx, double dy) const { return {c * dx + s * dy, c * dy - s * dx}; }
};

struct Centre {
    double x = 0.0, y = 0.0;
};

/// The crop's centre in the axes of the straightened picture, in pixels from the source's centre.
Centre offsetOf(const Crop& crop, Size source)
{
    return {(crop.x + crop.w / 2.0 - 0.5) * static_cast<double>(source.width),
            (crop.y + crop.h / 2.0 - 0.5) * static_cast<double>(source.height)};
}

Crop aroundCentre(const Crop& crop, double w, double h)
{
    return {crop.x + (crop.w - w) / 2.0, crop.y + (crop.h - h) / 2.0, w, h, crop.angle};
}

double shortSidePx(const Crop& crop, Size source)
{
    return std::min(crop.w * static_cast<double>(source.width), crop.h * static_cast<double>(source.height));
}

/// Whole and fractional part of a position.
CropAxis axisAt(double xPart, double yPart)
{
    const double xWhole = std::floor(xPart), yWhole = std::floor(yPart);
    return {static_cast<std::int32_t>(xWhole), static_cast<std::int32_t>(yWhole),
            static_cast<float>(xPart - xWhole), static_cast<float>(yPart - yWhole)};
}

/// Source positions of the output's rows and columns: their sum is the position of a pixel.
CropAxes planAxes(const Pipeline::PixelRect& rect, Size source, double degrees)
{
    const Turn turn(degrees);
    const double halfW = static_cast<double>(source.width) / 2.0;
    const double halfH = static_cast<double>(source.height) / 2.0;
    CropAxes axes;
    for (std::int64_t y = rect.y0; y < rect.y1; ++y) {
        const auto p = turn.toSource(0.0, static_cast<double>(y) + 0.5 - halfH);
        axes.rows.push_back(axisAt(halfW + p.x - 0.5, halfH + p.y - 0.5));
    }
    for (std::int64_t x = rect.x0; x < rect.x1; ++x) {
        const auto p = turn.toSource(static_cast<double>(x) + 0.5 - halfW, 0.0);
        axes.columns.push_back(axisAt(p.x, p.y));
    }
    return axes;
}

} // namespace

Crop Pipeline::clamped(Crop crop)
{
    const auto side = [](double v) { return v > 0.0 && v <= 1.0 ? v : 1.0; };
    crop.w = side(crop.w);
    crop.h = side(crop.h);
    crop.x = std::min(crop.x > 0.0 ? crop.x : 0.0, 1.0 - crop.w);
    crop.y = std::min(crop.y > 0.0 ? crop.y : 0.0, 1.0 - crop.h);
    return crop;
}

Pipeline::PixelRect Pipeline::cropRectPx(const Crop& crop, Size source)
{
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    PixelRect rect;
    rect.x0 = std::clamp<std::int64_t>(pyRound(crop.x * w), 0, source.width - 1);
    rect.y0 = std::clamp<std::int64_t>(pyRound(crop.y * h), 0, source.height - 1);
    rect.x1 = std::clamp<std::int64_t>(pyRound((crop.x + crop.w) * w), rect.x0 + 1, source.width);
    rect.y1 = std::clamp<std::int64_t>(pyRound((crop.y + crop.h) * h), rect.y0 + 1, source.height);
    return rect;
}

Pipeline::PixelRect Pipeline::aspectRect(Size source, double aspect)
{
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    Size cut = source;
    if (source.width >= source.height) {
        cut.height = pyRound(w / aspect);
        if (cut.height > source.height) cut = {std::min(pyRound(aspect * h), source.width), source.height};
    } else {
        cut.width = pyRound(h / aspect);
        if (cut.width > source.width) cut = {source.width, std::min(pyRound(aspect * w), source.height)};
    }
    cut = {std::max<std::int64_t>(cut.width, 1), std::max<std::int64_t>(cut.height, 1)};
    const std::int64_t x = (source.width - cut.width) / 2, y = (source.height - cut.height) / 2;
    return {x, y, x + cut.width, y + cut.height};
}

Pipeline::PixelRect Pipeline::effectiveCrop(const OptCrop& crop, Size source, std::optional<double> aspect)
{
    const PixelRect rect = cropRectPx(orFull(crop), source);
    if (aspect.value_or(0.0) <= 0.0) return rect;
    const PixelRect card = aspectRect({rect.width(), rect.height()}, *aspect);
    return {rect.x0 + card.x0, rect.y0 + card.y0, rect.x0 + card.x1, rect.y0 + card.y1};
}

Size Pipeline::croppedSize(const OptCrop& crop, Size source)
{
    const PixelRect rect = cropRectPx(orFull(crop), source);
    return {rect.width(), rect.height()};
}

RGBImage Pipeline::cropInput(RGBImage image, const OptCrop& crop)
{
    const PixelRect rect = cropRectPx(orFull(crop), image.size());
    return cropTo(std::move(image), rect);
}

RGBImage Pipeline::cropTo(RGBImage image, const PixelRect& rect)
{
    if (rect == PixelRect{0, 0, image.width, image.height}) return image;
    RGBImage out(rect.width(), rect.height());
    float* to = out.mutableData();
    parallelBands(out.height, out.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            std::copy_n(image.row(rect.y0 + y) + rect.x0 * 3, out.width * 3, to + y * out.width * 3);
    });
    return out;
}

RGBImage Pipeline::rotateCropInput(RGBImage image, const OptCrop& crop, OptAngle angle)
{
    const RenderProfiler::Scope booked("crop", image.pixelCount());
    const double tilt = tiltOf(crop, angle);
    if (std::abs(tilt) < kNoTilt) return cropInput(std::move(image), crop);
    const PixelRect rect = cropRectPx(orFull(crop), image.size());
    RGBImage out(rect.width(), rect.height());
    in_crop_rotate(out, image, planAxes(rect, image.size(), tilt));
    return out;
}

std::array<Pipeline::PointPx, 4> Pipeline::cropCornersSrc(const OptCrop& crop, OptAngle angle, Size source,
                                                          double scale)
{
    const Crop rect = orFull(crop);
    const Turn turn(tiltOf(crop, angle));
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    const Centre centre = offsetOf(rect, source);
    const double hw = rect.w * w / 2.0 * scale, hh = rect.h * h / 2.0 * scale;
    std::array<PointPx, 4> corners{};
    constexpr std::array<std::array<double, 2>, 4> kSigns{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};
    for (std::size_t i = 0; i < 4; ++i) {
        const PointPx p = turn.toSource(centre.x + kSigns[i][0] * hw, centre.y + kSigns[i][1] * hh);
        corners[i] = {w / 2.0 + p.x, h / 2.0 + p.y};
    }
    return corners;
}

bool Pipeline::cropFits(const OptCrop& crop, OptAngle angle, Size source, double tol)
{
    const auto corners = cropCornersSrc(crop, angle, source);
    return std::all_of(corners.begin(), corners.end(), [&](const PointPx& p) {
        return p.x >= -tol && p.x <= static_cast<double>(source.width) + tol && p.y >= -tol &&
               p.y <= static_cast<double>(source.height) + tol;
    });
}

double Pipeline::maxCropScale(const OptCrop& crop, OptAngle angle, Size source)
{
    const Crop rect = orFull(crop);
    const Turn turn(tiltOf(crop, angle));
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    const Centre centre = offsetOf(rect, source);
    const PointPx o = turn.toSource(centre.x, centre.y);
    const double hw = rect.w * w / 2.0, hh = rect.h * h / 2.0;
    double scale = HUGE_VAL;
    // From a centre at `at` in 0...extent a corner may move by `step` this many times.
    const auto limit = [&](double at, double step, double extent) {
        if (step > 1e-12) scale = std::min(scale, (extent - at) / step);
        if (step < -1e-12) scale = std::min(scale, at / -step);
    };
    for (const double sx : {-1.0, 1.0})
        for (const double sy : {-1.0, 1.0}) {
            const PointPx u = turn.toSource(sx * hw, sy * hh);
            limit(w / 2.0 + o.x, u.x, w);
            limit(h / 2.0 + o.y, u.y, h);
        }
    return scale > 0.0 && std::isfinite(scale) ? scale : 0.0;
}

Crop Pipeline::scaleCrop(const OptCrop& crop, double scale, Size source, double minPx)
{
    const Crop rect = orFull(crop);
    const double m = shortSidePx(rect, source);
    if (m > 0.0) scale = std::max(scale, minPx / m);
    return aroundCentre(rect, rect.w * scale, rect.h * scale);
}

Crop Pipeline::fitCropToAngle(const OptCrop& crop, double angle, Size source, bool grow, const OptCrop& ref)
{
    const Crop base = ref ? *ref : orFull(crop);
    const double fitting = maxCropScale(base, angle, source);
    return scaleCrop(base, grow || fitting < 1.0 ? fitting : 1.0, source, kSmallestPx);
}

Crop Pipeline::expandCrop(const OptCrop& crop, Size source, std::optional<double> aspect, OptAngle angle)
{
    const Crop rect = orFull(crop);
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    if (!(w > 0.0 && h > 0.0 && rect.w > 0.0 && rect.h > 0.0)) return rect;
    const double own = rect.w * w / (rect.h * h);
    const double tilt = tiltOf(crop, angle);
    if (std::abs(tilt) >= kNoTilt) {
        const double a = aspect.value_or(0.0) > 0.0 ? *aspect : own;
        const double unitHeight = w / a / h;
        const Crop unit = aroundCentre(rect, 1.0, unitHeight);
        const double t = std::max(maxCropScale(unit, tilt, source), 1.0 / std::min(unitHeight * h, w));
        return aroundCentre(rect, t, unitHeight * t);
    }
    const double a = !aspect ? own : *aspect > 0.0 ? *aspect : w / h;
    Crop out = w / h <= a ? aroundCentre(rect, 1.0, std::min(w / a / h, 1.0))
                          : aroundCentre(rect, std::min(a * h / w, 1.0), 1.0);
    out.x = std::clamp(out.x, 0.0, 1.0 - out.w);
    out.y = std::clamp(out.y, 0.0, 1.0 - out.h);
    return out;
}

Crop Pipeline::orientRect(const Crop& crop, int rotateDegrees, bool mirror)
{
    const double x = mirror ? 1.0 - crop.x - crop.w : crop.x;
    const double angle = orientAngle(crop.angle, mirror);
    switch (Orientation::orientQuarter(rotateDegrees)) {
    case 1:
        return {1.0 - crop.y - crop.h, x, crop.h, crop.w, angle};
    case 2:
        return {1.0 - x - crop.w, 1.0 - crop.y - crop.h, crop.w, crop.h, angle};
    case 3:
        return {crop.y, 1.0 - x - crop.w, crop.h, crop.w, angle};
    default:
        return {x, crop.y, crop.w, crop.h, angle};
    }
}

Crop Pipeline::unorientRect(const Crop& crop, int rotateDegrees, bool mirror)
{
    Crop out = crop;
    switch (Orientation::orientQuarter(rotateDegrees)) {
    case 1:
        out = {crop.y, 1.0 - crop.x - crop.w, crop.h, crop.w, crop.angle};
        break;
    case 2:
        out = {1.0 - crop.x - crop.w, 1.0 - crop.y - crop.h, crop.w, crop.h, crop.angle};
        break;
    case 3:
        out = {1.0 - crop.y - crop.h, crop.x, crop.h, crop.w, crop.angle};
        break;
    default:
        break;
    }
    if (mirror) out.x = 1.0 - out.x - out.w;
    out.angle = orientAngle(crop.angle, mirror);
    return out;
}

double Pipeline::orientAngle(double angle, bool mirror)
{
    return mirror ? -angle : angle;
}

} // namespace tamlo
