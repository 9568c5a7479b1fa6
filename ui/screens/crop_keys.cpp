// The keys of a crop's session.
#include "ui/screens/crop_grip.h"
#include "ui/screens/crop_overlay.h"

#include <QKeyEvent>

namespace tamlo::ui {
namespace {

/// A letter by its place where the layout is not Latin. Source: the evdev key codes that X11 and Wayland
/// number from 8 on.
int keyOf(const QKeyEvent& event)
{
    constexpr int kLastLatin = 0xFF;
    if (event.key() <= kLastLatin || event.key() >= Qt::Key_Escape) return event.key();
    switch (event.nativeScanCode()) {
    case 26:
        return Qt::Key_E;
    case 27:
        return Qt::Key_R;
    case 46:
        return Qt::Key_L;
    case 53:
        return Qt::Key_X;
    case 59:
        return Qt::Key_Comma;
    case 60:
        return Qt::Key_Period;
    default:
        return event.key();
    }
}

} // namespace

bool CropOverlay::isSessionKey(const QKeyEvent& event)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    switch (keyOf(event)) {
    case Qt::Key_X:
    case Qt::Key_E:
    case Qt::Key_R:
    case Qt::Key_L:
    case Qt::Key_Comma:
    case Qt::Key_Period:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return true;
    default:
        return arrowOf(event.key()).has_value();
    }
}

bool CropOverlay::takeKey(const QKeyEvent& event)
{
    Cropping& cropping = model_.cropping;
    if (!cropping.cropMode() || !isSessionKey(event)) return false;
    switch (keyOf(event)) {
    case Qt::Key_X:
        cropping.change([](CropDraft& draft) { draft.swapAspect(); });
        return true;
    case Qt::Key_E:
        cropping.change([](CropDraft& draft) { draft.expandToMax(); });
        return true;
    case Qt::Key_R:
        cropping.change([](CropDraft& draft) { draft.reset(); });
        return true;
    case Qt::Key_L:
        setLevelArmed(!isLevelArmed_);
        return true;
    case Qt::Key_Comma:
        tiltBy(-0.1);
        return true;
    case Qt::Key_Period:
        tiltBy(0.1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        cropping.applyCropAndExit();
        return true;
    case Qt::Key_Escape:
        isLevelArmed_ ? setLevelArmed(false) : cropping.leaveCropMode();
        return true;
    default:
        step(CropHandle::body, *arrowOf(event.key()), event.modifiers());
        return true;
    }
}

void CropOverlay::keyPressEvent(QKeyEvent* event)
{
    if (!takeKey(*event)) QWidget::keyPressEvent(event);
}

bool CropOverlay::event(QEvent* event)
{
    // Ahead of the window's commands, which have other work for some of these keys.
    if (event->type() == QEvent::ShortcutOverride && isSessionKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    return QWidget::event(event);
}

} // namespace tamlo::ui
