#include "ui/screens/rack_control.h"

#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_knob.h"
#include "ui/kit/kit_row.h"
#include "ui/kit/words.h"

#include <QLineEdit>
#include <QVBoxLayout>

namespace tamlo::ui {

namespace {

void fill(RackControl* control, QWidget* with)
{
    auto* all = new QVBoxLayout(control);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(with);
}

bool isChanged(const RackKnob& one)
{
    Json usual;
    findOption(one.knob->option)->write(RenderOptions{}, usual);
    const std::string text = usual.is_null()     ? ""
                             : usual.is_string() ? usual.get<std::string>()
                                                 : usual.dump();
    return one.value != text && !(usual.is_null() && (one.value == "none" || one.value == "false"));
}

class NumberControl : public RackControl {
public:
    NumberControl(const RackKnob& one, RackHands& hands, QWidget* parent)
        : RackControl(one, hands, parent), turner_(new KitKnob(this))
    {
        fill(this, turner_);
        turner_->setEngravings(RackTexts::engravings(knob_.option));
        const auto turned = [this](double value) {
            return [this, value](ProcessSettings& settings) { turn(knob_, settings.options, value); };
        };
        connect(turner_, &KitKnob::turned, this,
                [this, turned](double value) { hands_.change(turned(value)); });
        connect(turner_, &KitKnob::gestureEnded, this, [this] { hands_.endGesture(); });
        connect(turner_, &KitKnob::resetAsked, this, [this] { hands_.toDefault(knob_); });
        connect(turner_, &KitKnob::dragTakenBack, this,
                [this, turned](double value) { hands_.takeBack(turned(value)); });
    }

    void show(const RackKnob& one, const RackTexts::View&) override
    {
        KnobRow row = *one.row;
        row.unit = RackTexts::numberUnit(knob_.option);
        turner_->setRow(row);
        turner_->setTexts(RackTexts::title(knob_), RackTexts::spokenUnit(knob_.option));
    }
    QWidget* control() const override { return turner_; }

private:
    KitKnob* turner_;
};

class ToggleControl : public RackControl {
public:
    ToggleControl(const RackKnob& one, RackHands& hands, QWidget* parent)
        : RackControl(one, hands, parent), toggle_(new KitSwitch(this))
    {
        fill(this, toggle_);
        connect(toggle_, &QAbstractButton::clicked, this, [this](bool on) {
            hands_.change([this, on](ProcessSettings& settings) {
                findOption(knob_.option)->read(settings.options, on, JsonPath());
            });
            hands_.endGesture();
        });
    }

    void show(const RackKnob& one, const RackTexts::View& view) override
    {
        toggle_->setText(RackTexts::title(knob_));
        toggle_->setToolTip(RackTexts::title(knob_));
        toggle_->setChecked(RackTexts::isOn(one, view));
        toggle_->setChanged(isChanged(one));
    }
    QWidget* control() const override { return toggle_; }

private:
    KitSwitch* toggle_;
};

template <typename Picker>
class PickControl : public RackControl {
public:
    PickControl(const RackKnob& one, RackHands& hands, QWidget* parent)
        : RackControl(one, hands, parent), picker_(new Picker(this)), row_(new KitRow(picker_, this))
    {
        fill(this, row_);
        connect(picker_, &Picker::picked, this, [this](const QString& id) { set(utf8(id)); });
    }

    void show(const RackKnob& one, const RackTexts::View& view) override
    {
        row_->setLabel(RackTexts::title(knob_), isChanged(one));
        const std::vector<KitOption> options = RackTexts::choices(one, view);
        if (options != options_) {
            picker_->setOptions(options);
            row_->updateGeometry();
        }
        options_ = options;
        picker_->setChosen(qt(RackTexts::inForce(one, view)));
    }
    QWidget* control() const override { return picker_; }

private:
    Picker* picker_;
    KitRow* row_;
    std::vector<KitOption> options_;
};

class TextControl : public RackControl {
public:
    TextControl(const RackKnob& one, RackHands& hands, QWidget* parent)
        : RackControl(one, hands, parent), entry_(new QLineEdit(this)), row_(new KitRow(entry_, this))
    {
        fill(this, row_);
        constexpr int kLongest = 64;
        entry_->setMaxLength(kLongest);
        connect(entry_, &QLineEdit::editingFinished, this, [this] {
            if (entry_->isModified()) set(utf8(entry_->text()));
            entry_->setModified(false);
        });
    }

    void show(const RackKnob& one, const RackTexts::View&) override
    {
        row_->setLabel(RackTexts::title(knob_), isChanged(one));
        if (!entry_->hasFocus() || !entry_->isModified()) entry_->setText(qt(one.value));
    }
    QWidget* control() const override { return entry_; }

private:
    QLineEdit* entry_;
    KitRow* row_;
};

} // namespace

RackControl::RackControl(const RackKnob& one, RackHands& hands, QWidget* parent)
    : QWidget(parent), knob_(*one.knob), kind_(kindOf(one)), hands_(hands)
{}

RackControl::Kind RackControl::kindOf(const RackKnob& one)
{
    constexpr std::string_view kLists[] = {"src_exposure", "dev",         "format",     "frame_size",
                                           "table",        "emboss_line", "filter_cut", "filter_diffusion",
                                           "filter_rays",  "filter_grad"};
    constexpr std::string_view kTexts[] = {"stamp_text", "frame_print_text"};
    const std::string_view option = one.knob->option;
    if (one.row) return Kind::number;
    if (findOption(option)->type == OptionType::boolean) return Kind::toggle;
    if (std::ranges::find(kTexts, option) != std::end(kTexts)) return Kind::text;
    return std::ranges::find(kLists, option) == std::end(kLists) ? Kind::few : Kind::many;
}

RackControl* RackControl::make(const RackKnob& one, RackHands& hands, QWidget* parent)
{
    switch (kindOf(one)) {
    case Kind::number:
        return new NumberControl(one, hands, parent);
    case Kind::toggle:
        return new ToggleControl(one, hands, parent);
    case Kind::few:
        return new PickControl<KitSelector>(one, hands, parent);
    case Kind::many:
        return new PickControl<KitChoice>(one, hands, parent);
    case Kind::text:
        return new TextControl(one, hands, parent);
    }
    return nullptr;
}

void RackControl::set(const std::string& text)
{
    hands_.change([this, text](ProcessSettings& settings) {
        const OptionRow& row = *findOption(knob_.option);
        if (row.clear && (text.empty() || text == "none"))
            row.clear(settings.options);
        else
            row.read(settings.options, Json(text), JsonPath());
    });
    hands_.endGesture();
}

} // namespace tamlo::ui
