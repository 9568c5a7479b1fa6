#include "ui/screens/rack_card.h"

#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "core/io/image_loader.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_row.h"
#include "ui/kit/kit_shelf.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/rack_notes.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace tamlo::ui {

namespace {

struct Drawer {
    PresetBlock block;
    ShelfKind kind;
};
constexpr Drawer kDrawers[] = {{PresetBlock::film, ShelfKind::film},
                               {PresetBlock::optics, ShelfKind::lens},
                               {PresetBlock::print, ShelfKind::paper}};

/// A stream is rolled on this card, where the knob stands that shows its work; an empty one: always.
struct DieRule {
    PresetBlock block;
    Seeds::SeedStream stream;
    std::string_view knob;
};
constexpr DieRule kDice[] = {{PresetBlock::film, Seeds::SeedStream::film, ""},
                             {PresetBlock::develop, Seeds::SeedStream::develop, "dev_uneven"},
                             {PresetBlock::print, Seeds::SeedStream::frame, "frame_rough"},
                             {PresetBlock::print, Seeds::SeedStream::print, "print_texture"},
                             {PresetBlock::finish, Seeds::SeedStream::table, "table_width_cm"}};

bool isGlow(std::string_view option)
{
    return option == "glow_mult" || option == "glow_radius_mult";
}

bool belongsTo(PresetBlock block, const std::string& changeKey)
{
    if (changeKey == "stock") return block == PresetBlock::film;
    if (changeKey == "lens") return block == PresetBlock::optics;
    if (changeKey == "paper") return block == PresetBlock::print;
    const auto keys = PresetSchema::keys(block);
    return std::ranges::any_of(knobTable(), [&](const Knob& knob) {
        return changeKey == knob.field && std::ranges::find(keys, knob.option) != keys.end();
    });
}

} // namespace

RackCardView::RackCardView(PresetBlock block, RackHands& hands, QWidget* parent)
    : KitCard(parent),
      block_(block),
      hands_(hands),
      above_(new KitNote(content())),
      conversion_(new KitNote(content())),
      below_(new KitNote(content())),
      knobs_(new QVBoxLayout)
{
    body()->addWidget(above_);
    for (const Drawer& drawer : kDrawers)
        if (drawer.block == block) {
            shelf_ = new KitShelf(content());
            body()->addWidget(shelf_);
            connect(shelf_, &QAbstractButton::clicked, this,
                    [this, kind = drawer.kind] { Q_EMIT shelfAsked(kind); });
        }
    if (block == PresetBlock::filter) {
        filters_ = new KitButton(content());
        body()->addWidget(filters_, 0, Qt::AlignLeft);
        connect(filters_, &QAbstractButton::clicked, this, [this] { Q_EMIT shelfAsked(ShelfKind::filter); });
    }
    body()->addWidget(conversion_);
    connect(conversion_, &KitNote::pressed, this, [this] {
        hands_.change(RackNotes::convert);
        hands_.endGesture();
    });
    knobs_->setSpacing(Theme::kGap);
    body()->addLayout(knobs_);
    for (const DieRule& rule : kDice)
        if (rule.block == block) addDie(rule.stream);
    body()->addWidget(below_);
}

void RackCardView::addDie(Seeds::SeedStream stream)
{
    Die die{new QWidget(content()), nullptr, nullptr};
    die.label = new QLabel(die.row);
    die.button = new KitDice(die.row);
    auto* row = new QHBoxLayout(die.row);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(die.label, 1);
    row->addWidget(die.button);
    body()->addWidget(die.row);
    connect(die.button, &QAbstractButton::clicked, this, [this, stream] { hands_.reroll(stream); });
    dice_[stream] = die;
}

const RackControl* RackCardView::control(std::string_view option) const
{
    const auto found = controls_.find(option);
    return found == controls_.end() ? nullptr : found->second;
}

std::vector<const RackControl*> RackCardView::controls() const
{
    std::vector<const RackControl*> out;
    for (int i = 0; i < knobs_->count(); ++i)
        if (const auto* one = qobject_cast<const RackControl*>(knobs_->itemAt(i)->widget()))
            out.push_back(one);
    return out;
}

void RackCardView::show(const RackCard& card, const RackTexts::View& view,
                        const std::set<std::string>& changed)
{
    showHead(card, view, changed);
    if (!isOpen()) return; // what can't be seen is shown once it can
    showNotes(card, view);
    showShelf(card, view);
    if (block_ == PresetBlock::optics) showDiscs(view);
    showKnobs(card, view);
    showDice(card, view);
}

void RackCardView::showHead(const RackCard& card, const RackTexts::View& view,
                            const std::set<std::string>& changed)
{
    const auto& order = PresetSchema::order();
    const auto number = std::ranges::find(order, block_) - order.begin() + 1;
    const QString title = QString::number(number) + QStringLiteral("  ") + qt(card.title);
    setTitle(title);
    setCaption(RackTexts::caption(card, view));
    setChanged(std::ranges::any_of(changed, [&](const std::string& key) { return belongsTo(block_, key); }));
    const QString more = word("rack.card.menu", {{"title", card.title}});
    menuButton()->setAccessibleName(more);
    menuButton()->setToolTip(more);
}

