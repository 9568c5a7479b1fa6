#include "app/project/deferred_commit.h"
#include "app/project/history.h"
#include "tests/support/rolls.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <random>

namespace tamlo::test {
namespace {

/// A session in little: a project that is changed by steps.
class HistoryTest : public testing::Test {
protected:
    void set(double grade, std::optional<std::string> key = {}, std::function<void()> action = {},
             std::function<void()> inverse = {})
    {
        history_.record({"step", std::move(key), std::move(action), std::move(inverse)}, project_, now_);
        ProcessSettings process;
        process.options.grade = grade;
        project_.frames.edit(0).process = process;
    }
    double grade() const
    {
        return project_.frames[0].process ? project_.frames[0].process->options.grade : -1;
    }
    bool apply(std::optional<History::Step> step)
    {
        if (!step) return false;
        if (step->action) step->action();
        project_ = step->snapshot;
        return true;
    }
    bool undo() { return apply(history_.undo(project_, now_)); }
    bool redo() { return apply(history_.redo(project_, now_)); }

    History history_;
    Project project_ = [] {
        Project project = rollOf(3);
        return project;
    }();
    double now_ = 100;
};

TEST_F(HistoryTest, ADragIsOneStepUnlessItPauses)
{
    struct Case {
        double pause;
        const char* secondKey;
        bool ended, withAction;
        std::size_t steps;
    };
    const Case cases[] = {{0.3, "grade", false, false, 1}, {0.3, "grade", true, false, 2},
                          {0.4, "grade", false, false, 2}, {0.3, "push", false, false, 2},
                          {0.3, "grade", false, true, 2},  {0.3, nullptr, false, false, 2}};
    for (const Case& c : cases) {
        history_.clear();
        set(1, "grade");
        now_ += c.pause;
        if (c.ended) history_.endGesture();
        set(2, c.secondKey ? std::optional<std::string>(c.secondKey) : std::nullopt,
            c.withAction ? [] {} : std::function<void()>());
        EXPECT_EQ(history_.undoStack().size(), c.steps) << c.pause << c.ended << c.withAction;
    }
    history_.clear();
    set(0, "other");
    for (int i = 1; i <= 10; ++i, now_ += 0.39) set(i, "grade");
    EXPECT_EQ(history_.undoStack().size(), 2u) << "the limit runs from the last change";
    undo();
    EXPECT_EQ(grade(), 0) << "to before the whole gesture";
    set(11, "grade");
    EXPECT_EQ(history_.undoStack().size(), 2u) << "an undo closes the gesture";
    EXPECT_TRUE(history_.redoStack().empty());
}

TEST_F(HistoryTest, TwoHundredStepsAreKept)
{
    for (int i = 0; i < 201; ++i) set(i);
    EXPECT_EQ(history_.undoStack().size(), 200u);
    int undone = 0;
    while (undo()) ++undone;
    EXPECT_EQ(undone, 200);
    EXPECT_EQ(grade(), 0) << "the oldest step is gone";
    while (redo()) --undone;
    EXPECT_EQ(undone, 0);
    EXPECT_EQ(grade(), 200);
}

TEST_F(HistoryTest, ClosuresRunInTurn)
{
    std::string ran;
    set(
        1, {}, [&] { ran += 'a'; }, [&] { ran += 'i'; });
    for (int i = 0; i < 2; ++i) undo(), redo();
    EXPECT_EQ(ran, "aiai");
}

TEST(DeferredCommits, OnlyTheLastOneThatStillWaitsRuns)
{
    VirtualLoop loop;
    std::string ran;
    std::optional<DeferredCommit> commit(loop);
    commit->schedule(0.35, [&] { ran += 'a'; });
    loop.advance(0.3);
    commit->schedule(0.35, [&] { ran += 'b'; });
    loop.advance(0.3);
    EXPECT_EQ(ran, "");
    loop.advance(0.06);
    EXPECT_EQ(ran, "b");
    commit->schedule(0.1, [&] { ran += 'c'; });
    commit->cancel();
    loop.advance(1);
    commit->schedule(0.1, [&] { commit->schedule(0.1, [&] { ran += 'd'; }); });
    loop.advance(1);
    EXPECT_EQ(ran, "bd") << "an action may schedule the next one";
    commit->schedule(0.1, [&] { ran += 'e'; });
    commit.reset();
    loop.advance(1);
    EXPECT_EQ(ran, "bd");
}

TEST_F(HistoryTest, AnyWalkComesBackToItsPlaces)
{
    std::mt19937 random(7);
    std::vector<Project> line{project_}; // every state on the way, and where we stand in it
    std::size_t at = 0;
    for (int i = 0; i < 3000; ++i, now_ += 1) {
        const auto choice = random() % 4;
        if (choice == 0) {
            ASSERT_EQ(undo(), at > (line.size() > 201 ? line.size() - 201 : 0)) << i;
            if (at > 0) --at;
        } else if (choice == 1) {
            ASSERT_EQ(redo(), at + 1 < line.size()) << i;
            if (at + 1 < line.size()) ++at;
        } else {
            set(i);
            line.resize(at + 1);
            line.push_back(project_);
            ++at;
            if (line.size() > 201) line.erase(line.begin()), --at;
        }
        ASSERT_EQ(project_, line[at]) << i;
    }
}

} // namespace
} // namespace tamlo::test
