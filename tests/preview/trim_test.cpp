#include "app/preview/proxy_trim.h"

#include <gtest/gtest.h>

namespace tamlo::test {
namespace {

using namespace ProxyTrim;
using Strings = std::vector<std::string>;

constexpr std::int64_t kGB = std::int64_t{1} << 30;
constexpr double kNow = 1'800'000'000, kDay = 86'400;

class TrimPlan : public testing::Test {
protected:
    TrimPlan()
    {
        input_.now = kNow;
        input_.sessionStart = kNow - 100;
    }
    void project(const std::string& id, std::optional<double> closed, bool settled, double opened = 0)
    {
        ProjectRegistry::Entry entry;
        entry.id = id;
        entry.lastOpened = opened;
        entry.lastClosed = closed;
        entry.settledAtClose = settled;
        input_.projects[id] = entry;
        input_.live.insert(id);
    }
    void file(const std::string& key, const Strings& projects, double lastUsed = 10, std::int64_t bytes = kGB)
    {
        input_.entries[key] = {key, 2048, bytes, 0, lastUsed, projects};
    }
    Temperature of(const std::string& key) { return temperature(input_.entries.at(key), input_); }

    Input input_;
};

TEST_F(TrimPlan, Temperatures)
{
    project("hasty", kNow - kDay, false);
    project("old", kNow - 40 * kDay, true);
    project("edge", kNow - 30 * kDay, true);
    project("crashed", kNow - 90 * kDay, true, kNow - 2 * kDay);
    project("gone", kNow - kDay, false);
    project("open", std::nullopt, false);
    input_.live.erase("gone");
    input_.open = "open";
    const std::pair<Strings, Temperature> cases[] = {{{"hasty", "old"}, Temperature::warm},
                                                     {{"old"}, Temperature::cold},
                                                     {{"edge"}, Temperature::warm},
                                                     {{"crashed"}, Temperature::warm},
                                                     {{"gone"}, Temperature::orphan},
                                                     {{"unheard of"}, Temperature::orphan},
                                                     {{}, Temperature::orphan},
                                                     {{"old", "open"}, Temperature::working}};
    for (const auto& [projects, expected] : cases) {
        file("x", projects);
        EXPECT_EQ(of("x"), expected) << testing::PrintToString(projects);
    }
    file("x", {}, kNow - 50);
    EXPECT_EQ(of("x"), Temperature::working) << "used in this session";
    input_.dead.insert("x");
    EXPECT_EQ(of("x"), Temperature::dead);
    file("y", {});
    input_.judgesOrphans = false;
    EXPECT_EQ(of("y"), Temperature::cold) << "its owners are not known, which is not the same as none";
}

TEST_F(TrimPlan, TheCapIsSoftAndTheDiskIsNot)
{
    for (int i = 0; i < 17; ++i) file("f" + std::to_string(10 + i), {}, i);
    input_.capBytes = 17 * kGB;
    EXPECT_EQ(plan(input_), Strings()) << "nothing above the cap, nothing to do";
    input_.capBytes = 16 * kGB;
    EXPECT_EQ(plan(input_), (Strings{"f10", "f11", "f12"})) << "17 of 16: down to 14.4";
    input_.capBytes.reset();
    for (int i = 17; i < 20; ++i) file("f" + std::to_string(10 + i), {}, i);
    input_.freeBytes = 3 * kGB;
    EXPECT_EQ(plan(input_).size(), 7u) << "20 used, 3 free: 13 stay";
    input_.open = "open";
    for (auto& [key, entry] : input_.entries) entry.projects = {"open"};
    input_.freeBytes = 0;
    input_.dead = {"f15"};
    EXPECT_EQ(plan(input_), Strings{"f15"}) << "the open project stays whole";
}

TEST_F(TrimPlan, TheOrderOfGoing)
{
    project("early", kNow - 80 * kDay, true);
    project("late", kNow - 60 * kDay, true);
    project("hasty", kNow - 50 * kDay, false);
    project("never", std::nullopt, false);
    file("w", {"hasty"}, 1);
    file("n", {"never"}, 1);
    file("e2", {"early"}, 8);
    file("e1", {"early"}, 9);
    file("both", {"early", "late"}, 2);
    file("l", {"late"}, 3);
    file("o2", {}, 7);
    file("o1", {"deleted"}, 7);
    file("a tile of nobody", {}, 9);
    input_.capBytes = 0;
    EXPECT_EQ(plan(input_), (Strings{"o1", "o2", "a tile of nobody", "e2", "e1", "both", "l", "w", "n"}));
    EXPECT_EQ(keysOf(input_, {Temperature::warm}), (Strings{"n", "w"}));
}

} // namespace
} // namespace tamlo::test
