// The gestures of one knob, in one table: what becomes of the value, how many steps each leaves, and what the
// last of them is called.
#include "tests/ui/rack_session.h"

#include "ui/kit/kit_knob.h"

#include <QLineEdit>
#include <QWheelEvent>

#include <functional>

namespace tamlo::ui {
namespace {

/// A hand on a knob of exposure: -6 to 6, tenths.
struct Hand {
    KitKnob& knob;

    QPoint at(double value) const
    {
        const QRectF track = knob.trackRect();
        const double width = track.width() - 2 * KnobRow::kTrackInset;
        const KnobRow& row = knob.row();
        return {static_cast<int>(
                    std::lround(KnobRow::kTrackInset + (value - row.low) / (row.high - row.low) * width)),
                static_cast<int>(track.center().y())};
    }
    void press(QPoint place, Qt::KeyboardModifiers keys = {}) const
    {
        QTest::mousePress(&knob, Qt::LeftButton, keys, place);
    }
    /// Qt's own mouse moves carry no button and no keys.
    void move(QPoint place, Qt::KeyboardModifiers keys = {}) const
    {
        QMouseEvent event(QEvent::MouseMove, place, knob.mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                          keys);
        QApplication::sendEvent(&knob, &event);
    }
    void release(QPoint place) const { QTest::mouseRelease(&knob, Qt::LeftButton, {}, place); }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) const
    {
        press(from, keys);
        for (int step = 1; step <= 4; ++step) move(from + (to - from) * step / 4, keys);
        release(to);
    }
    void wheel(Qt::KeyboardModifiers keys) const
    {
        const QPointF middle = QRectF(knob.rect()).center();
        QWheelEvent event(middle, knob.mapToGlobal(middle), {}, {0, 120}, Qt::NoButton, keys,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&knob, &event);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers keys = {}) const { QTest::keyClick(&knob, key, keys); }
    void type(const QString& text, Qt::Key end = Qt::Key_Return) const
    {
        knob.setFocus();
        knob.openEntry();
        auto* entry = knob.findChild<QLineEdit*>();
        ASSERT_TRUE(entry);
        entry->setText(text);
        QTest::keyClick(entry, end);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

struct Gesture {
    const char* what;
    std::function<void(const Hand&)> make;
    double value;
    std::size_t steps;
    const char* name; ///< of the last step; empty for none
};

constexpr double kBefore = 1.0; // stops
constexpr int kDoubleClickMs = 400;

const Gesture kGestures[] = {
    {"a click jumps, once it is no double click",
     [](const Hand& hand) {
         hand.press(hand.at(2));
         hand.release(hand.at(2));
         ASSERT_DOUBLE_EQ(hand.knob.row().value, kBefore);
         ASSERT_TRUE(QTest::qWaitFor([&] { return hand.knob.row().value != kBefore; }));
     },
     2, 1, "exposure"},
    {"a double click goes to the default",
     [](const Hand& hand) {
         hand.press(hand.at(2));
         hand.release(hand.at(2));
         QTest::mouseDClick(&hand.knob, Qt::LeftButton, {}, hand.at(2));
         hand.release(hand.at(2));
         QTest::qWait(kDoubleClickMs); // nothing comes after
     },
     0, 1, "exposure → default"},
    {"a drag is one step", [](const Hand& hand) { hand.drag(hand.at(1), hand.at(3)); }, 3, 1, "exposure"},
    {"the default holds a drag that comes near",
     [](const Hand& hand) { hand.drag(hand.at(1), hand.at(0) + QPoint(3, 0)); }, 0, 1, "exposure"},
    {"Ctrl makes a drag ten times finer",
     [](const Hand& hand) { hand.drag(hand.at(1), hand.at(3), Qt::ControlModifier); }, 1.2, 1, "exposure"},
    {"Ctrl pressed on the way doesn't jump",
     [](const Hand& hand) {
         hand.press(hand.at(1));
         hand.move(hand.at(2));
         hand.move(hand.at(2), Qt::ControlModifier);
         hand.move(hand.at(4), Qt::ControlModifier);
         hand.release(hand.at(4));
     },
     2.2, 1, "exposure"},
    {"Escape takes a drag back",
     [](const Hand& hand) {
         hand.press(hand.at(1));
         hand.move(hand.at(3));
         hand.key(Qt::Key_Escape);
         hand.move(hand.at(4));
         hand.release(hand.at(4));
     },
     1, 0, ""},
    {"an arrow", [](const Hand& hand) { hand.key(Qt::Key_Right); }, 1.1, 1, "exposure"},
    {"Shift and an arrow", [](const Hand& hand) { hand.key(Qt::Key_Left, Qt::ShiftModifier); }, 0, 1,
     "exposure"},
    {"Home", [](const Hand& hand) { hand.key(Qt::Key_Home); }, -6, 1, "exposure"},
    {"End", [](const Hand& hand) { hand.key(Qt::Key_End); }, 6, 1, "exposure"},
    {"Delete", [](const Hand& hand) { hand.key(Qt::Key_Delete); }, 0, 1, "exposure → default"},
    {"PageDown is the roll's", [](const Hand& hand) { hand.key(Qt::Key_PageDown); }, 1, 0, ""},
    {"a comma", [](const Hand& hand) { hand.type(QStringLiteral("1,5")); }, 1.5, 1, "exposure"},
    {"a real minus", [](const Hand& hand) { hand.type(QStringLiteral("\u22122")); }, -2, 1, "exposure"},
    {"no number", [](const Hand& hand) { hand.type(QStringLiteral("abc")); }, 1, 0, ""},
    {"out of range", [](const Hand& hand) { hand.type(QStringLiteral("99")); }, 6, 1, "exposure"},
    {"Escape in the entry", [](const Hand& hand) { hand.type(QStringLiteral("3"), Qt::Key_Escape); }, 1, 0,
     ""},
    {"a digit opens the entry",
     [](const Hand& hand) {
         hand.key(Qt::Key_2);
         auto* entry = hand.knob.findChild<QLineEdit*>();
         ASSERT_TRUE(entry);
         QTest::keyClick(entry, Qt::Key_Return);
     },
     2, 1, "exposure"},
    {"the wheel scrolls the rack", [](const Hand& hand) { hand.wheel({}); }, 1, 0, ""},
    {"Ctrl and the wheel", [](const Hand& hand) { hand.wheel(Qt::ControlModifier); }, 1.1, 1, "exposure"},
    {"without the focus not even that",
     [](const Hand& hand) {
         hand.knob.clearFocus();
         hand.wheel(Qt::ControlModifier);
     },
     1, 0, ""},
};

TEST_F(RackTest, EveryGestureIsOneStep)
{
    for (const Gesture& gesture : kGestures) {
        SCOPED_TRACE(gesture.what);
        ProcessSettings settings = ProcessSettings::fresh();
        settings.options.ev = kBefore;
        put(settings);
        auto& knob = control<KitKnob>(PresetBlock::light, "ev");
        ASSERT_DOUBLE_EQ(knob.row().value, kBefore);
        knob.setFocus();
        const std::size_t before = steps();
        gesture.make(Hand{knob});
        turn();
        EXPECT_NEAR(options().ev, gesture.value, 1e-9);
        EXPECT_NEAR(knob.row().value, gesture.value, 1e-9) << "on screen";
        EXPECT_EQ(steps() - before, gesture.steps);
        if (*gesture.name) {
            EXPECT_EQ(topName(), gesture.name);
        }
    }
}

TEST_F(RackTest, AFingerScrollsUntilItGoesSideways)
{
    ProcessSettings settings = ProcessSettings::fresh();
    put(settings);
    auto& knob = control<KitKnob>(PresetBlock::light, "ev");
    const auto touch = [&](QEvent::Type type, QPoint at) {
        QMouseEvent event(type, at, knob.mapToGlobal(at), knob.mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {},
                          Qt::MouseEventSynthesizedBySystem);
        QApplication::sendEvent(&knob, &event);
    };
    const QPoint middle = knob.trackRect().center().toPoint();
    for (const QPoint by : {QPoint(7, 0), QPoint(3, 20), QPoint(60, 60)}) {
        touch(QEvent::MouseButtonPress, middle);
        touch(QEvent::MouseMove, middle + QPoint(by.x() / 2, by.y()));
        touch(QEvent::MouseMove, middle + by);
        touch(QEvent::MouseButtonRelease, middle + by);
        EXPECT_EQ(knob.row().value, 0) << by.x() << ", " << by.y();
    }
    touch(QEvent::MouseButtonPress, middle);
    touch(QEvent::MouseMove, middle + QPoint(60, 2));
    touch(QEvent::MouseButtonRelease, middle + QPoint(60, 2));
    EXPECT_GT(knob.row().value, 1);
}

} // namespace
} // namespace tamlo::ui
