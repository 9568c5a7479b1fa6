#include "app/shell/crop_draft.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {

namespace {

/// A rectangle counts as square, and as the default one, within this.
constexpr double kHalfPixel = 0.5;
/// Corners this far beyond the source are in it: what arithmetic leaves over.
constexpr double kCornerTolerancePx = 1e-6;

bool isNear(const RectPx& a, const RectPx& b)
{
    return std::abs(a.x - b.x) <= kHalfPixel && std::abs(a.y - b.y) <= kHalfPixel &&
           std::abs(a.w - b.w) <= kHalfPixel && std::abs(a.h - b.h) <= kHalfPixel;
}

RectPx scaled(const RectPx& rect, double scale)
{
    const double w = rect.w * scale, h = rect.h * scale;
    return {rect.centreX() - w / 2, rect.centreY() - h / 2, w, h};
}

/// How far an interval must move to lie in 0...bound; a longer one goes to the middle.
double moveInto(double low, double high, double bound)
{
    if (high - low > bound) return (bound - high - low) / 2;
    if (low < 0) return -low;
    return high > bound ? bound - high : 0;
}

double width(Size size)
{
    return static_cast<double>(size.width);
}
double height(Size size)
{
    return static_cast<double>(size.height);
}

} // namespace

CropDraft::CropDraft(const Picture& picture, const std::optional<Crop>& crop) : picture_(picture)
{
    const RectPx whole = defaultRect();
    portraitLabels_ = whole.h > whole.w;
    if (crop) {
        const Crop shown =
            Pipeline::orientRect(*crop, static_cast<int>(picture.orient.rot) * 90, picture.orient.mirror);
        setRect(pixels(shown));
        angle_ = std::clamp(shown.angle, -kMostDegrees, kMostDegrees);
    } else {
        setRect(whole);
    }
    aspectKind_ = matchedAspect(candidates(), rect_);
}

Crop CropDraft::unit(const RectPx& rect, double degrees) const
{
    const double w = width(picture_.size), h = height(picture_.size);
    return {rect.x / w, rect.y / h, rect.w / w, rect.h / h, degrees};
}

RectPx CropDraft::pixels(const Crop& crop) const
{
    const double w = width(picture_.size), h = height(picture_.size);
    return {crop.x * w, crop.y * h, crop.w * w, crop.h * h};
}

bool CropDraft::isPortrait() const
{
    if (rect_.w > rect_.h + kHalfPixel) return false;
    return rect_.h > rect_.w + kHalfPixel || portraitLabels_;
}

RectPx CropDraft::defaultRect() const
{
    if (!picture_.cardAspect) return {0, 0, width(picture_.size), height(picture_.size)};
    const Pipeline::PixelRect card = Pipeline::aspectRect(picture_.size, *picture_.cardAspect);
    return {static_cast<double>(card.x0), static_cast<double>(card.y0), static_cast<double>(card.width()),
            static_cast<double>(card.height())};
}

std::optional<Crop> CropDraft::value() const
{
    if (angle_ == 0 && isNear(rect_, defaultRect())) return std::nullopt;
    return Pipeline::clamped(Pipeline::unorientRect(
        unit(rect_, angle_), static_cast<int>(picture_.orient.rot) * 90, picture_.orient.mirror));
}

bool CropDraft::isEnabled(CropAspectKind kind) const
{
    return kind.kind != CropAspectKind::Kind::format || picture_.formatAspect.has_value();
}

std::vector<CropAspectKind> CropDraft::candidates() const
{
    std::vector<CropAspectKind> out = CropAspectKind::ladder();
    std::erase_if(out, [this](CropAspectKind kind) { return !isEnabled(kind); });
    return out;
}

CropAspectKind CropDraft::matchedAspect(const std::vector<CropAspectKind>& kinds, const RectPx& rect) const
{
    if (!(rect.w > 0 && rect.h > 0)) return CropAspectKind::free();
    for (const CropAspectKind kind : kinds) {
        const auto aspect =
            kind.kind == CropAspectKind::Kind::format ? picture_.formatAspect : std::optional(kind.ratio);
        if (kind.kind != CropAspectKind::Kind::free && aspect && hasAspect(rect.w / rect.h, *aspect))
            return kind;
    }
    return CropAspectKind::free();
}

