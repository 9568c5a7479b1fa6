#include "ui/screens/crop_panel.h"

#include "app/shell/crop_label.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_card.h"
#include "ui/kit/kit_choice.h"
#include "ui/kit/kit_knob.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/crop_overlay.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr int kRatioColumns = 4;

/// "Swap  X": the key is part of what a button says.
QString withKey(const std::string& key, const char* letter)
{
    return word(key) + QStringLiteral("  ") + qt(letter);
}

} // namespace

CropPanel::CropPanel(AppModel& model, CropOverlay& overlay, QWidget* parent)
    : QWidget(parent), model_(model), overlay_(overlay)
{
    setFixedWidth(Theme::rackWidth());
    setAutoFillBackground(true);
    build();
    overlay_.onLevelArmed = [this](bool isArmed) { level_->setChecked(isArmed); };
    subscription_ = model_.subscribe({Concern::crop, Concern::roll}, [this](const ChangeSet&) { follow(); });
    retranslate();
}

void CropPanel::build()
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::kInset, Theme::kInset, Theme::kInset, Theme::kInset);
    column->setSpacing(Theme::kGap);
    column->addWidget(title_ = new QLabel);
    title_->setFont(Theme::titleFont());
    buildRatios(*column);
    buildTilt(*column);
    column->addWidget(window_ = new QLabel);
    window_->setWordWrap(true);
    column->addSpacing(Theme::kGap);
    column->addWidget(gateTitle_ = new QLabel);
    column->addWidget(gate_ = new KitSelector);
    connect(gate_, &KitSelector::picked, this,
            [this](const QString& id) { model_.cropping.setTakesPart(id == QStringLiteral("full")); });
    column->addStretch(1);
    auto* ends = new QHBoxLayout;
    ends->addWidget(cancel_ = new KitButton);
    ends->addWidget(apply_ = new KitButton);
    apply_->setPrimary(true);
    column->addLayout(ends);
    connect(cancel_, &QAbstractButton::clicked, this, [this] { model_.cropping.leaveCropMode(); });
    connect(apply_, &QAbstractButton::clicked, this, [this] { model_.cropping.applyCropAndExit(); });
}

void CropPanel::buildRatios(QVBoxLayout& column)
{
    column.addWidget(ratioTitle_ = new QLabel);
    auto* grid = new QGridLayout;
    grid->setSpacing(Theme::kSmallGap);
    const std::vector<CropAspectKind>& ladder = CropAspectKind::ladder();
    for (std::size_t i = 0; i < ladder.size(); ++i) {
        auto* ratio = new KitButton;
        ratio->setCheckable(true);
        connect(ratio, &QAbstractButton::clicked, this, [this, kind = ladder[i]] {
            model_.cropping.change([kind](CropDraft& draft) { draft.setAspect(kind); });
            follow();
        });
        grid->addWidget(ratio, static_cast<int>(i) / kRatioColumns, static_cast<int>(i) % kRatioColumns);
        ratios_.push_back(ratio);
    }
    column.addLayout(grid);
    column.addWidget(note_ = new KitNote);
    auto* actions = new QHBoxLayout;
    actions->setSpacing(Theme::kSmallGap);
    for (KitButton** one : {&swap_, &expand_, &reset_}) actions->addWidget(*one = new KitButton);
    column.addLayout(actions);
    const auto does = [this](KitButton* one, void (CropDraft::*what)()) {
        connect(one, &QAbstractButton::clicked, this,
                [this, what] { model_.cropping.change([what](CropDraft& draft) { (draft.*what)(); }); });
    };
    does(swap_, &CropDraft::swapAspect);
    does(expand_, &CropDraft::expandToMax);
    does(reset_, &CropDraft::reset);
}

void CropPanel::buildTilt(QVBoxLayout& column)
{
    column.addWidget(tilt_ = new KitKnob);
    tilt_->setEngravings(15);
    const auto change = [this](const Cropping::Change& what) { model_.cropping.change(what); };
    connect(tilt_, &KitKnob::turned, this, [this, change](double degrees) {
        // All that a hand does at one go starts from the same rectangle.
        change([&](CropDraft& draft) {
            if (tilt_->isDragged() && !draft.isTilting()) draft.beginTilt();
            draft.setAngle(degrees);
        });
    });
    connect(tilt_, &KitKnob::dragTakenBack, this,
            [change](double degrees) { change([=](CropDraft& draft) { draft.setAngle(degrees); }); });
    connect(tilt_, &KitKnob::gestureEnded, this,
            [change] { change([](CropDraft& draft) { draft.endTilt(); }); });
    connect(tilt_, &KitKnob::resetAsked, this,
            [change] { change([](CropDraft& draft) { draft.setAngle(0); }); });
    column.addWidget(level_ = new KitButton);
    level_->setCheckable(true);
    connect(level_, &QAbstractButton::clicked, this, [this](bool isOn) { overlay_.setLevelArmed(isOn); });
}

void CropPanel::retranslate()
{
    title_->setText(word("crop.title"));
    ratioTitle_->setText(word("crop.ratio"));
    swap_->setText(withKey("crop.swap", "X"));
    expand_->setText(withKey("crop.expand", "E"));
    reset_->setText(withKey("crop.reset", "R"));
    level_->setText(withKey("crop.level", "L"));
    cancel_->setText(withKey("common.cancel", "Esc"));
    apply_->setText(withKey("crop.apply", "Enter"));
    tilt_->setTexts(word("crop.tilt"), QStringLiteral("°"));
    gateTitle_->setText(word("cropGate.title"));
    gate_->setAccessibleName(word("cropGate.title"));
    gate_->setOptions(
        {{QStringLiteral("full"), word("cropGate.full")}, {QStringLiteral("none"), word("cropGate.none")}});
    follow();
}

void CropPanel::follow()
{
    const auto& draft = model_.cropping.draft();
    setVisible(draft.has_value());
    if (!draft) return;
    const std::vector<CropAspectKind>& ladder = CropAspectKind::ladder();
    for (std::size_t i = 0; i < ladder.size(); ++i) {
        const CropAspectKind kind = ladder[i];
        const bool isFree = kind.kind == CropAspectKind::Kind::free;
        const bool isFormat = kind.kind == CropAspectKind::Kind::format;
        ratios_[i]->setText(isFree     ? word("crop.free")
                            : isFormat ? word("crop.format")
                                       : qt(kind.title(draft->isPortrait())));
        ratios_[i]->setEnabled(draft->isEnabled(kind));
        ratios_[i]->setChecked(draft->aspectKind() == kind);
    }
    note_->setText(draft->isEnabled(CropAspectKind::format()) ? QString() : word("crop.customSize"));
    note_->setVisible(!note_->text().isEmpty());
    KnobRow row;
    row.value = draft->angle();
    row.low = -CropDraft::kMostDegrees;
    row.high = CropDraft::kMostDegrees;
    row.step = 0.1;
    row.unit = "°";
    row.isSigned = true;
    tilt_->setRow(row);
    window_->setText(qt(cropLabel(model_)));
    gate_->setChosen(model_.cropping.takesPart() ? QStringLiteral("full") : QStringLiteral("none"));
}

bool CropPanel::event(QEvent* event)
{
    // The session's letters, wherever on the panel the focus is; a knob keeps its own keys.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* const key = static_cast<QKeyEvent*>(event);
        if (CropOverlay::isSessionKey(*key)) event->accept();
    }
    return QWidget::event(event);
}

void CropPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void CropPanel::keyPressEvent(QKeyEvent* event)
{
    if (!overlay_.takeKey(*event)) QWidget::keyPressEvent(event);
}

} // namespace tamlo::ui
