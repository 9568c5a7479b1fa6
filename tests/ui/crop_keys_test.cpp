// A crop by hand and by keys, over the session that holds it.
#include "core/pipeline/crop_geometry.h"
#include "tests/shell/session.h"
#include "tests/ui/window_application.h"
#include "ui/screens/crop_grip.h"
#include "ui/screens/crop_overlay.h"
#include "ui/screens/crop_panel.h"

#include <QPushButton>
#include <QTest>

namespace tamlo::ui {
namespace {

class CropByHand : public test::SessionTest {
protected:
    CropByHand()
    {
        open(3);
        model_.selection.openFrame(roll()[2].id); // without a crop, upright
        canvas_.resize(1000, 700);
        overlay_ = new CropOverlay(model_, pictures_, nullptr, &canvas_);
        panel_ = std::make_unique<CropPanel>(model_, *overlay_);
        panel_->resize(340, 700);
        canvas_.show();
        panel_->show();
        model_.cropping.change([](CropDraft&) {});
        EXPECT_TRUE(model_.cropping.enterCropMode());
        change([](CropDraft& draft) { draft.reset(); });
    }

    void change(const Cropping::Change& change)
    {
        model_.cropping.change(change);
        loop_.runPosted();
    }
    const CropDraft& draft() const { return *model_.cropping.draft(); }
    CropGrip* grip(const char* name) const
    {
        return overlay_->findChild<CropGrip*>(QString::fromLatin1(name));
    }
    void key(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget, key, modifiers);
        loop_.runPosted();
    }
    void drag(QWidget* widget, QPoint by, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint from = widget->rect().center();
        QTest::mousePress(widget, Qt::LeftButton, modifiers, from);
        const QPoint global = widget->mapToGlobal(from + by);
        QMouseEvent move(QEvent::MouseMove, from + by, global, Qt::NoButton, Qt::LeftButton, modifiers);
        QApplication::sendEvent(widget, &move);
        QTest::mouseRelease(widget, Qt::LeftButton, modifiers, from + by);
        loop_.runPosted();
    }

    WindowApplication application_;
    test::ScratchFolder cache_;
    LiveViews pictures_{{.loop = loop_, .store = store_, .folder = cache_.path()}};
    QWidget canvas_;
    CropOverlay* overlay_;
    std::unique_ptr<CropPanel> panel_;
};

TEST_F(CropByHand, TabWalksTheEightHandlesAndArrowsMoveTheOneInFocus)
{
    ASSERT_TRUE(overlay_->isVisible());
    canvas_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&canvas_));
    overlay_->setFocus();
    QStringList walked;
    for (int i = 0; i < 8; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        walked << QApplication::focusWidget()->objectName();
        EXPECT_FALSE(QApplication::focusWidget()->accessibleName().isEmpty());
    }
    EXPECT_EQ(walked.join(u' '),
              QStringLiteral("topLeft top topRight right bottomRight bottom bottomLeft left"));

    change([](CropDraft& d) { d.setRect({1000, 1000, 3000, 2000}); });
    const double step = std::round(6000 / 920.0); // a pixel of the screen, in pixels of the picture
    struct Case {
        const char* grip;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        RectPx after;
    };
    const std::vector<Case> cases{
        {"topLeft", Qt::Key_Right, {}, {1000 + step, 1000, 3000 - step, 2000}},
        {"top", Qt::Key_Up, {}, {1000, 1000 - step, 3000, 2000 + step}},
        {"bottomRight", Qt::Key_Down, Qt::ShiftModifier, {1000, 1000, 3000, 2000 + 10 * step}},
        {"right", Qt::Key_Left, Qt::ControlModifier, {1000 + step, 1000, 3000 - 2 * step, 2000}},
        {"left", Qt::Key_Up, {}, {1000, 1000, 3000, 2000}},
    };
    for (const Case& one : cases) {
        change([](CropDraft& d) { d.setRect({1000, 1000, 3000, 2000}); });
        key(grip(one.grip), one.key, one.modifiers);
        EXPECT_EQ(draft().rect(), one.after) << one.grip;
    }
    change([](CropDraft& d) { d.setRect({1000, 1000, 3000, 2000}); });
    key(overlay_, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(draft().rect(), (RectPx{1000 - 10 * step, 1000, 3000, 2000}));
}

