#include "ui/screens/rack.h"

#include "ui/kit/kit_button.h"
#include "ui/kit/kit_shelf.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/shelf.h"

#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

namespace tamlo::ui {

Rack::Rack(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      preset_(new KitShelf(this)),
      note_(new KitNote(this)),
      changed_(new KitNote(this)),
      scroll_(new QScrollArea(this)),
      shelf_(new Shelf(model))
{
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    buildHead();
    buildCards();
    setShelfHost(parent);
    subscription_ =
        model_.subscribe({Concern::roll, Concern::selection, Concern::ab, Concern::lists, Concern::document},
                         [this](const ChangeSet&) { refreshSoon(); });
    retranslate();
}

Rack::~Rack()
{
    delete shelf_;
}

void Rack::buildHead()
{
    auto* head = new QVBoxLayout;
    head->setContentsMargins(Theme::kInset, Theme::kInset, Theme::kInset + Theme::kScrollWidth,
                             Theme::kInset);
    head->setSpacing(Theme::kGap);
    head->addWidget(preset_);
    head->addWidget(changed_);
    head->addWidget(note_);
    static_cast<QVBoxLayout*>(layout())->addLayout(head);
    connect(preset_, &QAbstractButton::clicked, this, [this] { openShelf(ShelfKind::presets); });
    connect(note_, &KitNote::pressed, this, [this] { model_.rack.startPrinting(); });
}

void Rack::buildCards()
{
    auto* column = new QWidget;
    auto* stack = new QVBoxLayout(column);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    for (const PresetBlock block : PresetSchema::order()) {
        auto* card = new RackCardView(block, *this, column);
        cards_.push_back(card);
        stack->addWidget(card);
        connect(card, &RackCardView::shelfAsked, this, &Rack::openShelf);
        connect(card, &KitCard::folded, this, &Rack::refreshSoon);
        connect(card->menu(), &QMenu::aboutToShow, this, [this, card] { fillMenu(*card); });
        card->setOpen(block == PresetBlock::source || block == PresetBlock::light ||
                      block == PresetBlock::film || block == PresetBlock::print);
    }
    stack->addStretch(1);
    scroll_->setWidget(column);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // the knobs keep their place
    static_cast<QVBoxLayout*>(layout())->addWidget(scroll_, 1);
}

void Rack::setScreen(FrameScreen* screen)
{
    shelf_->setScreen(screen);
}

void Rack::setShelfHost(QWidget* host)
{
    shelf_->setHost(host);
}

RackCardView& Rack::card(PresetBlock block) const
{
    return *cards_[static_cast<std::size_t>(block)];
}

void Rack::focusCard(PresetBlock block)
{
    RackCardView& one = card(block);
    one.setOpen(true);
    one.head()->setFocus(Qt::ShortcutFocusReason);
    scroll_->ensureWidgetVisible(&one);
}

const RackCardView* Rack::focusedCard() const
{
    const QWidget* focus = QApplication::focusWidget();
    for (const RackCardView* one : cards_)
        if (focus && one->isAncestorOf(focus)) return one;
    return nullptr;
}

void Rack::openShelf(ShelfKind kind)
{
    model_.endGesture();
    shelf_->open(kind);
}

// What the controls ask.

void Rack::change(const Change& change)
{
    if (!stepsBefore_) stepsBefore_ = model_.history().undoStack().size();
    ProcessSettings settings = model_.rack.rackSettings();
    change(settings);
    model_.rack.setRackSettings(settings);
}

void Rack::endGesture()
{
    stepsBefore_.reset();
    model_.endGesture();
}

void Rack::takeBack(const Change& change)
{
    const auto before = std::exchange(stepsBefore_, std::nullopt);
    if (!model_.sides.editsB() && before && model_.history().undoStack().size() > *before)
        model_.undoTo(*before);
    else
        this->change(change);
    endGesture();
}

void Rack::toDefault(const Knob& knob)
{
    endGesture();
    model_.rack.toDefault(knob);
}

void Rack::reroll(Seeds::SeedStream stream)
{
    endGesture();
    model_.rack.rerollRack(stream);
}

void Rack::fillMenu(RackCardView& card)
{
    QMenu& menu = *card.menu();
    menu.clear();
    const PresetSchema::Blocks blocks{card.block()};
    const std::string title = T(std::string(PresetSchema::titleKey(card.block())));
    menu.addAction(word("rack.card.copy"), this, [=, this] { model_.copying.copyBlock(title, blocks); });
    menu.addAction(word("rack.card.paste"), this, [this] { model_.copying.pasteBlock(); })
        ->setEnabled(model_.copying.hasSettings());
    menu.addAction(word("rack.card.reset"), this, [=, this] { model_.rack.resetRackBlock(title, blocks); });
    menu.addSeparator();
    menu.addAction(word("rack.card.savePreset"), this, [=, this] { shelf_->askToSave(blocks); });
}

// What is shown.

void Rack::retranslate()
{
    setAccessibleName(word("rack.name"));
    scroll_->setAccessibleName(word("rack.name"));
    shelf_->retranslate();
    refreshSoon();
}

void Rack::refreshSoon()
{
    isDue_ = !isVisible(); // beside the grid the rack costs nothing
    if (!isDue_) refresh();
}

void Rack::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (std::exchange(isDue_, false)) refresh();
}

void Rack::refresh()
{
    const ProcessSettings settings = model_.rack.rackSettings();
    const FrameRef frame = model_.selection.currentFrame();
    const bool isOriginal = frame && !frame->process && !model_.sides.editsB();
    const RackVisibility* rack = visibility(settings);
    const auto changes = differences(model_.rack.recipeOf(settings), settings);
    showHead(settings, isOriginal, changes);
    scroll_->widget()->setEnabled(frame != nullptr);
    for (RackCardView* card : cards_) card->setVisible(rack != nullptr);
    if (!rack) {
        note_->setText(word("rack.unknownFilm", {{"id", settings.stock}}));
        note_->setVisible(true);
        return;
    }
    std::set<std::string> changed;
    for (const KnobChange& one : changes) changed.insert(one.key);
    const RackTexts::View view{model_, settings, *rack};
    const std::vector<RackCard> cards = rackCards(*rack);
    for (std::size_t i = 0; i < cards.size(); ++i) cards_[i]->show(cards[i], view, changed);
}

const RackVisibility* Rack::visibility(const ProcessSettings& settings)
{
    std::vector<std::string> of{settings.stock, settings.lens, settings.paper,
                                std::to_string(model_.lists.gen())};
    if (of != rackOf_) rack_ = RackVisibility::of(settings, model_.store());
    rackOf_ = std::move(of);
    if (!rack_) return nullptr;
    rack_->options = settings.options;
    return &*rack_;
}

void Rack::showHead(const ProcessSettings& settings, bool isOriginal, const std::vector<KnobChange>& changes)
{
    const QString name = isOriginal            ? word("rack.original")
                         : settings.presetName ? qt(*settings.presetName)
                                               : word("rack.noPreset");
    preset_->setTexts(word("rack.preset"), name,
                      settings.presetName && settings.modified ? word("rack.modified") : QString());
    changed_->setText(isOriginal ? QString() : qt(changedLine(changes)));
    changed_->setVisible(!changed_->text().isEmpty());
    note_->setText(isOriginal ? word("rack.originalNote") : QString());
    note_->setButton(isOriginal ? word("rack.startPrinting") : QString());
    note_->setVisible(isOriginal);
}

QSize Rack::sizeHint() const
{
    constexpr int kUsualHeight = 600;
    return {Theme::rackWidth(), kUsualHeight};
}

void Rack::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) retranslate();
}

void Rack::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), Theme::panel());
}

} // namespace tamlo::ui
