#include "core/profiles/options/seed_stream.h"

#include <gtest/gtest.h>

namespace tamlo::Seeds {
namespace {

struct StreamCase {
    std::int64_t seed;
    SeedStream stream;
    std::uint64_t offset;
    std::int64_t rerolls;
    std::uint64_t first;
};

// First outputs worked out apart from this code, in Python's integers.
TEST(SeedStream, DerivesEachStreamFromSeedNameOffsetAndReroll)
{
    const StreamCase cases[] = {
        {20260821, SeedStream::film, 0, 0, 0x2301c3ce5e60aabe},
        {20260821, SeedStream::frame, 0, 0, 0x8baf734a62bf18a5},
        {20260821, SeedStream::print, 0, 0, 0xb2a95dca743e3da2},
        {20260821, SeedStream::table, 0, 0, 0x07dc4bea2e97e465},
        {20260821, SeedStream::develop, 0, 0, 0x5322dbc083d448ed},
        {20260821, SeedStream::film, 25, 0, 0xc2a124ae471a4185},
        {20260821, SeedStream::frame, 0, 1, 0x884598363de0eff2},
        {-7, SeedStream::develop, 27, -3, 0xbdd44b3c50656763},
        {0, SeedStream::film, 0, 0, 0x44e24364a928e565},
    };
    for (const StreamCase& one : cases) {
        RenderOptions options;
        options.seed = one.seed;
        if (one.rerolls != 0)
            options.seedVariants = SeedVariants{{std::string(rawText(one.stream)), one.rerolls}};
        EXPECT_EQ(streamRNG(options, one.stream, one.offset).nextUInt64(), one.first) << rawText(one.stream);
    }
    EXPECT_EQ(growthSeed(RenderOptions()), 0x5e60aabeu);
}

TEST(SeedStream, ARerollTouchesItsOwnStreamOnly)
{
    const RenderOptions plain;
    RenderOptions rolled;
    rolled.seedVariants = SeedVariants{{"frame", 1}, {"film", 0}};
    for (std::size_t i = 0; i < kSeedStreamTexts.size(); ++i) {
        const auto stream = static_cast<SeedStream>(i);
        const bool same = streamRNG(plain, stream).nextUInt64() == streamRNG(rolled, stream).nextUInt64();
        EXPECT_EQ(same, stream != SeedStream::frame) << rawText(stream);
    }
}

} // namespace
} // namespace tamlo::Seeds