std::optional<double> CropDraft::aspectOf(CropAspectKind kind) const
{
    if (kind.kind == CropAspectKind::Kind::free) return std::nullopt;
    const auto aspect =
        kind.kind == CropAspectKind::Kind::format ? picture_.formatAspect : std::optional(kind.ratio);
    if (!aspect || !(*aspect > 0)) return std::nullopt;
    return isPortrait() ? 1 / *aspect : *aspect;
}

void CropDraft::setRect(const RectPx& rect)
{
    rect_ = rect;
    if (rect.w > rect.h + kHalfPixel) portraitLabels_ = false;
    if (rect.h > rect.w + kHalfPixel) portraitLabels_ = true;
}

void CropDraft::setAspect(CropAspectKind kind)
{
    if (!isEnabled(kind)) return;
    aspectKind_ = kind;
    applyAspect();
}

void CropDraft::applyAspect()
{
    constexpr double kLeastArea = kMinSidePx * kMinSidePx;
    const std::optional<double> aspect = aspectOf(aspectKind_);
    if (!aspect) return;
    const double a = *aspect, mostW = width(picture_.size), mostH = height(picture_.size);
    double h = std::max(std::sqrt(std::max(rect_.w * rect_.h, kLeastArea) / a), kMinSidePx), w = a * h;
    if (w < kMinSidePx) {
        w = kMinSidePx;
        h = kMinSidePx / a;
    }
    if (w > mostW) {
        w = mostW;
        h = mostW / a;
    }
    if (h > mostH) {
        h = mostH;
        w = mostH * a;
    }
    // In a picture too narrow for it the ratio gives way to the least side.
    const RectPx about{rect_.centreX() - w / 2, rect_.centreY() - h / 2, w, h};
    setRect(fitted(CropGeometry::clamped(about, picture_.size, kMinSidePx), angle_));
}

void CropDraft::swapAspect()
{
    portraitLabels_ = !isPortrait();
    setRect(fitted(CropGeometry::transposed(rect_, picture_.size, kMinSidePx), angle_));
}

void CropDraft::expandToMax()
{
    const double own = rect_.w / rect_.h;
    const Crop open =
        Pipeline::expandCrop(unit(rect_, angle_), picture_.size, aspectOf(aspectKind_).value_or(own), angle_);
    setRect(fitted(pixels(open), angle_));
}

void CropDraft::nudge(double dx, double dy)
{
    const RectPx moved = nudgedInside(CropGeometry::moved(rect_, dx, dy, picture_.size), angle_);
    if (fits(moved, angle_)) setRect(moved);
}

void CropDraft::drag(CropHandle handle, double dx, double dy, Grip grip)
{
    if (handle == CropHandle::body) return nudge(dx, dy);
    std::optional<double> aspect = aspectOf(aspectKind_);
    if (!aspect && grip.keepsRatio) aspect = rect_.w / rect_.h;
    const RectPx wanted =
        CropGeometry::resized(rect_, handle, dx, dy, picture_.size, aspect, grip.fromCentre, kMinSidePx);
    if (fits(wanted, angle_)) return setRect(wanted);
    // As far towards it as the tilted picture goes.
    const auto between = [&](double t) {
        return RectPx{rect_.x + t * (wanted.x - rect_.x), rect_.y + t * (wanted.y - rect_.y),
                      rect_.w + t * (wanted.w - rect_.w), rect_.h + t * (wanted.h - rect_.h)};
    };
    double inside = 0, outside = 1;
    for (int i = 0; i < 40; ++i) {
        const double t = (inside + outside) / 2;
        (fits(between(t), angle_) ? inside : outside) = t;
    }
    setRect(between(inside));
}

void CropDraft::reset()
{
    aspectKind_ = CropAspectKind::free();
    angle_ = 0;
    tilt_.reset();
    setRect({0, 0, width(picture_.size), height(picture_.size)});
}

