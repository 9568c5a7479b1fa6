#include "core/profiles/options/seed_stream.h"

namespace tamlo::Seeds {

namespace {

// Odd constants that spread re-rolls and streams over the 64 bits before they are mixed.
constexpr std::uint64_t kRerollStep = 0x27220A95;
constexpr std::uint64_t kStreamStep = 0x2545F491;

std::uint64_t rerolls(const RenderOptions& options, SeedStream stream)
{
    if (!options.seedVariants) return 0;
    const auto found = options.seedVariants->find(std::string(rawText(stream)));
    return found == options.seedVariants->end() ? 0 : static_cast<std::uint64_t>(found->second);
}

} // namespace

GrainRNG streamRNG(const RenderOptions& options, SeedStream stream, std::uint64_t offset)
{
    const auto index = static_cast<std::uint64_t>(stream);
    const std::uint64_t base =
        static_cast<std::uint64_t>(options.seed) * kGoldenStep + (index + 1) * kStreamStep;
    // The finaliser of SplitMix64 with the re-roll and the offset added between its rounds, and a second
    // shift of 32.
    std::uint64_t z =
        rerolls(options, stream) * kRerollStep + offset + (base ^ (base >> 29)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 32)) * 0x94D049BB133111EB;
    return GrainRNG(z ^ (z >> 31));
}

std::uint32_t growthSeed(const RenderOptions& options)
{
    return static_cast<std::uint32_t>(streamRNG(options, SeedStream::film).nextUInt64());
}

} // namespace tamlo::Seeds
