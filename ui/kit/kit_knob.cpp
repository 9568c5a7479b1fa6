#include "ui/kit/kit_knob.h"

#include "ui/kit/theme.h"
#include "ui/kit/words.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

#include <cmath>

namespace tamlo::ui {

namespace {

constexpr double kDetentPoints = 3; // the default holds a drag this near
constexpr double kTouchSlack = 8;   // a finger scrolls unless it goes this far sideways
constexpr int kWheelNotch = 120;    // eighths of a degree, as wheels count

bool wantsFine(Qt::KeyboardModifiers modifiers)
{
    return modifiers & (Qt::ControlModifier | Qt::AltModifier);
}

bool isTouch(const QMouseEvent& event)
{
    return event.source() != Qt::MouseEventNotSynthesized ||
           event.pointingDevice()->type() == QInputDevice::DeviceType::TouchScreen;
}

/// Opens the entry when it is typed on a knob.
bool beginsNumber(const QString& text)
{
    return text.size() == 1 && (text[0].isDigit() || QStringLiteral("-.,\u2212").contains(text[0]));
}

} // namespace

KitKnob::KitKnob(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    click_.setSingleShot(true);
    connect(&click_, &QTimer::timeout, this, [this] {
        take(clicked_);
        Q_EMIT gestureEnded();
    });
}

void KitKnob::setRow(const KnobRow& row)
{
    if (drag_ && !drag_->isIdle) {
        waiting_ = row;
        return;
    }
    const bool isOther = row.value != row_.value;
    row_ = row;
    if (isOther) tellValue();
    update();
}

void KitKnob::setTexts(const QString& label, const QString& unit)
{
    const std::pair saidNow{row_.low, row_.high};
    if (label == label_ && unit == unit_ && saidNow == saidRange_) return;
    label_ = label;
    unit_ = unit;
    saidRange_ = saidNow;
    setAccessibleName(label);
    const QString range =
        word("knob.range", {{"low", Fmt::number(row_.low, 2)}, {"high", Fmt::number(row_.high, 2)}});
    setAccessibleDescription(unit.isEmpty() ? range : range + QStringLiteral(" ") + unit);
    update();
}

void KitKnob::setEngravings(double every)
{
    engravings_ = every;
    update();
}

QString KitKnob::valueText() const
{
    return qt(row_.text());
}

double KitKnob::trackWidth() const
{
    return trackRect().width() - 2 * KnobRow::kTrackInset;
}

double KitKnob::placeOf(double value) const
{
    const double span = std::max(row_.high - row_.low, 1e-12);
    return trackRect().left() + KnobRow::kTrackInset + (value - row_.low) / span * trackWidth();
}

void KitKnob::show(double value)
{
    if (value == row_.value) return;
    row_.value = value;
    drag_ ? repaint() : update(); // the knob stays under the hand, whatever the picture takes
    Q_EMIT turned(value);
    tellValue();
}

void KitKnob::take(double value)
{
    show(row_.snapped(value));
}

void KitKnob::tellValue()
{
    QAccessibleValueChangeEvent changed(this, row_.value);
    QAccessible::updateAccessibility(&changed);
}

void KitKnob::reset()
{
    click_.stop();
    Q_EMIT resetAsked();
}

// The hand.

void KitKnob::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return event->ignore();
    click_.stop();
    if (numberRect().contains(event->position())) return openEntry();
    const bool fine = wantsFine(event->modifiers());
    drag_ = Drag{.press = event->position(),
                 .before = row_.value,
                 .anchor = row_.value,
                 .anchorX = event->position().x(),
                 .isFine = fine,
                 .isTouch = isTouch(*event),
                 .onTrack = event->position().y() >= trackRect().top()};
}

double KitKnob::draggedTo(double x)
{
    if (drag_->isFine) return row_.fineValue(drag_->anchor, x - drag_->anchorX, trackWidth());
    if (std::abs(x - placeOf(row_.def)) <= kDetentPoints) return row_.snapped(row_.def);
    return row_.valueAt(x - trackRect().left(), trackWidth());
}

void KitKnob::dragTo(const QPointF& at, bool fine)
{
    if (!drag_ || drag_->isIdle) return;
    const QPointF moved = at - drag_->press;
    if (!drag_->moves) {
        if (KnobRow::isClick(moved.x(), moved.y())) return;
        if (drag_->isTouch) {
            if (std::abs(moved.y()) > kTouchSlack) drag_->isIdle = true;
            if (std::abs(moved.x()) < kTouchSlack || drag_->isIdle) return;
        }
        drag_->moves = true;
    }
    if (fine != drag_->isFine) { // from here on by the other measure, without a jump
        drag_->isFine = fine;
        drag_->anchor = row_.value;
        drag_->anchorX = at.x();
    }
    show(draggedTo(at.x()));
}

