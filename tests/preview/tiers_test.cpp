#include "app/preview/frame_store.h"
#include "app/preview/tiers.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"

#include <gtest/gtest.h>

namespace tamlo::test {
namespace {

TEST(Tiers, TheWorkingTier)
{
    constexpr auto none = std::nullopt;
    struct Case {
        std::int64_t needed, full;
        std::optional<std::int64_t> cap;
        std::int64_t tier;
    };
    for (const Case& c :
         {Case{1500, 6000, none, 2048}, Case{4500, 6000, none, 6000},
          Case{3000, 6000, 2500, 2304}, // grain above its cap can't be averaged
          Case{1500, 1800, none, 1800}, Case{3000, 1800, none, 1800}, Case{3000, 1800, 300, 1800},
          Case{1500, 2500, none, 2048}, // the proxy is enough
          Case{3000, 3000, 2400, 3000}, // the master, which is due anyway
          Case{3000, 9000, 100, 2048}, Case{3000, 0, none, 3000}, Case{-5, 0, none, 0},
          Case{2049, 9000, none, 2304}, Case{3072, 9000, 9000, 3072}, Case{1'000'000'000, 9000, none, 9000}})
        EXPECT_EQ(Tiers::workingTier(c.needed, c.full, c.cap), c.tier)
            << c.needed << " of " << c.full << " cap " << c.cap.value_or(-1);
}

TEST(Tiers, ACropAsksForMoreOfTheSource)
{
    const Size source{6000, 4000};
    EXPECT_EQ(Tiers::cropDecodeFactor(std::nullopt, source), 1.0);
    const double half = Tiers::cropDecodeFactor(Crop{0.25, 0.25, 0.5, 0.5, 0}, source);
    EXPECT_DOUBLE_EQ(half, 2.0);
    EXPECT_EQ(Tiers::scaled(3273, half), 6546);
    Tiers::Caps caps;
    caps.master = 2500;
    EXPECT_EQ(Tiers::fullLong(source, caps, 1), 2500);
    EXPECT_EQ(Tiers::fullLong(source, caps, half), 5000);
    EXPECT_EQ(Tiers::neededLong(6000, {}, half, 1200), 2560);
    caps.scan = 1300;
    EXPECT_EQ(Tiers::neededLong(6000, caps, half, 4000), 2816) << "no more than the scanner resolves";
    caps.grain = 1100;
    EXPECT_EQ(Tiers::neededLong(6000, caps, half, 4000), 2048);
}

TEST(Tiers, TheCapsAreThoseOfTheFilm)
{
    const ProfileStore store;
    RenderOptions options;
    const auto film = store.film("portra400");
    const auto caps = Tiers::capsOf(film, store.paper("color_ra4"), options, {6000, 4000});
    EXPECT_EQ(caps.master, 6545) << "36 mm at 5.5 micrometres";
    EXPECT_EQ(caps.scan, 0);
    ASSERT_TRUE(caps.grain);
    EXPECT_GT(*caps.grain, 64);
    options.masterCap = false;
    options.grainMult = 0;
    const auto free = Tiers::capsOf(film, store.paper("color_ra4"), options, {6000, 4000});
    EXPECT_EQ(free.master, 0);
    EXPECT_FALSE(free.grain);
}

TEST(Tiers, TheBadge)
{
    Loc::setOverride(Loc::Lang::en);
    const auto letter = [](std::int64_t shown, std::int64_t full, std::int64_t cap, bool fine) {
        return Tiers::badge(shown, full, cap, fine, false).letter;
    };
    EXPECT_EQ(letter(0, 6000, 0, false), "");
    EXPECT_EQ(letter(2048, 6000, 0, false), "P");
    EXPECT_EQ(letter(2560, 6000, 0, true), "S");
    EXPECT_EQ(letter(6000, 6000, 0, true), "F");
    EXPECT_EQ(letter(3273, 6000, 3273, true), "F");
    EXPECT_EQ(letter(1800, 1800, 6545, false), "F") << "a small photograph has no more to show";
    EXPECT_EQ(Tiers::badge(2560, 6000, 0, true, true).help, "screen 2560 px · the master is being computed");
    EXPECT_EQ(Tiers::badge(2048, 6000, 0, false, true).help, "preview 2048 px on the way");
    Loc::setOverride(std::nullopt);
}

TEST(Tiers, TheArcKnowsHowLongItTook)
{
    DetailEstimates arc;
    const FrameID a = Uuid::random(), b = Uuid::random();
    EXPECT_EQ(arc.estimate(a, DetailTier::master, 6000), 2.0);
    arc.note(a, DetailTier::master, 6000, 3.5);
    arc.note(a, DetailTier::master, 6000, 0.01);
    arc.note(a, DetailTier::master, 6000, 200);
    EXPECT_EQ(arc.estimate(a, DetailTier::master, 5000), 3.5) << "this frame's own time first";
    EXPECT_EQ(arc.estimate(b, DetailTier::master, 6000), 3.5);
    EXPECT_EQ(arc.estimate(b, DetailTier::working, 6000), 2.0);
}

TEST(Tiers, MemoryDecidesHowMuchIsKept)
{
    constexpr std::int64_t gb = std::int64_t{1} << 30;
    EXPECT_EQ(FrameStore::sourceCapBytes(16 * gb), gb);
    EXPECT_EQ(FrameStore::sourceCapBytes(8 * gb), 768 * gb / 1024);
    EXPECT_EQ(FrameStore::sourceCapBytes(128 * gb), 6 * gb);
    EXPECT_EQ(FrameStore::loadConcurrency(8 * gb), 2u);
    EXPECT_EQ(FrameStore::loadConcurrency(16 * gb), 3u);
    EXPECT_EQ(FrameStore::loadConcurrency(128 * gb), 4u);
}

} // namespace
} // namespace tamlo::test