TEST_F(CropByHand, AHandDragsKeepsTheRatioAndTheCentre)
{
    const RectPx before{1000, 1000, 3000, 2000};
    const double scale = 6000 / 920.0;
    const auto dragged = [&](const char* name, QPoint by, Qt::KeyboardModifiers modifiers) {
        change([&](CropDraft& d) { d.setRect(before); });
        drag(grip(name), by, modifiers);
        return draft().rect();
    };
    RectPx rect = dragged("bottomRight", {-46, -30}, {});
    EXPECT_NEAR(rect.w, 3000 - 46 * scale, 1e-6);
    EXPECT_NEAR(rect.h, 2000 - 30 * scale, 1e-6);
    rect = dragged("bottomRight", {-46, -10}, Qt::ShiftModifier);
    EXPECT_NEAR(rect.w / rect.h, 1.5, 1e-9);
    rect = dragged("right", {-46, 0}, Qt::ControlModifier);
    EXPECT_NEAR(rect.centreX(), before.centreX(), 1e-9);
    EXPECT_NEAR(rect.w, 3000 - 2 * 46 * scale, 1e-6);
    EXPECT_EQ(model_.history().undoStack().size(), 0u) << "a session is one step, when it ends";
}

TEST_F(CropByHand, LettersWorkFromThePanelAndTheEndsDoWhatTheySay)
{
    change([](CropDraft& d) { d.setRect({1000, 1000, 3000, 2000}); });
    auto* const button = panel_->findChild<QPushButton*>();
    key(button, Qt::Key_X);
    EXPECT_GT(draft().rect().h, draft().rect().w);
    key(button, Qt::Key_E);
    EXPECT_NEAR(draft().rect().h, 4000, 1e-6);
    key(overlay_, Qt::Key_Period);
    key(overlay_, Qt::Key_Period);
    EXPECT_NEAR(draft().angle(), 0.2, 1e-9);
    key(overlay_, Qt::Key_R);
    EXPECT_EQ(draft().rect(), (RectPx{0, 0, 6000, 4000}));
    // A line drawn downhill to the right is what is level from now on.
    key(overlay_, Qt::Key_L);
    ASSERT_TRUE(overlay_->isLevelArmed());
    drag(overlay_, {200, 20});
    EXPECT_NEAR(draft().angle(), -std::atan2(20, 200) * 180 / std::numbers::pi, 1e-6);
    EXPECT_FALSE(overlay_->isLevelArmed());
    key(overlay_, Qt::Key_Escape);
    EXPECT_FALSE(model_.cropping.cropMode());
    EXPECT_FALSE(overlay_->isVisible());
    EXPECT_EQ(model_.history().undoStack().size(), 0u);
    ASSERT_TRUE(model_.cropping.enterCropMode());
    change([](CropDraft& d) { d.setRect({1000, 1000, 3000, 2000}); });
    EXPECT_TRUE(overlay_->isVisible());
    key(overlay_, Qt::Key_Return);
    EXPECT_FALSE(model_.cropping.cropMode());
    EXPECT_EQ(model_.history().undoStack().size(), 1u);
}

TEST_F(CropByHand, WhatALevelLineLiesOnIsShownLevel)
{
    // A white spot at what the tilted crop's corner is in the source.
    const Size size{600, 400};
    CropDraft draft({size, {}, std::nullopt, std::nullopt}, Crop{0.3, 0.3, 0.3, 0.3, 11});
    const RectPx rect = draft.rect();
    const auto corners = Pipeline::cropCornersSrc(
        Crop{rect.x / 600, rect.y / 400, rect.w / 600, rect.h / 400, 11}, 11.0, size);
    ReadyImage image{size.width, size.height, std::vector<std::uint8_t>(600 * 400 * 4, 0), {}};
    for (int y = -6; y <= 6; ++y)
        for (int x = -6; x <= 6; ++x)
            for (int c = 0; c < 4; ++c)
                image.rgba[static_cast<std::size_t>(
                    ((std::lround(corners[0].y) + y) * 600 + std::lround(corners[0].x) + x) * 4 + c)] = 255;
    bool isReady = false;
    CropCanvas canvas([&] { isReady = true; });
    canvas.setPlace({900, 700}, 1, draft);
    canvas.setPicture(std::make_shared<const ReadyImage>(image), {});
    ASSERT_TRUE(QTest::qWaitFor([&] { return isReady; }));
    QImage screen(900, 700, QImage::Format_RGB32);
    screen.fill(Qt::black);
    QPainter painter(&screen);
    canvas.paint(painter, false);
    painter.end();
    const QPoint at = canvas.pointsOf(rect).topLeft().toPoint();
    EXPECT_EQ(qRed(screen.pixel(at)), 255);
    EXPECT_EQ(qRed(screen.pixel(at + QPoint(30, 0))), 0);
}

} // namespace
} // namespace tamlo::ui
