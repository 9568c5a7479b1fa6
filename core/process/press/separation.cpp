#include "core/process/press/separation.h"

namespace tamlo {
namespace {

using ReproPrint::Coverage;
using ReproPrint::kBlack;
using ReproPrint::Separation;

/// What a coverage of an ink lets through of channel c.
float through(const Separation& s, std::size_t ink, std::size_t c, float a)
{
    return 1.0f - a * (1.0f - s.rel[ink][c]);
}

/// Rounds of Gauss-Seidel: each colour ink from the channel that it stops, over what the other two let
/// through.
void solveCMY(const Separation& s, const Vec3f& u, Coverage& a, int rounds)
{
    for (int round = 0; round < rounds; ++round)
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t p = c == 0 ? 1 : 0, q = c == 2 ? 1 : 2;
            const float others = through(s, p, c, a[p]) * through(s, q, c, a[q]);
            a[c] = std::clamp((1.0f - u[c] / std::max(others, 1e-6f)) / (1.0f - s.rel[c][c]), 0.0f, 1.0f);
        }
}

float blackAlone(float positive, const Separation& s)
{
    const float rel = (s.rel[kBlack][0] + s.rel[kBlack][1] + s.rel[kBlack][2]) / 3.0f;
    return std::clamp((1.0f - std::clamp(positive, 0.0001f, 1.0f)) / (1.0f - rel), 0.0f, 1.0f);
}

/// Coverages that should print, without black's share of the total ink.
Coverage wanted(const Vec3f& positive, const Separation& s)
{
    if (s.blackOnly) return {0.0f, 0.0f, 0.0f, blackAlone(positive[0], s)};
    Vec3f u{};
    Coverage a{};
    for (std::size_t c = 0; c < 3; ++c) {
        u[c] = std::clamp(positive[c], 0.0001f, 1.0f);
        a[c] = std::clamp((1.0f - u[c]) / (1.0f - s.rel[c][c]), 0.0f, 1.0f);
    }
    solveCMY(s, u, a, s.iters);
    a[kBlack] = std::clamp(s.gcr * std::min({a[0], a[1], a[2]}), 0.0f, 1.0f);
    for (std::size_t c = 0; c < 3; ++c)
        u[c] = std::clamp(u[c] / std::max(through(s, kBlack, c, a[kBlack]), 1e-6f), 0.0001f, 1.0f);
    solveCMY(s, u, a, std::max(s.iters - 1, 2));
    return a;
}

} // namespace

Coverage ReproPrint::separate(const Vec3f& positive, const Separation& s)
{
    Coverage a = wanted(positive, s);
    for (float& share : a) share = dotGainInv(share, s.curve);
    const float room = std::max(s.tac - a[kBlack], 0.0f), colours = a[0] + a[1] + a[2];
    if (!s.blackOnly && colours > room)
        for (std::size_t c = 0; c < 3; ++c) a[c] *= room / std::max(colours, 1e-6f);
    if (s.printed)
        for (float& share : a) share = dotGain(share, s.curve);
    return a;
}

} // namespace tamlo
