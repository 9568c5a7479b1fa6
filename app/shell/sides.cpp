#include "app/shell/sides.h"

#include "app/shell/app_model.h"

#include <utility>

namespace tamlo {

void Sides::enterAB()
{
    const bool isOpen = model_.selection.screen() == Screen::develop && model_.selection.currentFrame();
    if (!isOpen || abEnabled() || model_.cropping.cropMode()) return;
    model_.endGesture();
    model_.observers.note(Concern::ab);
    b_ = model_.selection.currentProcess();
    focus_ = ABSide::a;
    model_.seams().views.renderAB(*b_);
}

void Sides::focusAB(ABSide side)
{
    if (!abEnabled() || side == focus_) return;
    model_.endGesture(); // the same knob on the other side is another step
    focus_ = side;
    model_.observers.note(Concern::ab);
}

void Sides::setB(const ProcessSettings& to)
{
    if (!abEnabled() || *b_ == to) return;
    b_ = to;
    model_.observers.note(Concern::ab);
    model_.seams().views.renderAB(*b_);
}

void Sides::exitAB(ABSide keeping)
{
    if (!abEnabled()) return;
    const ProcessSettings b = *std::exchange(b_, std::nullopt);
    focus_ = ABSide::a;
    model_.observers.note(Concern::ab);
    model_.endGesture();
    model_.seams().views.dropAB();
    if (keeping == ABSide::b) model_.rack.takeSettings(b);
}

} // namespace tamlo
