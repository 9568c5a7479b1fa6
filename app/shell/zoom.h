// Zoom: how close the frame on the develop screen is looked at, and at which part. A multiple of the fit; 1:1
// is one pixel of the source on one of the screen. Points are those of the screen, a pixel is a point divided
// by the screen's scale.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

struct ScreenSize {
    double width = 0, height = 0; ///< points
    bool operator==(const ScreenSize&) const = default;
};
struct PanPoints {
    double x = 0, y = 0;
    bool operator==(const PanPoints&) const = default;
};

class Zoom {
public:
    static constexpr double kLeast = 0.5, kMost = 8;

    explicit Zoom(AppModel& model) : model_(model) {}

    /// What the screen tells: size of the fitted picture, of the room for it, and pixels a point.
    void setFit(ScreenSize fit, ScreenSize panel, double displayScale);
    /// Long side in source pixels of what is looked at: of the source, cut as the crop cuts it.
    void setDetailLong(double px) { detailLongPx_ = px; }

    double zoom() const { return zoom_; }
    PanPoints pan() const { return pan_; }
    /// The zoom of 1:1; 1 while no picture or no screen is known.
    double oneToOneZoom() const;
    /// Percents of 1:1 that the keys go through, the fit's own among them.
    std::vector<double> zoomLadder() const;
    double zoomPercent() const { return zoom_ / oneToOneZoom() * 100; }
    /// "66%", or the word for the fit.
    std::string zoomLabel() const;

    /// To the next rung; only on the develop screen.
    void stepZoom(int direction);
    void setZoomPercent(double percent);
    void toggleOneToOne();
    void setPan(PanPoints pan);
    void reset();

private:
    bool isFit() const;
    double limited(double zoom) const;
    void setZoom(double zoom);
    void clampPan();

    AppModel& model_;
    std::optional<ScreenSize> fit_;
    ScreenSize panel_;
    double displayScale_ = 1, detailLongPx_ = 0;
    double zoom_ = 1;
    PanPoints pan_;
};

} // namespace tamlo
