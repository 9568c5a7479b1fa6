// DevelopScreen: one frame: its print, the rack that makes it, and the strip of the roll.
#pragma once

#include "ui/screens/desk.h"

#include <QList>
#include <QWidget>

class QStackedWidget;

namespace tamlo::ui {

class CanvasBar;
class CanvasLink;
class CropOverlay;
class CropPanel;
class DisplayColor;
class FrameStrip;
class PictureView;
class Rack;

class DevelopScreen : public QWidget {
public:
    explicit DevelopScreen(Desk desk, QWidget* parent = nullptr);

    void setShowsOriginal(bool shows);
    void setShowsStrip(bool shows);
    bool showsStrip() const;
    Rack& rack() { return *rack_; }
    const Rack& rack() const { return *rack_; }
    /// What F6 walks through.
    QList<QWidget*> regions() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void showPicture();
    void showSides();
    void peek(std::shared_ptr<const ReadyImage> picture);
    void showCrop();

    Desk desk_;
    DisplayColor* color_;
    PictureView* picture_;
    CanvasLink* link_; ///< the view's
    CanvasBar* bar_;
    FrameStrip* strip_;
    QStackedWidget* side_; ///< the rack, or what stands in its place
    Rack* rack_;
    CropOverlay* crop_;
    CropPanel* cropPanel_;
    bool showsOriginal_ = false;
    std::shared_ptr<const ReadyImage> peeked_; ///< what a shelf offers, while its cell is reached
    Subscription subscription_;
};

} // namespace tamlo::ui
