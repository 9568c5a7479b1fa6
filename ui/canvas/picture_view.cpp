#include "ui/canvas/picture_view.h"

#include "ui/canvas/canvas_accessible.h"
#include "ui/canvas/display_color.h"
#include "ui/canvas/split_handle.h"
#include "ui/kit/words.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tamlo::ui {
namespace {

using namespace std::chrono_literals;

/// After the last step of a zoom, or of a window being dragged larger, the exact pixels are made.
constexpr auto kRest = 80ms;
constexpr double kGapPt = 2; ///< between two pictures side by side

QRect inPixels(const QRectF& points, double scale)
{
    const auto px = [scale](double value) { return static_cast<int>(std::lround(value * scale)); };
    const QPoint from(px(points.left()), px(points.top()));
    return {from, QSize(px(points.right()) - from.x(), px(points.bottom()) - from.y())};
}

constexpr PictureView::Side kSides[] = {PictureView::Side::main, PictureView::Side::beside};

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent), handle_(new SplitHandle(this))
{
    installCanvasAccessibility();
    handle_->setAccessibleName(word("canvas.split"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    grabGesture(Qt::PinchGesture);
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    connect(&rest_, &QTimer::timeout, this, [this] {
        isMoving_ = false;
        aim();
        update();
    });
    for (PictureLayer& layer : layers_)
        connect(&layer, &PictureLayer::changed, this, qOverload<>(&QWidget::update));
    connect(handle_, &QSlider::valueChanged, this, [this](int value) {
        split_ = double(value) / SplitHandle::kSteps;
        handle_->place();
        aim();
        update();
        Q_EMIT splitChanged(split_);
    });
}

PictureView::~PictureView() = default;

void PictureView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) handle_->setAccessibleName(word("canvas.split"));
    QWidget::changeEvent(event);
}

int PictureView::greyOf(Surround surround)
{
    switch (surround) {
    case Surround::dark:
        return 26;
    case Surround::grey:
        return 119; // L* 50
    case Surround::white:
        break;
    }
    return 242; // of an unprinted sheet
}

void PictureView::setPicture(Side side, Image image, Size full)
{
    layer(side).setPicture(std::move(image), full);
    geometryChanged();
    aim();
    update();
}

void PictureView::setName(Side side, const QString& name)
{
    names_[side == Side::main ? 0 : 1] = name;
    update();
}

void PictureView::setArrangement(Arrangement arrangement)
{
    if (arrangement == arrangement_) return;
    arrangement_ = arrangement;
    handle_->setVisible(arrangement == Arrangement::split);
    handle_->place();
    geometryChanged();
    aim();
    update();
}

void PictureView::setSplit(double share)
{
    handle_->setValue(static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * SplitHandle::kSteps)));
}

void PictureView::setSurround(Surround surround)
{
    surround_ = surround;
    update();
}

void PictureView::setDisplayColor(DisplayColor* color)
{
    if (color_) disconnect(color_, nullptr, this, nullptr);
    color_ = color;
    if (color_) connect(color_, &DisplayColor::changed, this, &PictureView::refreshColor);
    refreshColor();
}

void PictureView::refreshColor()
{
    const ScreenColor color = color_ ? color_->of(screen()) : ScreenColor();
    for (PictureLayer& layer : layers_) layer.setColor(color);
    geometryChanged();
    aim();
    update();
}

void PictureView::setView(double zoom, QPointF pan)
{
    if (zoom == zoom_ && pan == pan_) return;
    const bool isStep = zoom != zoom_;
    zoom_ = zoom;
    pan_ = pan;
    isStep ? stepped() : aim();
    update();
}

/// What is there is stretched for as long as steps follow each other.
void PictureView::stepped()
{
    isMoving_ = true;
    rest_.start();
    aim();
}

QRectF PictureView::panelOf(Side side) const
{
    const QRectF whole = rect();
    if (arrangement_ != Arrangement::sideBySide) return whole;
    const double half = (whole.width() - kGapPt) / 2;
    return {side == Side::main ? 0 : half + kGapPt, 0, std::max(half, 1.0), whole.height()};
}

QRectF PictureView::portOf(Side side) const
{
    if (arrangement_ != Arrangement::split) return panelOf(side);
    const double line = split_ * width();
    return side == Side::main ? QRectF(0, 0, line, height()) : QRectF(line, 0, width() - line, height());
}

