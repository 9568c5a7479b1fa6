// CropOverlay: the session of a crop over the canvas: the picture as it was taken, the rectangle with its
// eight handles, the line that makes level. It is there for as long as the session lasts, as large as its
// parent, and takes the keys of the session wherever in the window's half the focus is.
#pragma once

#include "app/shell/crop_source.h"
#include "ui/screens/crop_canvas.h"
#include "ui/screens/desk.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

namespace tamlo::ui {

class CropGrip;
class DisplayColor;

class CropOverlay : public QWidget {
public:
    /// Called when setLevelArmed has changed something.
    std::function<void(bool)> onLevelArmed;

    /// color: null where every screen is sRGB. All of them outlive this.
    CropOverlay(AppModel& model, LiveViews& views, DisplayColor* color, QWidget* parent);
    CropOverlay(const Desk& desk, DisplayColor* color, QWidget* parent)
        : CropOverlay(desk.model, desk.views, color, parent)
    {}
    ~CropOverlay() override;

    /// The next drag draws a line along what is to be level.
    void setLevelArmed(bool isArmed);
    bool isLevelArmed() const { return isLevelArmed_; }
    /// A key of the session, pressed in the overlay or in the panel beside it. False for any other key.
    bool takeKey(const QKeyEvent& event);
    /// Whether a key is one of them, so that no command of the window takes it.
    static bool isSessionKey(const QKeyEvent& event);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void follow();
    void arrange();
    void retranslate();
    void dragBy(CropHandle handle, QPointF points, Qt::KeyboardModifiers modifiers);
    void step(CropHandle handle, QPoint by, Qt::KeyboardModifiers modifiers);
    void beginDrag();
    void endDrag();
    void tiltBy(double degrees);
    void paintGrid(QPainter& painter, const QRectF& rect) const;

    AppModel& model_;
    DisplayColor* color_;
    CropCanvas canvas_;
    CropSource source_;
    std::array<CropGrip*, 8> grips_;
    std::optional<RectPx> before_;         ///< a drag began with it
    std::optional<QPointF> press_, level_; ///< of a drag of the whole; the far end of the level line
    bool isLevelArmed_ = false;
    double shownAngle_ = 0;
    QTimer tiltRest_;
    Subscription subscription_;
};

} // namespace tamlo::ui
