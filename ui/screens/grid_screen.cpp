#include "ui/screens/grid_screen.h"

#include "ui/kit/kit_choice.h"
#include "ui/kit/words.h"
#include "ui/screens/grid_view.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>

#include <cmath>

namespace tamlo::ui {
namespace {

constexpr GridFilter kFilters[] = {GridFilter::all, GridFilter::hideRejected, GridFilter::selected};
constexpr const char* kFilterKeys[] = {"filter.all", "filter.hideRejected", "filter.selected"};
constexpr SortMode kModes[] = {SortMode::name, SortMode::shot, SortMode::manual};
constexpr const char* kModeKeys[] = {"sort.name", "sort.shot", "sort.manual"};
constexpr double kTileStep = 1.2;

} // namespace

GridScreen::GridScreen(Desk desk, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      view_(new GridView(desk, this)),
      orderTitle_(new QLabel(this)),
      order_(new KitChoice(this)),
      reverse_(new QToolButton(this)),
      originals_(new QCheckBox(this)),
      size_(new QSlider(Qt::Horizontal, this)),
      subscription_(
          desk.model.subscribe({Concern::roll, Concern::document}, [this](const ChangeSet&) { refresh(); }))
{
    build();
    retranslate();
    setFocusProxy(view_);
}

void GridScreen::build()
{
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(10, 5, 10, 5);
    bar->setSpacing(6);
    auto* group = new QButtonGroup(this);
    for (std::size_t i = 0; i < 3; ++i) {
        filters_[i] = new QToolButton(this);
        filters_[i]->setCheckable(true);
        filters_[i]->setAutoRaise(true);
        group->addButton(filters_[i]);
        bar->addWidget(filters_[i]);
        connect(filters_[i], &QToolButton::clicked, this,
                [this, filter = kFilters[i]] { desk_.model.selection.setFilter(filter); });
    }
    bar->addSpacing(14);
    bar->addWidget(orderTitle_);
    bar->addWidget(order_);
    bar->addWidget(reverse_);
    bar->addSpacing(14);
    bar->addWidget(originals_);
    bar->addStretch();
    bar->addWidget(size_);
    for (int i = 0; i < 3; ++i) order_->addItem(QString());
    reverse_->setText(QStringLiteral("⇅"));
    reverse_->setAutoRaise(true);
    size_->setRange(GridLayout::kLeastTile, GridLayout::kMostTile);
    size_->setFixedWidth(150);
    lines->addLayout(bar);
    lines->addWidget(view_, 1);
    orderTitle_->setBuddy(order_);
    connect(order_, &QComboBox::activated, this,
            [this](int i) { desk_.model.ordering.setSortMode(kModes[i]); });
    connect(reverse_, &QToolButton::clicked, this, [this] { desk_.model.ordering.reverseFrames(); });
    connect(originals_, &QCheckBox::clicked, this, [this] { desk_.window.toggleOriginals(); });
    connect(size_, &QSlider::valueChanged, this, &GridScreen::setTile);
}

void GridScreen::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void GridScreen::retranslate()
{
    view_->setAccessibleName(word("grid.name"));
    orderTitle_->setText(word("grid.order"));
    for (int i = 0; i < 3; ++i) order_->setItemText(i, word(kModeKeys[i]));
    reverse_->setToolTip(word("menu.frame.reverse"));
    reverse_->setAccessibleName(word("menu.frame.reverse"));
    originals_->setText(word("grid.originals"));
    size_->setToolTip(word("grid.tileSize"));
    size_->setAccessibleName(word("grid.tileSize"));
    refresh();
}

void GridScreen::refresh()
{
    const Project& project = desk_.model.project();
    const Project::MarkCounts counts = project.counts();
    const std::size_t all = project.frames.size();
    const std::size_t numbers[] = {all, all - counts.rejected, counts.selected};
    for (std::size_t i = 0; i < 3; ++i) {
        filters_[i]->setText(word(kFilterKeys[i]) + QStringLiteral("  %1").arg(numbers[i]));
        filters_[i]->setChecked(project.filter == kFilters[i]);
    }
    order_->setCurrentIndex(static_cast<int>(project.sortMode));
    originals_->setChecked(desk_.window.showsOriginals());
    const QSignalBlocker quiet(size_);
    size_->setValue(static_cast<int>(project.thumbSize));
    view_->setTile(size_->value());
}

void GridScreen::setTile(int side)
{
    desk_.model.amendProject([side](Project& project) { project.thumbSize = side; });
    view_->setTile(side);
}

void GridScreen::zoomTiles(int direction)
{
    size_->setValue(static_cast<int>(std::lround(size_->value() * std::pow(kTileStep, direction))));
}

} // namespace tamlo::ui