QSizeF PictureView::panelSize() const
{
    return panelOf(Side::main).size();
}

CanvasPlace PictureView::place(Side side) const
{
    CanvasPlace place{
        layer(side).shape(), layer(side).pixels(), panelSize(), devicePixelRatioF(), zoom_, pan_};
    // Two of nearly one shape lie in one place.
    const Size other = layer(Side::main).shape();
    if (side == Side::beside && isSameShape(place.shape, other)) place.shape = other;
    return place;
}

QRectF PictureView::pictureRect() const
{
    const CanvasPlace at = place(Side::main);
    if (at.isEmpty()) return {};
    const QPointF from = at.pointOf({0, 0}), to = at.pointOf({1, 1});
    return QRectF(from, to).translated(panelOf(Side::main).topLeft());
}

bool PictureView::isExact() const
{
    return layer(Side::main).isExact() &&
           (!isTwo() || !layer(Side::beside).picture() || layer(Side::beside).isExact());
}

void PictureView::aim()
{
    const double scale = devicePixelRatioF();
    for (const Side side : kSides) {
        if (side == Side::beside && !isTwo()) continue;
        const QRectF port = portOf(side).translated(-panelOf(side).topLeft());
        layer(side).aim(place(side), inPixels(port, scale), isMoving_);
    }
}

void PictureView::geometryChanged()
{
    const std::tuple now(fitSize(), panelSize(), devicePixelRatioF());
    if (now == toldFit_) return;
    toldFit_ = now;
    Q_EMIT fitChanged();
}

void PictureView::resizeEvent(QResizeEvent*)
{
    handle_->place();
    geometryChanged();
    stepped();
}

bool PictureView::canPan() const
{
    const QSizeF shown = fitSize() * zoom_, panel = panelSize();
    return shown.width() > panel.width() || shown.height() > panel.height();
}

void PictureView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const double scale = devicePixelRatioF();
    const int grey = greyOf(surround_);
    painter.scale(1 / scale, 1 / scale); // tiles are drawn pixel by pixel
    painter.setClipRect(inPixels(event->rect(), scale));
    QRegion open(inPixels(rect(), scale));
    for (const Side side : kSides) {
        if (side == Side::beside && !isTwo()) continue;
        open -= layer(side).covered().translated(inPixels(panelOf(side), scale).topLeft());
    }
    for (const QRect& bare : open) painter.fillRect(bare, QColor(grey, grey, grey));
    for (const Side side : kSides) {
        if (side == Side::beside && !isTwo()) continue;
        const QPoint corner = inPixels(panelOf(side), scale).topLeft();
        painter.translate(corner);
        layer(side).paint(painter, isMoving_);
        painter.translate(-corner);
    }
    painter.scale(scale, scale);
    if (arrangement_ == Arrangement::sideBySide)
        painter.fillRect(QRectF(panelOf(Side::main).right(), 0, kGapPt, height()), QColor(0, 0, 0));
    if (isTwo()) paintNames(painter);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
        painter.setBrush(Qt::NoBrush); // the names have left theirs
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}

/// In a corner of each half, on a dark ground, so that they can be read on any picture.
void PictureView::paintNames(QPainter& painter) const
{
    constexpr double kInsetPt = 12, kPaddingPt = 8, kRoundPt = 3;
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Side side : kSides) {
        const QRectF port = portOf(side);
        const double room = port.width() - 2 * (kInsetPt + kPaddingPt);
        const QString name =
            painter.fontMetrics().elidedText(names_[side == Side::main ? 0 : 1], Qt::ElideRight, int(room));
        if (name.isEmpty() || room <= 0) continue;
        const QSizeF text(painter.fontMetrics().horizontalAdvance(name), painter.fontMetrics().height());
        QRectF box(0, 0, text.width() + 2 * kPaddingPt, text.height() + kPaddingPt);
        // The outer corners: the line between the two never covers a name.
        box.moveTop(port.top() + kInsetPt);
        side == Side::main ? box.moveLeft(port.left() + kInsetPt) : box.moveRight(port.right() - kInsetPt);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(20, 20, 20, 200));
        painter.drawRoundedRect(box, kRoundPt, kRoundPt);
        painter.setPen(QColor(240, 240, 240));
        painter.drawText(box, Qt::AlignCenter, name);
    }
}

} // namespace tamlo::ui
