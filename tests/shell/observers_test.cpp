// Who watches the session: told once a turn, and only of what is another value now.
#include "app/shell/history_rows.h"
#include "tests/shell/session.h"

#include <algorithm>
#include <random>

namespace tamlo::test {
namespace {

using Kind = RowChange::Kind;
using IDs = std::vector<FrameID>;

/// What a list on screen does with the changes.
IDs followed(IDs rows, const std::vector<RowChange>& changes)
{
    const auto at = [&](std::size_t i) { return rows.begin() + static_cast<std::ptrdiff_t>(i); };
    for (const RowChange& change : changes) {
        if (change.kind != Kind::insert) {
            EXPECT_EQ(rows.at(change.from), change.id);
            rows.erase(at(change.from));
        }
        if (change.kind != Kind::remove) rows.insert(at(change.to), change.id);
    }
    return rows;
}

TEST(RowChanges, TurnOneListIntoTheOther)
{
    std::mt19937 random(7);
    IDs pool;
    for (int i = 0; i < 40; ++i) pool.push_back(Uuid::random());
    for (int round = 0; round < 300; ++round) {
        const auto some = [&] {
            std::ranges::shuffle(pool, random);
            return IDs(pool.begin(), pool.begin() + static_cast<std::ptrdiff_t>(random() % 41));
        };
        const IDs before = some(), after = some();
        EXPECT_EQ(followed(before, rowChanges(before, after)), after);
    }
    IDs moved = pool;
    std::rotate(moved.begin(), moved.begin() + 1, moved.end());
    EXPECT_EQ(rowChanges(pool, moved).size(), 1u) << "one row moves, not all the others";
    EXPECT_TRUE(rowChanges(pool, pool).empty());
}

class ObserversTest : public SessionTest {
protected:
    Subscription watch(ConcernSet concerns)
    {
        return model_.subscribe(concerns, [this](const ChangeSet& change) { told_.push_back(change); });
    }
    std::vector<ChangeSet> told_;
};

TEST_F(ObserversTest, AreToldOnceATurnAndNeverOfAnEqualValue)
{
    open(12);
    loop_.runPosted();
    const Subscription subscription = watch(ConcernSet::all());
    model_.marks.assign(ids({1, 2}), Mark::selected);
    model_.tell("done");
    model_.selection.step(1);
    EXPECT_TRUE(told_.empty()) << "not within the turn";
    loop_.runPosted();
    ASSERT_EQ(told_.size(), 1u);
    EXPECT_TRUE(told_[0].concerns.has(Concern::roll) && told_[0].concerns.has(Concern::status) &&
                told_[0].concerns.has(Concern::selection) && told_[0].concerns.has(Concern::document));
    EXPECT_FALSE(told_[0].concerns.has(Concern::crop) || told_[0].concerns.has(Concern::tiles));
    EXPECT_TRUE(std::ranges::is_permutation(told_[0].frames, ids({2}))) << "frame 1 bore the mark already";
    model_.tell("done");
    model_.selection.step(1);
    model_.selection.step(-1);
    loop_.runPosted();
    EXPECT_EQ(told_.size(), 1u) << "all is what it was";
}

TEST_F(ObserversTest, FollowTheRowsThroughOrderRemovalAndFilter)
{
    open(50);
    IDs rows = model_.selection.visibleIDs();
    const Subscription subscription = model_.subscribe(
        {Concern::roll}, [&](const ChangeSet& change) { rows = followed(rows, change.rows); });
    const std::function<void()> edits[] = {[&] { model_.ordering.reverseFrames(); },
                                           [&] {
                                               model_.removal.remove(ids({3, 4, 20}), false);
                                           },
                                           [&] { model_.selection.setFilter(GridFilter::hideRejected); },
                                           [&] {
                                               model_.marks.assign(ids({0, 9}), Mark::rejected);
                                           },
                                           [&] { model_.undo(); },
                                           [&] { model_.undoTo(0); },
                                           [&] { open(7); }};
    for (const auto& edit : edits) {
        edit();
        loop_.runPosted();
        EXPECT_EQ(rows, model_.selection.visibleIDs());
    }
}

TEST_F(ObserversTest, HearOnlyOfTheirConcernsAndOnlyWhileTheyLive)
{
    open(3);
    model_.selection.openFrame(roll()[0].id);
    auto crops = std::optional(watch({Concern::crop}));
    model_.tell("a");
    loop_.runPosted();
    EXPECT_TRUE(told_.empty());
    model_.cropping.enterCropMode();
    loop_.runPosted();
    EXPECT_EQ(told_.size(), 1u);
    model_.cropping.change([](CropDraft&) {});
    loop_.runPosted();
    EXPECT_EQ(told_.size(), 1u) << "a gesture that moved nothing";
    model_.cropping.leaveCropMode();
    crops.reset();
    loop_.runPosted();
    EXPECT_EQ(told_.size(), 1u);
}

TEST_F(ObserversTest, TheHistoryTellsWhenAndWhichFrames)
{
    open(4);
    loop_.advance(10);
    model_.marks.assign(ids({0, 2}), Mark::selected);
    loop_.advance(5);
    model_.removal.remove(ids({3}), false);
    model_.undo();
    const auto rows = historyRows(model_);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].frames, (std::vector<std::string>{"01", "03"}));
    EXPECT_EQ(rows[0].date, VirtualLoop::kBegin + 10);
    EXPECT_FALSE(rows[0].isUndone);
    EXPECT_EQ(rows[1].frames, (std::vector<std::string>{"04"}));
    EXPECT_TRUE(rows[1].isUndone);
    model_.undoTo(0);
    EXPECT_TRUE(historyRows(model_)[0].isUndone);
    model_.undoTo(rows[1].stepsLeft);
    EXPECT_FALSE(historyRows(model_)[1].isUndone) << "a row that was undone is gone to by doing it again";
    EXPECT_EQ(roll().size(), 3u);
}

} // namespace
} // namespace tamlo::test
