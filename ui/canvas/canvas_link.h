// CanvasLink: joins a picture view to the session: the fit goes to the session's zoom and to the tiers, what
// a hand asks goes to the zoom, and what comes of it goes back to the view.
#pragma once

#include "app/shell/observers.h"
#include "ui/canvas/picture_view.h"

#include <QObject>

namespace tamlo {
class AppModel;
class FrameScreen;
} // namespace tamlo

namespace tamlo::ui {

class CanvasLink : public QObject {
public:
    /// All of them outlive this. tiers: none where no picture gets better.
    CanvasLink(AppModel& model, FrameScreen* tiers, PictureView& view);

    /// Shows the main picture; full: its size in all its pixels, which is what 1:1 counts, or empty.
    void show(PictureView::Image image, Size full);

    void zoomTo(double zoom, QPointF about);
    void panTo(QPointF pan);
    /// From the fit to 1:1 about a point, from all else to the fit.
    void toggleOneToOne(QPointF about);

private:
    void tellFit();
    void readBack();

    AppModel& model_;
    FrameScreen* tiers_;
    PictureView& view_;
    Subscription subscription_;
};

} // namespace tamlo::ui