double CropDraft::greatestScale(const RectPx& rect, double degrees) const
{
    if (!(rect.w > 0 && rect.h > 0)) return 0;
    const double w = width(picture_.size), h = height(picture_.size);
    const double upright = std::min({2 * rect.centreX() / rect.w, 2 * (w - rect.centreX()) / rect.w,
                                     2 * rect.centreY() / rect.h, 2 * (h - rect.centreY()) / rect.h});
    return std::max(std::min(upright, Pipeline::maxCropScale(unit(rect, degrees), degrees, picture_.size)),
                    0.0);
}

bool CropDraft::fits(const RectPx& rect, double degrees) const
{
    return rect.x >= -kCornerTolerancePx && rect.y >= -kCornerTolerancePx &&
           rect.x + rect.w <= width(picture_.size) + kCornerTolerancePx &&
           rect.y + rect.h <= height(picture_.size) + kCornerTolerancePx &&
           Pipeline::cropFits(unit(rect, degrees), degrees, picture_.size, kCornerTolerancePx);
}

RectPx CropDraft::nudgedInside(const RectPx& rect, double degrees) const
{
    // Two walls, the upright picture and the tilted source: each move is the least for one of them, and taken
    // in turn they end where both hold.
    constexpr int kMostTurns = 64;
    const double radians = degrees * std::numbers::pi / 180, c = std::cos(radians), s = std::sin(radians);
    const double w = width(picture_.size), h = height(picture_.size);
    RectPx at = rect;
    for (int i = 0; i < kMostTurns && !fits(at, degrees); ++i) {
        const auto corners = Pipeline::cropCornersSrc(unit(at, degrees), degrees, picture_.size);
        const auto [left, right] = std::ranges::minmax(corners, {}, &Pipeline::PointPx::x);
        const auto [top, bottom] = std::ranges::minmax(corners, {}, &Pipeline::PointPx::y);
        const double dx = moveInto(left.x, right.x, w), dy = moveInto(top.y, bottom.y, h);
        at.x += c * dx - s * dy;
        at.y += s * dx + c * dy;
        at = CropGeometry::moved(at, 0, 0, picture_.size);
    }
    return at;
}

RectPx CropDraft::fitted(const RectPx& rect, double degrees) const
{
    const RectPx inside = nudgedInside(rect, degrees);
    if (fits(inside, degrees)) return inside;
    // Too large: about the centre it had, and about the middle where even that lies outside.
    const double scale = std::min(greatestScale(rect, degrees), 1.0);
    if (scale * std::min(rect.w, rect.h) >= kMinSidePx) return scaled(rect, scale);
    const RectPx middle{(width(picture_.size) - rect.w) / 2, (height(picture_.size) - rect.h) / 2, rect.w,
                        rect.h};
    return scaled(middle, std::min(greatestScale(middle, degrees), 1.0));
}

void CropDraft::beginTilt()
{
    constexpr double kSame = 1e-6;
    tilt_ = Tilt{rect_, std::abs(greatestScale(rect_, angle_) - 1) < kSame};
}

void CropDraft::setAngle(double degrees)
{
    const bool isGesture = tilt_.has_value();
    if (!isGesture) beginTilt();
    angle_ = std::isfinite(degrees) ? std::clamp(degrees, -kMostDegrees, kMostDegrees) : angle_;
    const double most = greatestScale(tilt_->from, angle_);
    const double least = kMinSidePx / std::min(tilt_->from.w, tilt_->from.h);
    const double scale = std::max(tilt_->grows ? most : std::min(most, 1.0), least);
    setRect(fitted(scaled(tilt_->from, scale), angle_));
    if (!isGesture) endTilt();
}

void CropDraft::levelBy(Pipeline::PointPx from, Pipeline::PointPx to)
{
    constexpr double kQuarter = 90;
    if (from.x == to.x && from.y == to.y) return;
    const double line = std::atan2(to.y - from.y, to.x - from.x) * 180 / std::numbers::pi;
    setAngle(angle_ - (line - kQuarter * std::round(line / kQuarter)));
}

} // namespace tamlo
