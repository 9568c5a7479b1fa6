// Separation and the tables of the presses: known coverages, what the inks multiply back to, dot gain, the
// threshold of the screen, the blue noise and the bands of an inkjet.
#include "core/process/press/separation_passes.h"

#include "core/process/press/am_screen.h"
#include "core/process/press/banding.h"
#include "core/process/press/blue_noise.h"
#include "core/process/press/press_plan.h"
#include "core/profiles/options/seed_stream.h"
#include "tests/process/press_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

namespace tamlo::test {
namespace {

using namespace ReproPrint;

Separation separationOf(const char* paper, bool mono = false)
{
    const PaperProfile p = paperNamed(paper);
    return p.offset ? planOffset(p, {}, 50.0, 1, mono).separation
                    : planInkjet(p, {}, 50.0, {8, 8}).separation;
}

/// What four continuous inks leave of the paper.
Vec3d overprint(const Separation& s, const Coverage& a)
{
    Vec3d light{1.0, 1.0, 1.0};
    for (std::size_t ink = 0; ink < kInkCount; ++ink)
        for (std::size_t c = 0; c < 3; ++c) light[c] *= 1.0 - a[ink] * (1.0 - s.rel[ink][c]);
    return light;
}

TEST(Separation, GivesGreyItsInks)
{
    struct Case {
        const char* paper;
        Coverage inks;
    };
    for (const Case& c : std::initializer_list<Case>{{"offset_newsprint", {0.521f, 0.406f, 0.399f, 0.699f}},
                                                     {"offset_coated", {0.639f, 0.445f, 0.434f, 0.425f}},
                                                     {"offset_book", {0.681f, 0.470f, 0.460f, 0.342f}},
                                                     {"inkjet_plain", {0.614f, 0.497f, 0.524f, 0.498f}},
                                                     {"inkjet_photo", {0.709f, 0.486f, 0.478f, 0.283f}}}) {
        Separation s = separationOf(c.paper);
        s.printed = false;
        const Coverage a = separate({0.18f, 0.18f, 0.18f}, s);
        for (std::size_t ink = 0; ink < kInkCount; ++ink) EXPECT_NEAR(a[ink], c.inks[ink], 0.001) << c.paper;
    }
}

// The inks over each other are the picture again, as far as the paper can print it; white takes no ink.
TEST(Separation, PrintsWhatIsAsked)
{
    for (const char* paper :
         {"offset_newsprint", "offset_coated", "offset_book", "inkjet_photo", "inkjet_plain"}) {
        Separation s = separationOf(paper);
        s.printed = true;
        const float darkest = std::string_view(paper) == "offset_newsprint" ? 0.08f : 0.05f;
        for (float v = darkest; v <= 1.0f; v += 0.01f) {
            const Vec3d light = overprint(s, separate({v, v, v}, s));
            for (const double channel : light) EXPECT_NEAR(channel, v, 0.002) << paper;
        }
        const Coverage white = separate({1.0f, 1.0f, 1.0f}, s);
        EXPECT_EQ(std::accumulate(white.begin(), white.end(), 0.0f), 0.0f) << paper;
    }
}

TEST(Separation, HoldsTheTotalInk)
{
    Lcg random(3);
    const char* papers[] = {"offset_newsprint", "offset_coated", "offset_book"};
    const float limits[] = {2.4f, 3.2f, 3.4f};
    for (std::size_t p = 0; p < 3; ++p) {
        Separation s = separationOf(papers[p]);
        s.printed = false;
        for (int i = 0; i < 20'000; ++i) {
            const Coverage a = separate({random.next(), random.next(), random.next()}, s);
            ASSERT_LE(a[0] + a[1] + a[2] + a[3], limits[p] + 1e-5f);
        }
        const Coverage black = separate({0.0f, 0.0f, 0.0f}, s);
        EXPECT_NEAR(black[0] + black[1] + black[2] + black[3], limits[p], 1e-5f);
    }
}

TEST(Separation, VectorsAreTheScalarForm)
{
    Lcg random(9);
    for (const bool mono : {false, true})
        for (const std::int64_t width : {1, 7, 15, 16, 17, 31, 33, 64, 131}) {
            std::vector<float> pixels(static_cast<std::size_t>(width) * 3);
            for (float& v : pixels) v = random.next() * 1.6f - 0.2f; // below black and above white as well
            const Separation s = separationOf("offset_newsprint", mono);
            std::vector<float> rows(static_cast<std::size_t>(width) * 4, -1.0f);
            CoverageRow to{};
            for (std::size_t ink = 0; ink < 4; ++ink)
                to[ink] = rows.data() + static_cast<std::int64_t>(ink) * width;
            repro_separate(pixels.data(), to, width, s);
            for (std::int64_t x = 0; x < width; ++x) {
                const float* v = pixels.data() + x * 3;
                const Coverage a = separate({v[0], v[1], v[2]}, s);
                for (std::size_t ink = mono ? kBlack : 0; ink < 4; ++ink)
                    ASSERT_NEAR(to[ink][x], a[ink], 5e-6) << width << " " << x << " " << ink;
            }
        }
}

TEST(DotGain, IsTakenBack)
{
    for (const GainCurve curve : {GainCurve{0.16f, 0.85f}, GainCurve{0.25f, 0.85f}, GainCurve{0.1f, 0.0f},
                                  GainCurve{1e-5f, 0.5f}, GainCurve{0.0f, 0.85f}})
        for (float a = 0.0f; a <= 1.0f; a += 0.01f)
            EXPECT_NEAR(dotGain(dotGainInv(a, curve), curve), a, 2e-6) << curve.gain << " " << a;
    EXPECT_NEAR(dotGain(0.5f, {0.16f, 0.0f}), 0.66f, 1e-6); // the parabola's height is the gain at a half
}

// The heights of a screen's hill, thresholded by the table, are uniform.
TEST(AMScreen, ThresholdIsUniform)
{
    const std::vector<float>& cdf = amCDF();
    ASSERT_EQ(cdf.size(), 4097u);
    EXPECT_EQ(cdf.front(), 0.0f);
    EXPECT_EQ(cdf.back(), 1.0f);
    std::vector<double> levels;
    constexpr int kPoints = 700; // no divisor of the table's steps
    for (int i = 0; i < kPoints; ++i)
        for (int j = 0; j < kPoints; ++j) {
            const auto wave = [](int k) { return std::cos(2.0 * std::numbers::pi * (k + 0.3) / kPoints); };
            const double at = (wave(i) + wave(j) + 2.0) * 1024.0;
            const auto n = std::min<std::size_t>(static_cast<std::size_t>(at), 4095);
            levels.push_back(cdf[n] + (at - static_cast<double>(n)) * (cdf[n + 1] - cdf[n]));
        }
    std::ranges::sort(levels);
    for (int percent = 5; percent <= 95; ++percent)
        EXPECT_NEAR(levels[levels.size() * static_cast<std::size_t>(percent) / 100], percent / 100.0, 0.006);
}

/// Power of a 256 × 256 table at spatial frequency (u, v) / 256, row by row first.
double meanPower(const std::vector<float>& table, double low, double high)
{
    constexpr int n = 256;
    using Complex = std::complex<double>;
    std::vector<Complex> turn(n);
    for (int k = 0; k < n; ++k)
        turn[static_cast<std::size_t>(k)] = std::polar(1.0, -2.0 * std::numbers::pi * k / n);
    const auto at = [](int x, int y) { return static_cast<std::size_t>(y * n + x); };
    double sum = 0.0;
    int count = 0;
    std::vector<Complex> rows(n * n);
    for (int y = 0; y < n; ++y)
        for (int u = 0; u < n / 2; u += 3)
            for (int x = 0; x < n; ++x)
                rows[at(u, y)] +=
                    static_cast<double>(table[at(x, y)]) * turn[static_cast<std::size_t>(u * x % n)];
    for (int u = 0; u < n / 2; u += 3)
        for (int v = 0; v < n / 2; v += 3) {
            const double f = std::hypot(u, v) / n;
            if (f == 0.0 || f < low || f >= high) continue;
            Complex value{};
            for (int y = 0; y < n; ++y) value += rows[at(u, y)] * turn[static_cast<std::size_t>(v * y % n)];
            sum += std::norm(value);
            ++count;
        }
    return sum / count;
}

TEST(BlueNoise, IsAPermutationWithoutLowFrequencies)
{
    const BlueNoise& noise = blueNoise();
    ASSERT_EQ(noise.thresholds.size(), 65'536u);
    EXPECT_EQ(BundledData::blueNoise256().size(), 174'764u);
    std::vector<float> sorted = noise.thresholds;
    std::ranges::sort(sorted);
    for (std::size_t i = 0; i < sorted.size(); ++i)
        ASSERT_EQ(sorted[i], (static_cast<float>(i) + 0.5f) / 65'536.0f);
    EXPECT_LT(meanPower(noise.thresholds, 0.0, 0.1), 0.001 * meanPower(noise.thresholds, 0.3, 1.0));
}

TEST(Banding, RollsWithItsKnobAndMovesNothingElse)
{
    const InkjetParams plain = *paperNamed("inkjet_plain").inkjet;
    const auto bandOf = [&](double amount, std::uint64_t& next) {
        GrainRNG rng(77);
        std::vector<float> band = banding(4000, 50.0, plain, rng, amount);
        next = rng.nextUInt64();
        return band;
    };
    std::uint64_t afterOff = 0, afterOn = 0;
    for (const float factor : bandOf(0.0, afterOff)) ASSERT_EQ(factor, 1.0f);
    const std::vector<float> band = bandOf(1.0, afterOn);
    EXPECT_EQ(afterOff, afterOn);

    double sum = 0.0, squares = 0.0, low = 1.0, high = 1.0;
    int lines = 0;
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        GrainRNG rng(seed);
        for (const float v : banding(4000, 50.0, plain, rng, 1.0)) {
            sum += v;
            squares += static_cast<double>(v) * v;
            low = std::min<double>(low, v);
            high = std::max<double>(high, v);
            ++lines;
        }
    }
    EXPECT_NEAR(std::sqrt(squares / lines - sum / lines * sum / lines), 0.023, 0.003);
    EXPECT_NEAR(low, 0.86, 0.03);
    EXPECT_NEAR(high, 1.15, 0.03);
    // A profile beyond any press still gives a band.
    InkjetParams absurd;
    absurd.swathMm = absurd.passVar = absurd.dropUm = absurd.nozzleMm = 1e300;
    GrainRNG rng(1);
    for (const float v : banding(300, 1e-9, absurd, rng, 2.0)) ASSERT_TRUE(v >= 0.0f && v < 1e7f);
}

} // namespace
} // namespace tamlo::test
