#include "tests/ui/window_application.h"
#include "ui/desktop/qt_loop.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <numeric>
#include <thread>
#include <vector>

namespace tamlo::ui {
namespace {

class Loop : public WindowTest {
protected:
    /// Turns the event loop until then; false after ten seconds.
    bool turnUntil(const std::function<bool()>& done)
    {
        QElapsedTimer clock;
        clock.start();
        while (!done() && clock.elapsed() < 10'000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        return done();
    }

    QtLoop loop_;
};

TEST_F(Loop, RunsWorkInTheOrderOfPostingAndNeverInsideThePost)
{
    std::vector<int> ran;
    loop_.post([&] {
        ran.push_back(0);
        loop_.post([&] { ran.push_back(2); });
        EXPECT_EQ(ran.size(), 1U);
    });
    loop_.post([&] { ran.push_back(1); });
    EXPECT_TRUE(ran.empty());
    ASSERT_TRUE(turnUntil([&] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector{0, 1, 2}));
}

TEST_F(Loop, TakesEveryPostOfManyThreadsInEachThreadsOrder)
{
    constexpr int kThreads = 4, kPosts = 500;
    std::vector<std::vector<int>> ran(kThreads);
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPosts; ++i)
                loop_.post([&, t, i] {
                    EXPECT_TRUE(loop_.isMainThread());
                    ran[static_cast<std::size_t>(t)].push_back(i);
                });
        });
    std::vector<int> expected(kPosts);
    std::iota(expected.begin(), expected.end(), 0);
    ASSERT_TRUE(turnUntil([&] { return ran == std::vector(kThreads, expected); }));
}

TEST_F(Loop, LetsTimersRunBetweenWorkThatNeverEnds)
{
    bool isOver = false;
    int turns = 0;
    std::function<void()> again = [&] {
        ++turns;
        if (!isOver) loop_.post(again);
    };
    loop_.post(again);
    const auto timer = loop_.after(0.02, [&] { isOver = true; });
    EXPECT_TRUE(turnUntil([&] { return isOver; }));
    EXPECT_GT(turns, 1);
}

TEST_F(Loop, KeepsTimersInOrderAndForgetsCancelledOnes)
{
    std::vector<int> ran;
    auto late = loop_.after(0.03, [&] { ran.push_back(2); });
    auto early = loop_.after(0.01, [&] { ran.push_back(1); });
    auto never = loop_.after(0.015, [&] { ran.push_back(-1); });
    never.cancel();
    platform::Timer every;
    int beats = 0;
    every = loop_.every(0.005, [&] {
        if (++beats == 3) every.cancel(); // from inside its own work
    });
    ASSERT_TRUE(turnUntil([&] { return ran.size() == 2 && beats == 3; }));
    bool isQuiet = false;
    const auto rest = loop_.after(0.03, [&] { isQuiet = true; });
    ASSERT_TRUE(turnUntil([&] { return isQuiet; }));
    EXPECT_EQ(ran, (std::vector{1, 2}));
    EXPECT_EQ(beats, 3);
}

} // namespace
} // namespace tamlo::ui
