// CropDraft: a crop while it is being made, in pixels of the picture as it is shown: turned and mirrored, not
// yet cut. Every change keeps the rectangle within the picture and, tilted, its corners within the source.
// A plain value without a session: the room and the command line work on it alike.
#pragma once

#include "app/project/frame.h"
#include "app/shell/crop_aspect.h"
#include "app/shell/crop_rect.h"
#include "core/pipeline/crop_geometry.h"

#include <optional>
#include <vector>

namespace tamlo {

class CropDraft {
public:
    static constexpr double kMinSidePx = 64;
    static constexpr double kMostDegrees = 45;

    /// What a frame's crop depends on beside the crop itself.
    struct Picture {
        Size size;                          ///< of the source as it is shown
        Orient orient;                      ///< how it is turned for that
        std::optional<double> formatAspect; ///< long over short of the film's format; none for a custom size
        std::optional<double> cardAspect;   ///< of the picture on an instant card
    };

    CropDraft() = default;
    CropDraft(const Picture& picture, const std::optional<Crop>& crop);

    const Picture& picture() const { return picture_; }
    const RectPx& rect() const { return rect_; }
    double angle() const { return angle_; }
    CropAspectKind aspectKind() const { return aspectKind_; }
    /// Taller than wide; a square is what it was last.
    bool isPortrait() const;

    /// The rectangle of a frame without a crop.
    RectPx defaultRect() const;
    /// The crop to be stored; none where it is the default, within half a pixel.
    std::optional<Crop> value() const;

    bool isEnabled(CropAspectKind kind) const;
    /// The kinds that are offered here.
    std::vector<CropAspectKind> candidates() const;
    /// The first of the kinds that a rectangle fits; free where none does.
    CropAspectKind matchedAspect(const std::vector<CropAspectKind>& kinds, const RectPx& rect) const;
    /// Width over height of a kind as the rectangle stands; none for free, and where it has none.
    std::optional<double> aspectOf(CropAspectKind kind) const;

    void setRect(const RectPx& rect);
    /// Puts a ratio in force; the rectangle takes it round its centre, its area kept as far as it can be.
    void setAspect(CropAspectKind kind);
    void swapAspect();
    /// The largest rectangle in the ratio in force round the same centre.
    void expandToMax();
    void nudge(double dx, double dy);
    /// What a hand on a handle wants beside the move.
    struct Grip {
        bool fromCentre = false;
        bool keepsRatio = false; ///< where no ratio is in force, that of the rectangle
    };
    void drag(CropHandle handle, double dx, double dy, Grip grip);
    /// The whole picture, free, upright.
    void reset();

    /// Tilts within one gesture start from the same rectangle, so that turning back gives it back. Outside of
    /// a gesture each is one.
    void beginTilt();
    void setAngle(double degrees);
    void endTilt() { tilt_.reset(); }
    bool isTilting() const { return tilt_.has_value(); }
    /// Makes a line drawn along what should be level, or upright, so.
    void levelBy(Pipeline::PointPx from, Pipeline::PointPx to);

private:
    struct Tilt {
        RectPx from;
        bool grows; ///< the rectangle was as large as the picture let it be, and stays so
    };

    void applyAspect();
    double greatestScale(const RectPx& rect, double degrees) const;
    bool fits(const RectPx& rect, double degrees) const;
    /// The least move that brings the rectangle in, its size kept; as far as it goes where it is too large.
    RectPx nudgedInside(const RectPx& rect, double degrees) const;
    /// Moved and, where that isn't enough, shrunk.
    RectPx fitted(const RectPx& rect, double degrees) const;
    Crop unit(const RectPx& rect, double degrees) const;
    RectPx pixels(const Crop& crop) const;

    Picture picture_;
    RectPx rect_;
    double angle_ = 0;
    CropAspectKind aspectKind_;
    bool portraitLabels_ = false;
    std::optional<Tilt> tilt_;
};

} // namespace tamlo
