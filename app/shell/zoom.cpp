#include "app/shell/zoom.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tamlo {

namespace {

constexpr double kNearFit = 0.01;      // of the zoom, and of the percent
constexpr double kNextRung = 0.005;    // a rung this near is the one we stand on
constexpr double kLeastDivisor = 1e-6; // of 1:1
constexpr double kRungs[] = {25, 33, 50, 66, 100, 150, 200, 400};

double longSide(ScreenSize size)
{
    return std::max(size.width, size.height);
}

} // namespace

void Zoom::setFit(ScreenSize fit, ScreenSize panel, double displayScale)
{
    fit_ = longSide(fit) > 0 ? std::optional(fit) : std::nullopt;
    panel_ = panel;
    displayScale_ = displayScale > 0 ? displayScale : 1;
    setZoom(isFit() ? 1 : zoom_);
}

double Zoom::oneToOneZoom() const
{
    if (!fit_ || !(detailLongPx_ > 0)) return 1;
    return detailLongPx_ / displayScale_ / longSide(*fit_);
}

std::vector<double> Zoom::zoomLadder() const
{
    std::vector<double> rungs(std::begin(kRungs), std::end(kRungs));
    rungs.push_back(100 / std::max(oneToOneZoom(), kLeastDivisor));
    std::ranges::sort(rungs);
    return rungs;
}

std::string Zoom::zoomLabel() const
{
    if (isFit()) return T("zoom.fit");
    char text[32];
    std::snprintf(text, sizeof text, "%.0f%%", zoomPercent());
    return text;
}

bool Zoom::isFit() const
{
    return std::abs(zoom_ - 1) < kNearFit;
}

/// The range always holds 1:1, however large or small the picture is.
double Zoom::limited(double zoom) const
{
    const double one = oneToOneZoom();
    return std::clamp(zoom, std::min(kLeast, one), std::max(kMost, one));
}

void Zoom::setZoom(double zoom)
{
    const double before = zoom_;
    zoom_ = limited(zoom);
    pan_ = {pan_.x * zoom_ / before, pan_.y * zoom_ / before}; // the centre stays
    clampPan();
    model_.seams().views.setZoom(zoom_);
}

void Zoom::stepZoom(int direction)
{
    if (model_.selection.screen() != Screen::develop || !fit_ || direction == 0) return;
    const std::vector<double> rungs = zoomLadder();
    const double now = zoomPercent();
    if (direction > 0) {
        const auto next = std::ranges::find_if(rungs, [&](double r) { return r > now * (1 + kNextRung); });
        if (next != rungs.end()) setZoomPercent(*next);
    } else {
        const auto last =
            std::find_if(rungs.rbegin(), rungs.rend(), [&](double r) { return r < now * (1 - kNextRung); });
        if (last != rungs.rend()) setZoomPercent(*last);
    }
}

void Zoom::setZoomPercent(double percent)
{
    const double fitPercent = 100 / std::max(oneToOneZoom(), kLeastDivisor);
    if (std::abs(percent - fitPercent) < kNearFit) return reset();
    setZoom(percent / 100 * oneToOneZoom());
}

void Zoom::toggleOneToOne()
{
    isFit() ? setZoom(oneToOneZoom()) : reset();
}

void Zoom::setPan(PanPoints pan)
{
    pan_ = pan;
    clampPan();
}

void Zoom::reset()
{
    model_.observers.note(Concern::frameView);
    zoom_ = 1;
    pan_ = {};
    model_.seams().views.setZoom(zoom_);
}

void Zoom::clampPan()
{
    const auto most = [&](double photo, double panel) { return std::max((photo * zoom_ - panel) / 2, 0.0); };
    const ScreenSize fit = fit_.value_or(ScreenSize());
    const double x = most(fit.width, panel_.width), y = most(fit.height, panel_.height);
    model_.observers.note(Concern::frameView);
    pan_ = {std::clamp(pan_.x, -x, x), std::clamp(pan_.y, -y, y)};
}

} // namespace tamlo