void RackCardView::showNotes(const RackCard& card, const RackTexts::View& view)
{
    const auto say = [](KitNote* note, const QString& text) {
        note->setText(text);
        note->setVisible(!text.isEmpty());
    };
    say(above_, RackNotes::above(card, view));
    say(below_, RackNotes::below(card, view));
    const QString tungsten = RackNotes::conversion(block_, view);
    conversion_->setButton(tungsten.isEmpty() ? QString() : word("knob.conversion"));
    conversion_->button()->setEnabled(!RackNotes::isConverted(view));
    say(conversion_, tungsten);
}

void RackCardView::showShelf(const RackCard&, const RackTexts::View& view)
{
    const Lists& lists = view.model.lists;
    const ProcessSettings& settings = view.settings;
    const std::string paper = resolvedPaper(settings, view.model.store());
    if (filters_) filters_->setText(word("rack.filters"));
    if (block_ == PresetBlock::film)
        shelf_->setTexts(word(view.rack.film.isInstant() ? "rack.cartridge" : "knob.stock"),
                         qt(lists.filmTitle(settings.stock)),
                         RackTexts::fidelity(lists.fidelityBadge(settings.stock)));
    if (block_ == PresetBlock::print)
        shelf_->setTexts(word("knob.paper"), qt(lists.paperTitle(paper)),
                         RackTexts::fidelity(lists.paperFidelityBadge(paper)));
    if (block_ != PresetBlock::optics) return;
    const auto& lenses = lists.all().lenses;
    const auto lens = std::ranges::find(lenses, settings.lens, &ProfileItem::id);
    shelf_->setTexts(word("knob.lens"), qt(lens == lenses.end() ? settings.lens : lens->title),
                     RackTexts::fidelity(lists.lensFidelityBadge(settings.lens)));
}

void RackCardView::showDiscs(const RackTexts::View& view)
{
    const bool hasDiscs = view.rack.lens && view.rack.lens->discs && !view.rack.lens->discs->empty();
    if (!discs_ && hasDiscs) {
        discs_ = new KitSelector(content());
        discRow_ = new KitRow(discs_, content());
        body()->insertWidget(body()->indexOf(conversion_), discRow_);
        connect(discs_, &KitSelector::picked, this, [this](const QString& id) {
            const auto disc = std::ranges::find(sieves_, utf8(id), &SieveDisc::id);
            if (disc == sieves_.end()) return;
            hands_.change([disc = *disc](ProcessSettings& settings) {
                settings.options.glowMult = disc.glowMult;
                settings.options.glowRadiusMult = disc.glowRadiusMult;
            });
            hands_.endGesture();
        });
    }
    if (discRow_) discRow_->setVisible(hasDiscs);
    if (!hasDiscs) return;
    sieves_ = *view.rack.lens->discs;
    std::vector<KitOption> options;
    for (const SieveDisc& disc : *view.rack.lens->discs) options.push_back({qt(disc.id), qt(disc.name)});
    discs_->setOptions(options);
    discs_->setChosen(qt(RackNotes::discIn(*view.rack.lens, view.settings.options)));
    discRow_->setLabel(word("rack.disc"));
}

void RackCardView::showKnobs(const RackCard& card, const RackTexts::View& view)
{
    const bool hasDiscs = view.rack.lens && view.rack.lens->discs && !view.rack.lens->discs->empty();
    const bool hasHint = view.model.lists.apertureHint(view.settings.lens).has_value();
    std::set<std::string_view> standing;
    int place = 0;
    for (const RackKnob& one : card.knobs) {
        const std::string_view option = one.knob->option;
        if ((hasDiscs && isGlow(option)) || (hasHint && option == "stop")) continue;
        const FrameRef frame = view.model.selection.currentFrame();
        if (option == "src_lights" && frame && ImageLoader::isRAW(frame->url)) continue; // nothing is clipped
        if (option == "wb_mode" && RackTexts::choices(one, view).size() < 2) continue;
        standing.insert(option);
        RackControl*& control = controls_[std::string(option)];
        if (control && control->kind() != RackControl::kindOf(one)) delete std::exchange(control, nullptr);
        if (!control) control = RackControl::make(one, hands_, content());
        control->show(one, view);
        if (knobs_->indexOf(control) != place) {
            knobs_->removeWidget(control);
            knobs_->insertWidget(place, control);
        }
        control->setVisible(true);
        ++place;
    }
    for (const auto& [option, control] : controls_)
        if (!standing.contains(option)) {
            knobs_->removeWidget(control);
            control->setVisible(false);
        }
    const QWidget* before = nullptr;
    for (int i = 0; i < knobs_->count(); ++i) { // Tab goes by the eye
        QWidget* one = static_cast<RackControl*>(knobs_->itemAt(i)->widget())->control();
        if (before) setTabOrder(const_cast<QWidget*>(before), one);
        before = one;
    }
}

void RackCardView::showDice(const RackCard& card, const RackTexts::View&)
{
    for (const DieRule& rule : kDice) {
        if (rule.block != block_) continue;
        const bool stands = rule.knob.empty() || std::ranges::any_of(card.knobs, [&](const RackKnob& one) {
                                return one.knob->option == rule.knob;
                            });
        const Die& die = dice_.at(rule.stream);
        const QString stream = word("seedStream." + std::string(Seeds::rawText(rule.stream)));
        const QString name = word("rack.reroll", {{"stream", utf8(stream)}});
        die.label->setText(stream);
        die.button->setAccessibleName(name);
        die.button->setToolTip(name);
        die.row->setVisible(stands);
    }
}

} // namespace tamlo::ui
