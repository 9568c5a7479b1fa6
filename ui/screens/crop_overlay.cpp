#include "ui/screens/crop_overlay.h"

#include "ui/canvas/display_color.h"
#include "ui/canvas/picture_view.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/crop_grip.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <chrono>
#include <cmath>

namespace tamlo::ui {
namespace {

using namespace std::chrono_literals;

constexpr auto kTiltRest = 300ms; ///< the fine grid stays so long after a tilt
constexpr double kFarStep = 10;
constexpr double kTiltStepDegrees = 0.1;

} // namespace

CropOverlay::CropOverlay(AppModel& model, LiveViews& views, DisplayColor* color, QWidget* parent)
    : QWidget(parent),
      model_(model),
      color_(color),
      canvas_([this] { update(); }),
      source_(model, views, [this] { follow(); })
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    QWidget* before = this;
    for (std::size_t i = 0; i < grips_.size(); ++i) {
        auto* grip = new CropGrip(CropGrip::handles()[i], this);
        connect(grip, &CropGrip::gripped, this, &CropOverlay::beginDrag);
        connect(grip, &CropGrip::released, this, &CropOverlay::endDrag);
        connect(grip, &CropGrip::dragged, this,
                [this, grip](QPointF by, Qt::KeyboardModifiers keys) { dragBy(grip->handle(), by, keys); });
        connect(grip, &CropGrip::stepped, this,
                [this, grip](QPoint by, Qt::KeyboardModifiers keys) { step(grip->handle(), by, keys); });
        setTabOrder(before, grip);
        before = grip;
        grips_[i] = grip;
    }
    tiltRest_.setSingleShot(true);
    tiltRest_.setInterval(kTiltRest);
    connect(&tiltRest_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    if (color_) connect(color_, &DisplayColor::changed, this, &CropOverlay::follow);
    parent->installEventFilter(this);
    subscription_ = model_.subscribe({Concern::crop, Concern::frameView, Concern::roll, Concern::selection},
                                     [this](const ChangeSet&) {
                                         if (model_.cropping.cropMode()) source_.refresh();
                                         follow();
                                     });
    retranslate();
    hide();
}

CropOverlay::~CropOverlay() = default;

void CropOverlay::retranslate()
{
    setAccessibleName(word("crop.area"));
    setAccessibleDescription(word("crop.areaHelp"));
    for (CropGrip* grip : grips_) grip->setAccessibleName(word("crop.handle." + utf8(grip->name())));
}

void CropOverlay::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

/// Shows the session as it is, or that there is none.
void CropOverlay::follow()
{
    const auto& draft = model_.cropping.draft();
    if (!draft) {
        if (isHidden()) return;
        endDrag();
        setLevelArmed(false);
        hide();
        return;
    }
    if (isHidden()) {
        setGeometry(parentWidget()->rect());
        raise();
        show();
        setFocus();
    }
    canvas_.setPicture(source_.image(), color_ ? color_->of(screen()) : ScreenColor());
    if (draft->angle() != shownAngle_) tiltRest_.start();
    shownAngle_ = draft->angle();
    arrange();
}

void CropOverlay::arrange()
{
    const auto& draft = model_.cropping.draft();
    if (!draft) return;
    canvas_.setPlace(size(), devicePixelRatioF(), *draft);
    const QRectF rect = canvas_.pointsOf(draft->rect());
    for (CropGrip* grip : grips_) {
        const QPointF at = grip->placeOn(rect);
        grip->move(static_cast<int>(std::lround(at.x())) - CropGrip::kSidePt / 2,
                   static_cast<int>(std::lround(at.y())) - CropGrip::kSidePt / 2);
    }
    update();
}

void CropOverlay::resizeEvent(QResizeEvent*)
{
    arrange();
}

bool CropOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void CropOverlay::setLevelArmed(bool isArmed)
{
    if (isArmed == isLevelArmed_) return;
    isLevelArmed_ = isArmed;
    level_.reset();
    setCursor(isArmed ? Qt::CrossCursor : Qt::ArrowCursor);
    update();
    if (onLevelArmed) onLevelArmed(isArmed);
}

void CropOverlay::beginDrag()
{
    if (const auto& draft = model_.cropping.draft()) before_ = draft->rect();
    update();
}

void CropOverlay::endDrag()
{
    before_.reset();
    press_.reset();
    update();
}

/// Every move of a drag starts from the rectangle that it began with, so that going back gives it back.
void CropOverlay::dragBy(CropHandle handle, QPointF points, Qt::KeyboardModifiers modifiers)
{
    if (!before_) return;
    const QPointF by = points / canvas_.pointsAPixel();
    const CropDraft::Grip grip{.fromCentre = modifiers.testFlag(Qt::ControlModifier),
                               .keepsRatio = modifiers.testFlag(Qt::ShiftModifier)};
    model_.cropping.change([&](CropDraft& draft) {
        draft.setRect(*before_);
        draft.drag(handle, by.x(), by.y(), grip);
    });
}

void CropOverlay::step(CropHandle handle, QPoint by, Qt::KeyboardModifiers modifiers)
{
    // A step can be seen: a pixel of the picture, or of the screen where that is larger.
    double px = std::max(std::round(1 / (canvas_.pointsAPixel() * devicePixelRatioF())), 1.0);
    if (modifiers.testFlag(Qt::ShiftModifier)) px *= kFarStep;
    const CropDraft::Grip grip{.fromCentre = modifiers.testFlag(Qt::ControlModifier)};
    model_.cropping.change([&](CropDraft& draft) { draft.drag(handle, by.x() * px, by.y() * px, grip); });
}

void CropOverlay::tiltBy(double degrees)
{
    model_.cropping.change([&](CropDraft& draft) {
        draft.setAngle(std::round((draft.angle() + degrees) / kTiltStepDegrees) * kTiltStepDegrees);
    });
}

void CropOverlay::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return;
    press_ = event->position();
    if (isLevelArmed_)
        level_ = press_;
    else
        beginDrag();
}

