// The main loop of a program without a screen, and the one whose clock tests turn: the same order of work.
#include "platform/console.h"
#include "platform/main_loop.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

namespace tamlo::platform {
namespace {

TEST(VirtualLoop, RunsTimersInTheOrderInWhichTheyFallDue)
{
    test::VirtualLoop loop;
    std::string log;
    const auto note = [&](char c) { return [&log, c] { log += c; }; };
    const Timer save = loop.every(60, note('S'));
    Timer merged = loop.after(0.4, note('m'));
    const Timer tie = loop.after(0.6, note('1')), tie2 = loop.after(0.6, note('2'));
    const Timer chained = loop.after(0.25, [&] {
        log += 'c';
        loop.post([&] {
            log += 'p';
            merged = loop.after(0.1, note('n')); // replaces what was due at 0.4
        });
    });
    loop.advance(0.2);
    EXPECT_EQ(log, "");
    loop.advance(0.1);
    EXPECT_EQ(log, "cp");
    loop.advance(59.0);
    EXPECT_EQ(log, "cpn12");
    loop.advance(121.0);
    EXPECT_EQ(log, "cpn12SSS");
    EXPECT_NEAR(loop.date() - test::VirtualLoop::kBegin, 180.3, 1e-5);
}

TEST(TimerQueue, LateRepetitionsRunOnceAndCancelledOnesNever)
{
    TimerQueue timers;
    int ran = 0;
    Timer self;
    Timer often = timers.add(1.0, 1.0, [&] { ++ran; });
    self = timers.add(1.5, 1.0, [&] {
        ran += 100;
        self.cancel(); // from inside its own work
    });
    Timer never = timers.add(0.0, std::nullopt, [&] { ran += 10'000; });
    never = Timer();
    while (timers.runNext(7.3)) {}
    EXPECT_EQ(ran, 101);
    EXPECT_EQ(timers.nextDue(), 8.0);
    often = Timer();
    EXPECT_EQ(timers.nextDue(), std::nullopt);
    timers.add(1.0, std::nullopt, [&] { ran = -1; }).release();
    EXPECT_TRUE(timers.runNext(1.0));
    EXPECT_EQ(ran, -1);
}

TEST(HeadlessLoop, KeepsTheOrderOfEachThreadThatPosts)
{
    HeadlessLoop loop;
    constexpr int kThreads = 4, kPosts = 2'000;
    std::array<int, kThreads> seen{};
    bool inOrder = true;
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                EXPECT_FALSE(loop.isMainThread());
                for (int i = 0; i < kPosts; ++i)
                    loop.post([&, t, i] { inOrder = inOrder && loop.isMainThread() && seen[t]++ == i; });
                loop.quit();
            });
        while (seen != std::array{kPosts, kPosts, kPosts, kPosts}) loop.run();
    }
    EXPECT_TRUE(inOrder);
}

TEST(HeadlessLoop, WakesForATimerAndForAPostWhileItSleeps)
{
    HeadlessLoop loop;
    const double start = loop.now();
    bool posted = false;
    const Timer far = loop.after(3'600, [] { FAIL(); });
    const Timer soon = loop.after(0.02, [&] { EXPECT_GE(loop.now() - start, 0.02); });
    const std::jthread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        loop.post([&] { posted = true; });
    });
    EXPECT_TRUE(loop.runUntil([&] { return posted; }));
}

TEST(HeadlessLoopDeathTest, EndsWhenTheUserAsksItTo)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto sleepUntilStopped = [] {
        catchStopSignals();
        HeadlessLoop loop;
        const std::jthread other([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            kill(getpid(), SIGTERM);
        });
        std::exit(loop.runUntil([] { return false; }) ? 1 : 7);
    };
    EXPECT_EXIT(sleepUntilStopped(), ::testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace tamlo::platform
