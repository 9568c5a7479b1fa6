#include "ui/canvas/canvas_link.h"

#include "app/shell/app_model.h"
#include "app/shell/frame_screen.h"

#include <algorithm>
#include <cmath>

namespace tamlo::ui {
namespace {

ScreenSize pointsOf(QSizeF size)
{
    return {size.width(), size.height()};
}

} // namespace

CanvasLink::CanvasLink(AppModel& model, FrameScreen* tiers, PictureView& view)
    : QObject(&view),
      model_(model),
      tiers_(tiers),
      view_(view),
      subscription_(model.subscribe({Concern::frameView}, [this](const ChangeSet&) { readBack(); }))
{
    connect(&view, &PictureView::fitChanged, this, &CanvasLink::tellFit);
    connect(&view, &PictureView::zoomAsked, this, &CanvasLink::zoomTo);
    connect(&view, &PictureView::panAsked, this, &CanvasLink::panTo);
    connect(&view, &PictureView::oneToOneAsked, this, &CanvasLink::toggleOneToOne);
    tellFit();
}

void CanvasLink::show(PictureView::Image image, Size full)
{
    if (image) {
        const Size known = full == Size() ? Size{image->width, image->height} : full;
        model_.zoom.setDetailLong(static_cast<double>(std::max(known.width, known.height)));
    }
    view_.setPicture(std::move(image), full);
    readBack();
}

void CanvasLink::tellFit()
{
    const QSizeF fit = view_.fitSize();
    const double scale = view_.devicePixelRatioF();
    model_.zoom.setFit(pointsOf(fit), pointsOf(view_.panelSize()), scale);
    if (tiers_ && !fit.isEmpty())
        tiers_->setFit({std::llround(fit.width()), std::llround(fit.height())}, scale);
    readBack();
}

void CanvasLink::readBack()
{
    const Zoom& zoom = model_.zoom;
    view_.setView(zoom.zoom(), {zoom.pan().x, zoom.pan().y});
    if (tiers_) tiers_->setZoom(zoom.zoom());
}

void CanvasLink::zoomTo(double zoom, QPointF about)
{
    const double before = model_.zoom.zoom();
    const PanPoints pan = model_.zoom.pan();
    model_.zoom.setZoomPercent(zoom / model_.zoom.oneToOneZoom() * 100);
    const double factor = model_.zoom.zoom() / before;
    model_.zoom.setPan({about.x() - (about.x() - pan.x) * factor, about.y() - (about.y() - pan.y) * factor});
    readBack();
}

void CanvasLink::panTo(QPointF pan)
{
    model_.zoom.setPan({pan.x(), pan.y()});
    readBack();
}

void CanvasLink::toggleOneToOne(QPointF about)
{
    const bool isFit = std::abs(model_.zoom.zoom() - 1) < 0.01;
    if (!isFit) {
        model_.zoom.reset();
        return readBack();
    }
    zoomTo(model_.zoom.oneToOneZoom(), about);
}

} // namespace tamlo::ui
