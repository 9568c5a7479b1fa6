// RackControl: one knob of the rack with the control that suits it: a number is turned, yes or no is a
// switch, a choice is picked, a text is typed. Every gesture becomes one step of the session.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "core/profiles/options/seed_stream.h"
#include "ui/screens/rack_texts.h"
#endif

#include <QWidget>

#include <functional>

namespace tamlo::ui {

/// What the controls ask of the rack.
class RackHands {
public:
    using Change = std::function<void(ProcessSettings&)>;

    virtual ~RackHands() = default;
    /// Part of a gesture, which goes on until endGesture.
    virtual void change(const Change& change) = 0;
    virtual void endGesture() = 0;
    /// All that the open gesture has done goes back; `change` sets the old value where no step tells it.
    virtual void takeBack(const Change& change) = 0;
    virtual void toDefault(const Knob& knob) = 0;
    virtual void reroll(Seeds::SeedStream stream) = 0;
};

class RackControl : public QWidget {
    Q_OBJECT

public:
    enum class Kind { number, toggle, few, many, text };
    static Kind kindOf(const RackKnob& one);
    static RackControl* make(const RackKnob& one, RackHands& hands, QWidget* parent);

    virtual void show(const RackKnob& one, const RackTexts::View& view) = 0;
    /// The kit's control.
    virtual QWidget* control() const = 0;
    const Knob& knob() const { return knob_; }
    Kind kind() const { return kind_; }

protected:
    RackControl(const RackKnob& one, RackHands& hands, QWidget* parent);
    /// Sets the option to a text, or makes it absent with an empty one.
    void set(const std::string& text);

    const Knob& knob_;
    const Kind kind_;
    RackHands& hands_;
};

} // namespace tamlo::ui