void CropOverlay::mouseMoveEvent(QMouseEvent* event)
{
    if (!press_) return;
    if (isLevelArmed_) {
        level_ = event->position();
        return update();
    }
    dragBy(CropHandle::body, event->position() - *press_, event->modifiers());
}

void CropOverlay::mouseReleaseEvent(QMouseEvent*)
{
    constexpr double kLeastLinePt = 8; // a shorter one says nothing of what is level
    if (isLevelArmed_ && press_ && level_ && QLineF(*press_, *level_).length() >= kLeastLinePt) {
        const auto from = canvas_.pixelAt(*press_), to = canvas_.pixelAt(*level_);
        model_.cropping.change([&](CropDraft& draft) { draft.levelBy(from, to); });
    }
    setLevelArmed(false);
    endDrag();
}

void CropOverlay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int grey = PictureView::greyOf(PictureView::Surround::dark);
    painter.fillRect(rect(), QColor(grey, grey, grey));
    const auto& draft = model_.cropping.draft();
    if (!draft) return;
    canvas_.paint(painter, before_.has_value() || tiltRest_.isActive());
    const QRectF crop = canvas_.pointsOf(draft->rect());
    QPainterPath outside;
    outside.addRect(rect());
    outside.addRect(crop);
    painter.fillPath(outside, QColor(0, 0, 0, 165));
    paintGrid(painter, crop);
    if (isLevelArmed_ && press_ && level_) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0, 0, 0, 160), 4));
        painter.drawLine(*press_, *level_);
        painter.setPen(QPen(Theme::accent(), 2));
        painter.drawLine(*press_, *level_);
    }
}

/// Thirds; while the picture turns, a finer grid to hold it against.
void CropOverlay::paintGrid(QPainter& painter, const QRectF& rect) const
{
    const int parts = tiltRest_.isActive() ? 9 : 3;
    const auto line = [&](const QRectF& body) {
        painter.fillRect(body.adjusted(-0.5, -0.5, 0.5, 0.5), QColor(0, 0, 0, 60));
        painter.fillRect(body, QColor(255, 255, 255, 130));
    };
    for (int i = 1; i < parts; ++i) {
        line(QRectF(rect.left() + std::round(rect.width() * i / parts), rect.top(), 1, rect.height()));
        line(QRectF(rect.left(), rect.top() + std::round(rect.height() * i / parts), rect.width(), 1));
    }
    painter.setPen(QPen(QColor(255, 255, 255, 220), 1));
    painter.drawRect(rect.adjusted(-0.5, -0.5, 0.5, 0.5));
    if (hasFocus()) Theme::drawFocus(painter, rect.adjusted(-4, -4, 4, 4));
}

} // namespace tamlo::ui
