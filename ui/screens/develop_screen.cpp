#include "ui/screens/develop_screen.h"

#include "ui/canvas/canvas_link.h"
#include "ui/canvas/display_color.h"
#include "ui/canvas/picture_view.h"
#include "ui/kit/words.h"
#include "ui/screens/canvas_bar.h"
#include "ui/screens/crop_overlay.h"
#include "ui/screens/crop_panel.h"
#include "ui/screens/frame_strip.h"
#include "ui/screens/rack.h"
#include "ui/screens/shelf.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace tamlo::ui {
namespace {

/// The size that a picture from `detail` pixels of a source would have from all of `full`.
Size grown(const ReadyImage& image, double factor)
{
    return {std::llround(static_cast<double>(image.width) * factor),
            std::llround(static_cast<double>(image.height) * factor)};
}

double longSide(const ReadyImage& image)
{
    return static_cast<double>(std::max(image.width, image.height));
}

} // namespace

DevelopScreen::DevelopScreen(Desk desk, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      color_(new DisplayColor(desk.model.seams().preferences, this)),
      picture_(new PictureView(this)),
      link_(new CanvasLink(desk.model, &desk.views.screen(), *picture_)),
      bar_(new CanvasBar(desk, this)),
      strip_(new FrameStrip(desk, this)),
      side_(new QStackedWidget(this)),
      rack_(new Rack(desk.model, this)),
      crop_(new CropOverlay(desk, color_, picture_)),
      cropPanel_(new CropPanel(desk, *crop_, this))
{
    auto* across = new QHBoxLayout(this);
    across->setContentsMargins(0, 0, 0, 0);
    across->setSpacing(0);
    auto* left = new QVBoxLayout;
    left->setSpacing(0);
    left->addWidget(picture_, 1);
    left->addWidget(bar_);
    left->addWidget(strip_);
    across->addLayout(left, 1);
    side_->addWidget(rack_);
    side_->addWidget(cropPanel_);
    side_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    across->addWidget(side_);
    picture_->setDisplayColor(color_);
    rack_->setScreen(&desk_.views.screen());
    rack_->setShelfHost(picture_);
    setFocusProxy(picture_);
    connect(&rack_->shelf(), &Shelf::peeked, this, &DevelopScreen::peek);
    connect(&rack_->shelf(), &Shelf::peekEnded, this, [this] { peek(nullptr); });
    subscription_ = desk_.model.subscribe({Concern::frameView, Concern::selection, Concern::tiles,
                                           Concern::roll, Concern::fileStates, Concern::ab, Concern::crop},
                                          [this](const ChangeSet& change) {
                                              if (change.concerns.has(Concern::crop)) showCrop();
                                              if (change.concerns.has(Concern::selection)) peeked_.reset();
                                              showPicture();
                                          });
    retranslate();
}

void DevelopScreen::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) retranslate();
    QWidget::changeEvent(event);
}

void DevelopScreen::retranslate()
{
    picture_->setAccessibleName(word("canvas.name"));
}

/// What a shelf offers, the original or the print; until either is there, the frame's tile as large as it
/// will be.
void DevelopScreen::showPicture()
{
    if (!desk_.isOnDevelop()) return;
    const FrameScreen& screen = desk_.views.screen();
    const auto& cursor = desk_.model.selection.cursor();
    const auto full = static_cast<double>(screen.fullDetailLong());
    if (peeked_)
        link_->show(peeked_, {});
    else if (showsOriginal_ && screen.original())
        link_->show(screen.original(),
                    grown(*screen.original(), full > 0 ? full / longSide(*screen.original()) : 1));
    else if (screen.image() && screen.detailLong() > 0 && full > 0)
        link_->show(screen.image(), grown(*screen.image(), full / static_cast<double>(screen.detailLong())));
    else if (screen.image())
        link_->show(screen.image(), {});
    else
        link_->show(cursor ? desk_.views.tiles().tile(*cursor) : nullptr, {});
    showSides();
    bar_->refresh();
}

void DevelopScreen::peek(std::shared_ptr<const ReadyImage> picture)
{
    peeked_ = std::move(picture);
    showPicture();
}

/// A keeps the place it has without B beside it.
void DevelopScreen::showSides()
{
    const FrameScreen& screen = desk_.views.screen();
    const bool isTwo = desk_.model.sides.abEnabled();
    picture_->setArrangement(isTwo ? PictureView::Arrangement::sideBySide : PictureView::Arrangement::one);
    picture_->setPicture(PictureView::Side::beside, isTwo ? screen.abImage() : nullptr);
    const auto name = [&](const char* letter, Sides::ABSide side) {
        const bool isEdited = desk_.model.sides.abFocus() == side;
        return QString::fromLatin1(letter) +
               (isEdited ? QStringLiteral(" · ") + word("canvas.edited") : QString());
    };
    picture_->setName(PictureView::Side::main, name("A", Sides::ABSide::a));
    picture_->setName(PictureView::Side::beside, name("B", Sides::ABSide::b));
}

/// The overlay comes and goes by itself; the focus goes back to the print with it.
void DevelopScreen::showCrop()
{
    const bool isCropping = desk_.model.cropping.cropMode();
    QWidget* shown = isCropping ? static_cast<QWidget*>(cropPanel_) : rack_;
    if (side_->currentWidget() == shown) return;
    side_->setCurrentWidget(shown);
    if (!isCropping && isVisible()) picture_->setFocus(Qt::OtherFocusReason);
}

void DevelopScreen::setShowsOriginal(bool shows)
{
    showsOriginal_ = shows;
    desk_.views.screen().setShowsOriginal(shows);
    showPicture();
}

void DevelopScreen::setShowsStrip(bool shows)
{
    strip_->setVisible(shows);
}

bool DevelopScreen::showsStrip() const
{
    return !strip_->isHidden();
}

QList<QWidget*> DevelopScreen::regions() const
{
    return {picture_, side_->currentWidget(), bar_, strip_};
}

} // namespace tamlo::ui
