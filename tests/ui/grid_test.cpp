#include "tests/ui/window_session.h"
#include "ui/screens/grid_screen.h"
#include "ui/screens/grid_view.h"

#include <QTest>

namespace tamlo::ui {
namespace {

TEST(GridLayouts, HoldEveryCellOnceAndFindItAgain)
{
    for (const std::size_t count : {0U, 1U, 7U, 5'000U})
        for (const int width : {60, 300, 1280, 3840})
            for (const int tile : {10, 200, 1000}) {
                const GridLayout layout(count, width, tile);
                EXPECT_GE(layout.columns(), 1);
                for (std::size_t i = 0; i < count; i += count / 7 + 1) {
                    const QRect cell = layout.cell(i);
                    EXPECT_EQ(layout.cellAt(cell.center()), i);
                    EXPECT_LE(cell.bottom(), layout.height());
                    EXPECT_EQ(layout.cellsIn(cell), std::vector{i});
                    EXPECT_TRUE(layout.columns() == 1 || cell.right() < width);
                    EXPECT_EQ(layout.gapAt(cell.topLeft() + QPoint(1, 1)), i);
                }
                EXPECT_EQ(layout.cellsBetween(0, layout.height()),
                          (std::pair<std::size_t, std::size_t>{0, count}));
                EXPECT_EQ(layout.cellAt({0, 0}), std::nullopt);
                EXPECT_EQ(layout.cellAt({width / 2, layout.height() + 500}), std::nullopt);
            }
}

class Grid : public WindowSession {
protected:
    Grid()
    {
        window_.resize(1280, 800);
        window_.show();
        open(60);
    }
    GridView& view() { return window_.grid().view(); }
    QPoint place(std::size_t row) { return view().cellRect(row).center(); }
    void click(std::size_t row, Qt::KeyboardModifiers keys = {})
    {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, keys, place(row));
    }
    std::vector<std::size_t> selected()
    {
        std::vector<std::size_t> rows;
        for (std::size_t row = 0; row < view().rows().size(); ++row)
            if (model().selection.selected().contains(view().rows().id(row))) rows.push_back(row);
        return rows;
    }
    /// Presses, moves far enough to be a drag, and lets go.
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers keys = {})
    {
        QWidget* on = view().viewport();
        QTest::mousePress(on, Qt::LeftButton, keys, from);
        for (int step = 1; step <= 4; ++step) {
            const QPointF at = QPointF(from) + QPointF(to - from) * step / 4;
            QMouseEvent move(QEvent::MouseMove, at, on->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, keys);
            QCoreApplication::sendEvent(on, &move);
        }
        QTest::mouseRelease(on, Qt::LeftButton, keys, to);
    }
    using Rows = std::vector<std::size_t>;
};

TEST_F(Grid, SelectsByTheMouse)
{
    click(3);
    EXPECT_EQ(selected(), Rows{3});
    click(6, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (Rows{3, 4, 5, 6}));
    click(4, Qt::ControlModifier);
    EXPECT_EQ(selected(), (Rows{3, 5, 6}));
    click(5); // one of several: the press may begin a drag of them all, the release chooses it
    EXPECT_EQ(selected(), Rows{5});
    drag(view().cellRect(1).topLeft() - QPoint(3, 3), place(2));
    EXPECT_EQ(selected(), (Rows{1, 2}));
    drag(view().cellRect(4).topLeft() - QPoint(3, 3), place(4), Qt::ControlModifier);
    EXPECT_EQ(selected(), (Rows{1, 2, 4}));
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, place(2));
    EXPECT_EQ(model().selection.screen(), Screen::develop);
}

TEST_F(Grid, PutsWhatIsDraggedWhereItIsDropped)
{
    const FrameID first = roll()[0].id, second = roll()[1].id, fifth = roll()[4].id;
    click(0);
    click(1, Qt::ControlModifier);
    drag(place(0), view().cellRect(4).topLeft() + QPoint(4, 40));
    EXPECT_EQ(roll()[2].id, first);
    EXPECT_EQ(roll()[3].id, second);
    EXPECT_EQ(roll()[4].id, fifth);
    EXPECT_EQ(model().project().sortMode, SortMode::manual);
    model().undo();
    EXPECT_EQ(roll()[0].id, first);
}

TEST_F(Grid, WalksAndMarksByKeys)
{
    click(0);
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Down);
    const auto columns = static_cast<std::size_t>(view().gridLayout().columns());
    EXPECT_EQ(view().rows().cursorRow(), columns);
    QTest::keyClick(&view(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (Rows{columns, columns + 1}));
    QTest::keyClick(&view(), Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(view().rows().cursorRow(), columns);
    EXPECT_EQ(selected(), (Rows{columns, columns + 1}));
    QTest::keyClick(&view(), Qt::Key_Home);
    const FrameID first = roll()[0].id;
    QTest::keyClick(&view(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(roll()[1].id, first);
    QTest::keyClick(&view(), Qt::Key_End);
    turn();
    EXPECT_TRUE(view().viewport()->rect().contains(place(roll().size() - 1)));
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(model().selection.screen(), Screen::develop);
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_EQ(model().selection.screen(), Screen::grid);
}

} // namespace
} // namespace tamlo::ui
