// The random streams of a frame. Every stage that draws a few values takes its own generator from the
// frame's seed, the stream's name and its re-roll, so that rolling one thing leaves the others alone.
#pragma once

#include "core/image/random.h"
#include "core/profiles/options/render_options.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tamlo::Seeds {

/// The index of a stream is its place here.
enum class SeedStream { film, frame, print, table, develop };

inline constexpr std::array<std::string_view, 5> kSeedStreamTexts{"film", "frame", "print", "table",
                                                                  "develop"};

/// Raw text of a stream, its key in the option `seed_variants`.
constexpr std::string_view rawText(SeedStream stream)
{
    return kSeedStreamTexts[static_cast<std::size_t>(stream)];
}

/// A stream's generator. A stage that needs several takes a small offset for each.
GrainRNG streamRNG(const RenderOptions& options, SeedStream stream, std::uint64_t offset = 0);

/// The 32-bit seed of position-hashed grain.
std::uint32_t growthSeed(const RenderOptions& options);

} // namespace tamlo::Seeds
