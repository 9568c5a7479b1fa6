#include "ui/screens/shelf.h"

#include "app/shell/frame_screen.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_card.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"
#include "ui/screens/shelf_cell.h"
#include "ui/screens/shelf_save.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace tamlo::ui {

namespace {

constexpr int kStillMs = 60;             // a scroll bar at rest
constexpr int kRestMs = 150;             // a walk that stops this long wants to be seen
constexpr std::int64_t kPeekLong = 1024; // pixels of the source
constexpr int kLeastWidth = 520;

} // namespace

Shelf::Shelf(AppModel& model)
    : model_(model),
      title_(new QLabel(this)),
      search_(new QLineEdit(this)),
      keepsPaper_(new KitSwitch(this)),
      save_(new KitButton(this)),
      close_(new KitButton(this)),
      scroll_(new QScrollArea(this)),
      grid_(new ShelfGrid),
      detailName_(new QLabel(this)),
      detailBadge_(new QLabel(this)),
      detail_(new KitNote(this)),
      saver_(new ShelfSave(model, this))
{
    hide();
    build();
    rest_.setSingleShot(true);
    rest_.setInterval(kRestMs);
    connect(&rest_, &QTimer::timeout, this, &Shelf::peek);
    still_.setSingleShot(true);
    still_.setInterval(kStillMs);
    connect(&still_, &QTimer::timeout, this, &Shelf::askForPictures);
    connect(scroll_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { still_.start(); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        grid_->filter(text);
        still_.start();
    });
    connect(keepsPaper_, &QAbstractButton::clicked, this, &Shelf::fill);
    connect(save_, &QAbstractButton::clicked, this, [this] { askToSave(PresetSchema::order()); });
    connect(close_, &QAbstractButton::clicked, this, &Shelf::leave);
    connect(grid_, &ShelfGrid::reached, this, &Shelf::reach);
    connect(grid_, &ShelfGrid::taken, this, &Shelf::take);
    connect(saver_, &ShelfSave::ended, this, [this] {
        saver_->hide();
        fill();
        if (ShelfCell* cell = grid_->current()) cell->setFocus();
    });
}

void Shelf::build()
{
    title_->setFont(Theme::titleFont());
    detailName_->setFont(Theme::titleFont());
    detailName_->setWordWrap(true);
    detailBadge_->setForegroundRole(QPalette::PlaceholderText);
    detailBadge_->setFont(Theme::smallFont());
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    close_->setText(QStringLiteral("\u2715"));
    saver_->hide();
    auto* head = new QHBoxLayout;
    head->setContentsMargins(Theme::kInset, Theme::kGap, Theme::kGap, Theme::kGap);
    head->setSpacing(Theme::kGap);
    head->addWidget(title_);
    head->addWidget(search_, 1);
    head->addWidget(keepsPaper_);
    head->addWidget(save_);
    head->addWidget(close_);
    scroll_->setWidget(grid_);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* detail = new QVBoxLayout;
    detail->setContentsMargins(Theme::kInset, Theme::kGap, Theme::kInset, Theme::kInset);
    detail->setSpacing(Theme::kSmallGap);
    auto* line = new QHBoxLayout;
    line->addWidget(detailName_, 1);
    line->addWidget(detailBadge_);
    detail->addLayout(line);
    detail->addWidget(detail_);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 1, 0);
    all->setSpacing(0);
    all->addLayout(head);
    all->addWidget(saver_);
    all->addWidget(scroll_, 1);
    all->addLayout(detail);
}

void Shelf::setScreen(FrameScreen* screen)
{
    screen_ = screen;
    proofs_.setScreen(screen);
}

void Shelf::setHost(QWidget* host)
{
    if (parentWidget()) parentWidget()->removeEventFilter(this);
    const bool wasOpen = isOpen();
    setParent(host);
    if (host) host->installEventFilter(this);
    if (wasOpen && host) show();
}

void Shelf::place()
{
    if (!parentWidget()) return;
    const int wide = parentWidget()->width();
    setGeometry(0, 0, std::min(wide, std::max(kLeastWidth, wide / 2)), parentWidget()->height());
}

void Shelf::open(ShelfKind kind)
{
    if (!isOpen()) opener_ = QApplication::focusWidget();
    kind_ = kind;
    saver_->hide();
    search_->clear();
    place();
    show();
    raise();
    retranslate();
    if (ShelfCell* cell = grid_->current()) {
        cell->setFocus();
        scroll_->ensureWidgetVisible(cell);
    }
}

