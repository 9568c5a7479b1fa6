// PictureView: the print on the canvas, fitted, zoomed and moved about; two of them side by side or with a
// line between them. Drawn from finished tiles in the colours of the screen, without a GPU. It holds no view
// of its own: a gesture asks for a zoom or a pan, and whoever hears of it tells what came of it by setView.
// Points are of this widget; a pan is that of the picture's centre from the panel's centre.
#pragma once

#include "ui/canvas/picture_layer.h"

#include <QTimer>
#include <QWidget>

#include <array>
#include <optional>
#include <tuple>

namespace tamlo::ui {

class DisplayColor;
class SplitHandle;

class PictureView : public QWidget {
    Q_OBJECT

public:
    using Image = PictureLayer::Image;
    enum class Side { main, beside };
    /// split: one place, the main picture left of a line and the other right of it. sideBySide: the same part
    /// twice.
    enum class Arrangement { one, split, sideBySide };
    enum class Surround { dark, grey, white };

    explicit PictureView(QWidget* parent = nullptr);
    ~PictureView() override;

    /// The pixels are not copied. Null: nothing is shown. full: size of the same picture in all its pixels,
    /// so that it is fitted alike in every size in which it comes; empty where that isn't known.
    void setPicture(Image image, Size full = {}) { setPicture(Side::main, std::move(image), full); }
    void setPicture(Side side, Image image, Size full = {});
    /// Shown in a corner while there are two.
    void setName(Side side, const QString& name);
    void setArrangement(Arrangement arrangement);
    Arrangement arrangement() const { return arrangement_; }
    /// Share of the width left of the line, 0...1.
    void setSplit(double share);
    double split() const { return split_; }
    void setSurround(Surround surround);
    Surround surround() const { return surround_; }
    /// The wheel zooms without the control key too.
    void setWheelZooms(bool zooms) { wheelZooms_ = zooms; }
    /// Outlives this; without one every screen counts as sRGB.
    void setDisplayColor(DisplayColor* color);

    /// What is in force: times the fit, and points.
    void setView(double zoom, QPointF pan);
    double zoom() const { return zoom_; }
    QPointF pan() const { return pan_; }

    /// Points: of the fitted picture, of one picture's panel, of the main picture as it lies now.
    QSizeF fitSize() const { return place(Side::main).fit(); }
    QSizeF panelSize() const;
    QRectF pictureRect() const;
    /// What is on screen is there exactly, in all its visible parts.
    bool isExact() const;
    /// A greyscale value of 0...255 of the surround.
    static int greyOf(Surround surround);

    QSize sizeHint() const override { return {960, 640}; }
    QSize minimumSizeHint() const override { return {160, 120}; }

Q_SIGNALS:
    /// fitSize, panelSize or the display scale are others now.
    void fitChanged();
    /// about: the point that stays where it is, from the panel's centre.
    void zoomAsked(double zoom, QPointF about);
    void panAsked(QPointF pan);
    void oneToOneAsked(QPointF about);
    void splitChanged(double share);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool isTwo() const { return arrangement_ != Arrangement::one; }
    PictureLayer& layer(Side side) { return layers_[side == Side::main ? 0 : 1]; }
    const PictureLayer& layer(Side side) const { return layers_[side == Side::main ? 0 : 1]; }
    /// Points that show a side's picture, and the panel that its place is reckoned in.
    QRectF portOf(Side side) const;
    QRectF panelOf(Side side) const;
    CanvasPlace place(Side side) const;
    QPointF fromCentre(QPointF point) const;
    bool canPan() const;
    void askZoomBy(double factor, QPointF point);
    void aim();
    void stepped();
    void refreshColor();
    void geometryChanged();
    void paintNames(QPainter& painter) const;

    TileCache cache_;
    std::array<PictureLayer, 2> layers_{PictureLayer(cache_), PictureLayer(cache_)};
    std::array<QString, 2> names_;
    DisplayColor* color_ = nullptr;
    SplitHandle* handle_;
    Arrangement arrangement_ = Arrangement::one;
    Surround surround_ = Surround::dark;
    double split_ = 0.5, zoom_ = 1;
    QPointF pan_;
    bool wheelZooms_ = false, isMoving_ = false;
    QTimer rest_;
    std::optional<QPointF> dragFrom_; ///< where the hand was, less the pan
    std::tuple<QSizeF, QSizeF, double> toldFit_;
};

} // namespace tamlo::ui
