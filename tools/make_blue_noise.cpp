// Makes the blue-noise table that inkjet drops are laid by: make_blue_noise OUT.base64
//
// Void and cluster (R. Ulichney, "The void-and-cluster method for dither array generation", 1993) on a torus
// of 256 × 256. Points are kept as far from each other as they can be at every share of ink: from an even
// pattern of a tenth, ranks below are given by taking the tightest point away, ranks above by filling the
// largest void. The energy of a point is a Gaussian of 1.9 cells. The table is written as 16-bit
// little-endian ranks in row order, in base64. One fixed start, so the same table at every run.
#include "core/image/random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int kSide = 256;
constexpr int kCells = kSide * kSide;
constexpr double kSigma = 1.9;
constexpr int kReach = 12; // where the Gaussian has fallen to 2e-9

class Pattern {
public:
    Pattern() : set_(kCells, 0), energy_(kCells, 0.0)
    {
        for (int y = -kReach; y <= kReach; ++y)
            for (int x = -kReach; x <= kReach; ++x)
                weights_[index(y)][index(x)] = std::exp(-(x * x + y * y) / (2.0 * kSigma * kSigma));
    }

    bool at(int cell) const { return set_[static_cast<std::size_t>(cell)] != 0; }

    void put(int cell, bool point)
    {
        set_[static_cast<std::size_t>(cell)] = point ? 1 : 0;
        const int cy = cell / kSide, cx = cell % kSide;
        for (int y = -kReach; y <= kReach; ++y)
            for (int x = -kReach; x <= kReach; ++x) {
                const int to = (cy + y + kSide) % kSide * kSide + (cx + x + kSide) % kSide;
                energy_[static_cast<std::size_t>(to)] += (point ? 1.0 : -1.0) * weights_[index(y)][index(x)];
            }
    }

    /// The point of the most energy, or the free cell of the least.
    int tightest() const { return best(true); }
    int largestVoid() const { return best(false); }

private:
    static std::size_t index(int offset) { return static_cast<std::size_t>(offset + kReach); }

    int best(bool points) const
    {
        int found = -1;
        for (int i = 0; i < kCells; ++i) {
            if (at(i) != points) continue;
            const double e = energy_[static_cast<std::size_t>(i)];
            if (found < 0) {
                found = i;
                continue;
            }
            const double most = energy_[static_cast<std::size_t>(found)];
            if (points ? e > most : e < most) found = i;
        }
        return found;
    }

    std::vector<char> set_;
    std::vector<double> energy_;
    std::array<std::array<double, 2 * kReach + 1>, 2 * kReach + 1> weights_{};
};

/// A tenth of the cells, moved from clusters to voids until none would move any more.
Pattern evenStart(int points)
{
    Pattern pattern;
    tamlo::GrainRNG rng(0xB10E);
    for (int placed = 0; placed < points;) {
        const int cell = static_cast<int>(rng.integers(0, kCells));
        if (pattern.at(cell)) continue;
        pattern.put(cell, true);
        ++placed;
    }
    while (true) {
        const int from = pattern.tightest();
        pattern.put(from, false);
        const int to = pattern.largestVoid();
        pattern.put(to, true);
        if (from == to) return pattern;
    }
}

std::vector<std::uint16_t> voidAndCluster()
{
    constexpr int kPoints = kCells / 10;
    std::vector<std::uint16_t> ranks(kCells);
    const Pattern start = evenStart(kPoints);
    Pattern down = start;
    for (int rank = kPoints - 1; rank >= 0; --rank) {
        const int cell = down.tightest();
        down.put(cell, false);
        ranks[static_cast<std::size_t>(cell)] = static_cast<std::uint16_t>(rank);
    }
    Pattern up = start;
    for (int rank = kPoints; rank < kCells; ++rank) {
        const int cell = up.largestVoid();
        up.put(cell, true);
        ranks[static_cast<std::size_t>(cell)] = static_cast<std::uint16_t>(rank);
    }
    return ranks;
}

std::string base64(const std::vector<std::uint16_t>& ranks)
{
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<std::uint8_t> bytes;
    for (const std::uint16_t rank : ranks) {
        bytes.push_back(static_cast<std::uint8_t>(rank & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(rank >> 8));
    }
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t n = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < n ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= n ? kDigits[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "use: make_blue_noise OUT.base64\n";
        return 2;
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << base64(voidAndCluster());
    if (!out.flush()) {
        std::cerr << "make_blue_noise: can't write " << argv[1] << "\n";
        return 1;
    }
    return 0;
}