void Shelf::leave()
{
    rest_.stop();
    still_.stop();
    proofs_.end();
    if (std::exchange(isPeeking_, false)) Q_EMIT peekEnded();
    hide();
    if (opener_) opener_->setFocus();
}

void Shelf::askToSave(const PresetSchema::Blocks& blocks)
{
    if (!isOpen() || kind_ != ShelfKind::presets) open(ShelfKind::presets);
    saver_->ask(blocks);
}

void Shelf::retranslate()
{
    const QString title = ShelfItems::title(kind_);
    title_->setText(title);
    setAccessibleName(title);
    scroll_->setAccessibleName(title);
    search_->setPlaceholderText(word("shelf.search"));
    search_->setAccessibleName(word("shelf.search"));
    keepsPaper_->setText(word("shelf.keepPaper"));
    keepsPaper_->setVisible(kind_ == ShelfKind::film);
    save_->setText(word("shelf.saveAs"));
    save_->setVisible(kind_ == ShelfKind::presets);
    close_->setAccessibleName(word("shelf.close"));
    close_->setToolTip(word("shelf.close"));
    saver_->retranslate();
    if (isOpen()) fill();
}

void Shelf::fill()
{
    reached_ = nullptr;
    grid_->setSections(ShelfItems::sections(kind_, model_, keepsPaper_->isChecked()));
    grid_->filter(search_->text());
    if (const ShelfCell* cell = grid_->current()) showDetail(*cell);
    proofs_.end();
    still_.start();
}

void Shelf::askForPictures()
{
    if (!isOpen()) return;
    std::vector<ShelfCell*> cells;
    for (ShelfCell* cell : grid_->visibleCells())
        if (cell->item().fault.isEmpty() && !cell->isDone()) cells.push_back(cell);
    std::ranges::stable_partition(cells,
                                  [](const ShelfCell* cell) { return !cell->visibleRegion().isEmpty(); });
    std::vector<ShelfProofs::Wanted> wanted;
    for (const ShelfCell* cell : cells) wanted.push_back({cell->item().process, cell->hasPicture()});
    const std::vector<QPointer<ShelfCell>> places(cells.begin(), cells.end());
    proofs_.begin(std::move(wanted), [places](std::size_t at, const QImage& picture, bool isRough) {
        if (places[at]) places[at]->setPicture(picture, isRough);
    });
}

void Shelf::reach(ShelfCell* cell)
{
    reached_ = cell;
    scroll_->ensureWidgetVisible(cell);
    showDetail(*cell);
    if (screen_) rest_.start();
}

void Shelf::showDetail(const ShelfCell& cell)
{
    const ShelfItem& item = cell.item();
    detailName_->setText(item.title);
    detailBadge_->setText(item.badge);
    const QString notes = ShelfItems::notes(kind_, item.id, model_);
    detail_->setText(notes.isEmpty() ? item.summary : notes);
    detail_->setVisible(!detail_->text().isEmpty());
}

void Shelf::peek()
{
    if (!screen_ || !reached_) return;
    if (reached_->item().isIn) {
        if (std::exchange(isPeeking_, false)) Q_EMIT peekEnded();
        return;
    }
    screen_->peek(reached_->item().process, kPeekLong,
                  [this, alive = std::weak_ptr(alive_)](KeyedRenderer::Outcome outcome) {
                      const auto* made = std::get_if<KeyedRenderer::Output>(&outcome);
                      if (alive.expired() || !made || !isOpen()) return;
                      isPeeking_ = true;
                      Q_EMIT peeked(made->image);
                  });
}

void Shelf::take(ShelfCell* cell)
{
    const ShelfItem item = cell->item();
    leave();
    if (kind_ == ShelfKind::presets) {
        model_.presets.applyToTargets(model_.store().preset(item.id), utf8(item.title));
        return;
    }
    model_.endGesture();
    model_.rack.setRackSettings(item.process);
    model_.endGesture();
}

bool Shelf::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) place();
    if (watched != search_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    ShelfCell* cell = grid_->current();
    if (key == Qt::Key_Down && cell) cell->setFocus();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && cell) take(cell);
    return key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter;
}

void Shelf::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) return leave();
    auto* cell = qobject_cast<ShelfCell*>(QApplication::focusWidget());
    if (cell && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) return take(cell);
    const QString text = event->text();
    if (cell && !text.isEmpty() && text[0].isPrint() && !text[0].isSpace()) {
        search_->setFocus();
        search_->insert(text);
        return;
    }
    QWidget::keyPressEvent(event);
}

void Shelf::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Theme::panel());
    painter.fillRect(QRect(width() - 1, 0, 1, height()), Theme::edge());
}

} // namespace tamlo::ui