void KitKnob::mouseMoveEvent(QMouseEvent* event)
{
    if (drag_) dragTo(event->position(), wantsFine(event->modifiers()));
    update();
}

void KitKnob::mouseReleaseEvent(QMouseEvent* event)
{
    if (!drag_ || event->button() != Qt::LeftButton) return;
    const Drag drag = *std::exchange(drag_, std::nullopt);
    if (drag.moves && !drag.isIdle) Q_EMIT gestureEnded();
    if (const auto row = std::exchange(waiting_, std::nullopt)) setRow(*row);
    if (!drag.moves && !drag.isIdle && drag.onTrack) {
        constexpr double kMilli = 1000;
        clicked_ = row_.valueAt(drag.press.x() - trackRect().left(), trackWidth());
        click_.start(
            static_cast<int>(KnobRow::clickDelay(QApplication::doubleClickInterval() / kMilli) * kMilli));
    }
    update();
}

void KitKnob::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return event->ignore();
    const bool firstWaits = click_.isActive(), onLabel = event->position().y() < trackRect().top();
    if (numberRect().contains(event->position()) || (!firstWaits && !onLabel)) return mousePressEvent(event);
    reset();
}

void KitKnob::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus() || !(event->modifiers() & Qt::ControlModifier)) return event->ignore();
    wheelRest_ += event->angleDelta().y();
    const int notches = wheelRest_ / kWheelNotch;
    wheelRest_ -= notches * kWheelNotch;
    for (int i = 0; i < std::abs(notches); ++i) take(row_.stepped(notches > 0 ? 1 : -1, false));
    event->accept();
}

// The keys.

bool KitKnob::stepKey(const QKeyEvent& event)
{
    const bool large = event.modifiers() & Qt::ShiftModifier;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        take(row_.stepped(-1, large));
        return true;
    case Qt::Key_Right:
    case Qt::Key_Up:
        take(row_.stepped(1, large));
        return true;
    case Qt::Key_Home:
        take(row_.low);
        return true;
    case Qt::Key_End:
        take(row_.high);
        return true;
    case Qt::Key_Delete:
        reset();
        return true;
    default:
        return false;
    }
}

void KitKnob::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && drag_ && drag_->moves && !drag_->isIdle) {
        const double before = drag_->before;
        drag_->isIdle = true;
        waiting_.reset();
        row_.value = before;
        update();
        Q_EMIT dragTakenBack(before);
        return;
    }
    const bool isPlain = !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    if (isPlain && stepKey(*event)) return;
    if (isPlain && beginsNumber(event->text())) return openEntry(event->text());
    if (isPlain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) return openEntry();
    QWidget::keyPressEvent(event);
}

bool KitKnob::event(QEvent* event)
{
    // A letter that is a command elsewhere is a digit here, and Escape is the drag's own.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        const bool isPlain = !(key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
        const bool isStep = key.key() == Qt::Key_Left || key.key() == Qt::Key_Right ||
                            key.key() == Qt::Key_Up || key.key() == Qt::Key_Down ||
                            key.key() == Qt::Key_Home || key.key() == Qt::Key_End ||
                            key.key() == Qt::Key_Delete;
        if ((isPlain && (isStep || beginsNumber(key.text()))) || (key.key() == Qt::Key_Escape && drag_)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

// The entry.

void KitKnob::openEntry(const QString& start)
{
    click_.stop();
    if (entry_) return;
    entry_ = new QLineEdit(this);
    entry_->setAccessibleName(label_);
    entry_->setAlignment(Qt::AlignRight);
    entry_->setFrame(false);
    entry_->setText(start.isEmpty() ? valueText() : start);
    constexpr int kLeast = 84;
    const QRect number = numberRect().toRect();
    const int entryWidth = std::min(std::max(kLeast, number.width()), width());
    entry_->setGeometry(width() - entryWidth, 0, entryWidth, number.height() + Theme::kSmallGap);
    entry_->installEventFilter(this);
    entry_->show();
    entry_->setFocus();
    if (start.isEmpty()) entry_->selectAll();
}

void KitKnob::closeEntry(bool takes)
{
    if (!entry_) return;
    QLineEdit* entry = std::exchange(entry_, nullptr);
    const bool hadFocus = entry->hasFocus();
    entry->removeEventFilter(this);
    entry->hide();
    entry->deleteLater();
    if (hadFocus) setFocus();
    if (!takes) return;
    if (const auto typed = row_.entered(utf8(entry->text()))) {
        take(*typed);
        Q_EMIT gestureEnded();
    }
}

bool KitKnob::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != entry_) return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::FocusOut) closeEntry(true);
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Escape) closeEntry(false);
    if (key == Qt::Key_Return || key == Qt::Key_Enter) closeEntry(true);
    return key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace tamlo::ui
