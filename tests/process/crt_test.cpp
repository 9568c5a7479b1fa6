// The photographed tube: the band of its signal, the beam, the mask against its formula, the camera's
// exposure, and one brightness whether the structure is drawn or not.
#include "core/process/crt/crt_screen.h"

#include "core/image/bicubic_read.h"
#include "core/image/gaussian.h"
#include "core/process/crt/face_passes.h"
#include "core/process/crt/scan_lines.h"
#include "core/process/crt/shadow_mask.h"
#include "core/process/crt/tube_tone.h"
#include "core/process/crt/video_signal.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tamlo::test {
namespace {

using namespace CRTScreen;

constexpr const char* kTubes[] = {"crt_tv", "crt_trinitron", "crt_mono"};

PaperProfile paperOf(const char* name)
{
    return ProfileStore::shared().paper(name);
}

TEST(VideoSignal, TheBandIsAGaussianAtAnyReach)
{
    constexpr std::int64_t kWidth = 700;
    Plane line(kWidth, 1);
    float* values = line.mutableData();
    const RGBImage noise = noisePicture(kWidth, 1, 11, 1.0f);
    for (std::int64_t x = 0; x < kWidth; ++x) values[x] = noise.pixel(x, 0)[0] + (x > 350 ? 1.0f : 0.0f);
    for (const double sigma : {0.2, 0.31, 1.0, 3.99, 12.9, 16.1, 64.6, 340.0}) {
        Plane fast = line;
        RowBlur::Scratch scratch;
        RowBlur(sigma, kWidth).apply(fast.mutableData(), scratch);
        const Plane slow =
            sigma < 0.3 ? line : gaussianFilter1D(line, sigma, FilterAxis::x, EdgeMode::nearest, 6.0);
        for (std::int64_t x = 0; x < kWidth; ++x)
            ASSERT_NEAR(fast.at(x, 0), slow.at(x, 0), sigma < 16.0 ? 2e-4 : 2e-5) << sigma << " " << x;
    }
    // The last cycle of a band keeps 0.3 of its swing.
    constexpr double kCycles = 40.0;
    Plane wave(4000, 1);
    for (std::int64_t x = 0; x < 4000; ++x)
        wave.mutableData()[x] =
            static_cast<float>(std::cos(2.0 * std::numbers::pi * kCycles * static_cast<double>(x) / 4000.0));
    RowBlur::Scratch scratch;
    RowBlur(bandSigmaPx(4000, kCycles), 4000).apply(wave.mutableData(), scratch);
    EXPECT_NEAR(wave.at(2000, 0), 0.300, 0.004);

    const VideoMatrix& back = yuvInv();
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            double sum = 0.0;
            for (std::size_t k = 0; k < 3; ++k) sum += back[i][k] * yuv[k][j];
            EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-12);
        }
}

TEST(ScanLines, ARowOfSpotsIsAsBrightAsTheFrameUpToItsEdge)
{
    for (const double linePx : {4.0, 7.3, 20.0})
        for (const double spot : {0.28, 0.33, 0.45}) {
            const auto height = static_cast<std::int64_t>(linePx * 20.0);
            const DrawnLines lines(lineCount(height, linePx), linePx, spot);
            double sum = 0.0, low = 1e9, high = 0.0, edge = 0.0;
            for (std::int64_t y = 0; y < height; ++y) {
                double light = 0.0;
                for (const float w : lines.row(y).weights) light += static_cast<double>(w);
                sum += light / static_cast<double>(height);
                low = std::min(low, light);
                high = std::max(high, light);
                if (static_cast<double>(y) < linePx - 1.0) edge += light;
            }
            EXPECT_NEAR(sum, 1.0, 0.01) << linePx << " " << spot;
            EXPECT_GT(edge / (linePx - 1.0), 0.85) << "the first line is as bright as any";
            if (linePx < 20.0) continue; // a coarse pixel flattens the ripple
            const double ripple = 2.0 * std::exp(-2.0 * std::pow(std::numbers::pi * spot, 2.0));
            EXPECT_NEAR(0.5 * (high - low), ripple, 0.05 * ripple + 0.002) << spot;
        }
}

/// The lattice by the letter of its definition, one pixel at a time.
std::array<double, 3> dotAt(double maskPx, double dot, double phaseX, double phaseY, std::int64_t x,
                            std::int64_t y)
{
    const double a1x = maskPx / std::numbers::sqrt3, a2y = a1x * std::numbers::sqrt3 * 0.5;
    const double u = (maskPx * phaseX + static_cast<double>(x) + 0.5) / a1x;
    const double v = (maskPx * phaseY + static_cast<double>(y) + 0.5) / a2y;
    const auto vf = static_cast<std::int64_t>(std::floor(v)), xi = static_cast<std::int64_t>(std::floor(u));
    const double fv = v - std::floor(v), xf = u - std::floor(u);
    const double b = xf - fv / 2.0 - (vf % 2 != 0 ? 0.5 : 0.0);
    const auto fb = static_cast<std::int64_t>(std::floor(b));
    const std::int64_t uf = xi - (vf >> 1) + fb;
    const double fu = b - std::floor(b);
    double nearest = 1e30;
    std::int64_t colour = 0;
    for (int du = 0; du < 2; ++du)
        for (int dv = 0; dv < 2; ++dv) {
            const double ex = (fu - du) * a1x + 0.5 * (fv - dv) * a1x, ey = (fv - dv) * a2y;
            const double dist = std::sqrt(ex * ex + ey * ey);
            if (dist >= nearest) continue;
            nearest = dist;
            colour = ((uf + du - vf - dv) % 3 + 3) % 3;
        }
    std::array<double, 3> out{};
    out[static_cast<std::size_t>(colour)] = std::clamp((a1x * 0.5 * dot - nearest) / 0.6 + 0.5, 0.0, 1.0);
    return out;
}

TEST(ShadowMask, LightsOneDotAtAPlaceAndKeepsTheMean)
{
    Tube tube;
    tube.dot = 0.74;
    tube.depth = 0.65;
    const Size size{301, 200};
    const double maskPx = 10.3, phaseX = 0.37, phaseY = 0.81;
    const ShadowMask mask(tube, maskPx, size, {phaseX, phaseY});
    ShadowMask::Scratch scratch;
    std::array<double, 3> sums{};
    std::int64_t off = 0;
    for (std::int64_t y = 0; y < size.height; ++y) {
        std::array<std::vector<float>, 3> row;
        for (auto& r : row) r.assign(static_cast<std::size_t>(size.width), 1.0f);
        mask.apply({row[0].data(), row[1].data(), row[2].data()}, y, 1.0f, scratch);
        for (std::int64_t x = 0; x < size.width; ++x) {
            const auto cover = dotAt(maskPx, tube.dot, phaseX, phaseY, x, y);
            for (std::size_t c = 0; c < 3; ++c) {
                const double got = row[c][static_cast<std::size_t>(x)];
                sums[c] += got;
                const double want = 1.0 - tube.depth + tube.depth * cover[c] / mask.means()[c];
                off += std::abs(got - want) > 1e-3 ? 1 : 0;
            }
        }
    }
    EXPECT_LT(off, 20) << "but for pixels that two dots are equally near to";
    for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_NEAR(sums[c] / static_cast<double>(size.width * size.height), 1.0, 1e-6);
        EXPECT_NEAR(mask.means()[c], std::numbers::pi / (6.0 * std::numbers::sqrt3) * 0.74 * 0.74, 0.004);
    }
    tube.mask = MaskKind::grille;
    tube.dot = 0.8;
    const ShadowMask grille(tube, 97.0, {9700, 4}, {0.2, 0.0});
    for (const double mean : grille.means()) EXPECT_NEAR(mean, 0.8 / 3.0, 0.002);
}

TEST(ShadowMask, WiresStandAtThirds)
{
    Tube tube;
    tube.wires = 2;
    tube.wireMm = 0.05;
    tube.wireDepth = 0.3;
    const auto wires = damperWires(3000, tube, 43.0, 1.0);
    ASSERT_EQ(wires.size(), 3000u);
    EXPECT_NEAR(wires[1000], 0.7, 0.1);
    EXPECT_NEAR(wires[2000], 0.7, 0.1);
    EXPECT_EQ(wires[1500], 1.0f);
    for (const float v : damperWires(3000, tube, 43.0, 4.0)) EXPECT_EQ(v, 1.0f);
    EXPECT_TRUE(damperWires(3000, tube, 120.0, 1.0).empty()) << "a wire under half a pixel";
    tube.wires = 10'000;
    EXPECT_EQ(damperWires(300, tube, 1e-6, 1.0).size(), 300u);
}

TEST(Face, KeepsTheCornersAndEnlargesTheMiddle)
{
    // Ramps tell where each pixel was read; noise, that the vector code reads like the plain one.
    const Size size{601, 401};
    const RGBImage noise = noisePicture(size.width, size.height, 3, 1.0f);
    std::vector<Plane> planes{Plane(size.width, size.height), Plane(size.width, size.height), noise.plane(0)};
    for (std::int64_t y = 0; y < size.height; ++y)
        for (std::int64_t x = 0; x < size.width; ++x) {
            planes[0].mutableData()[y * size.width + x] = static_cast<float>(x);
            planes[1].mutableData()[y * size.width + x] = static_cast<float>(y);
        }
    for (const bool cylinder : {false, true})
        for (const float k : {0.012f, 0.3f, 1e3f}) {
            const float edge = cylinder ? 1.0f : 2.0f, per = 1.0f / (1.0f + k * edge);
            std::array<std::vector<float>, 3> got;
            const auto read = [&](std::int64_t y) {
                for (auto& row : got) row.assign(static_cast<std::size_t>(size.width), 0.0f);
                const float yn =
                    (static_cast<float>(y) + 0.5f) / static_cast<float>(size.height) * 2.0f - 1.0f;
                face_row({got[0].data(), got[1].data(), got[2].data()},
                         {planes, yn, cylinder ? 0.0f : yn * yn, k, per});
            };
            read(0);
            EXPECT_NEAR(got[0][0], 0.0, 0.002 * 601.0 + 0.5) << k;
            EXPECT_NEAR(got[0][600], 600.0, 0.002 * 601.0 + 0.5) << k;
            EXPECT_NEAR(got[1][0], 0.0, 0.002 * 401.0 + 0.5) << k;
            read(200);
            EXPECT_NEAR(got[0][301] - got[0][299], 2.0f * per, 2e-4) << k << " " << cylinder;
            for (const std::int64_t y : {0, 37, 200, 399}) {
                read(y);
                if (k > 1.0f) continue; // the places jump by more than what a rounding may move
                for (std::size_t x = 4; x < 597; ++x)
                    if (got[0][x] > 4.0f && got[0][x] < 596.0f && got[1][x] > 4.0f && got[1][x] < 396.0f) {
                        ASSERT_NEAR(got[2][x], readBicubic(planes[2], got[0][x], got[1][x]), 2e-3) << x;
                    }
            }
        }
}

TEST(TubeTone, TheCameraBringsAWhiteScreenToItsMean)
{
    const double gains[] = {1.5819, 1.1986, 1.0};
    for (std::size_t i = 0; i < 3; ++i) {
        const PaperProfile paper = paperOf(kTubes[i]);
        const double gain = cameraGain(paper, {});
        const auto s = samples(tileStructure(tube(paper, {}), screen(paper, {}), {}, 96.0), 4096);
        double mean = 0.0;
        for (const float v : s)
            mean += std::min(gain * static_cast<double>(v), 1.0) / static_cast<double>(s.size());
        if (gain > 1.0) {
            EXPECT_NEAR(mean, *paper.crt->whiteMean, 1e-6) << kTubes[i];
        }
        EXPECT_NEAR(gain, gains[i], 5e-4) << kTubes[i];
        const auto lut = toneLUT(paper, {true, true}, {});
        for (std::size_t k = 1; k < lut.size(); ++k) ASSERT_GE(lut[k], lut[k - 1]);
        EXPECT_EQ(lut.size(), 1025u);
    }
}

/// Mean light of a grey field, of a narrow upright piece of the screen: lines by height, dots by pxUm.
double greyField(const char* name, double grey, double longPx)
{
    const PaperProfile paper = paperOf(name);
    RenderOptions options;
    const double pxUm = screen(paper, options).longCm * 10'000.0 / longPx;
    const Size size{longPx > 1000.0 ? 300 : 200, static_cast<std::int64_t>(longPx * 2.0 / 3.0)};
    PaperProfile flat = paper;
    flat.crt->vignette = 0.0;
    const float v = static_cast<float>(grey);
    const RGBImage out = apply(RGBImage(size.width, size.height, Vec3f{v, v, v}), size, flat, options, pxUm);
    const Vec3f means = out.channelMeans();
    const Vec3f colour = tube(paper, options).colour;
    return (means[0] / colour[0] + means[1] / colour[1]) / 2.0;
}

TEST(TubeTone, DrawnAndUndrawnAgree)
{
    for (const char* name : kTubes)
        for (const double grey : {0.05, 0.18, 0.5, 1.0}) {
            const double small = greyField(name, grey, 300.0);
            for (const double longPx : {900.0, 3600.0, 5400.0, 7200.0})
                EXPECT_NEAR(greyField(name, grey, longPx) / small, 1.0, 0.02)
                    << name << " " << grey << " " << longPx;
        }
}

TEST(CrtScreen, NonsenseIsBounded)
{
    const auto tried = [](const auto& change, Size size) {
        PaperProfile paper = paperOf("crt_tv");
        change(*paper.crt);
        RenderOptions options;
        const RGBImage out =
            apply(RGBImage(size.width, size.height, Vec3f{0.2f, 0.4f, 0.1f}), size, paper, options,
                  screen(paper, options).longCm * 10'000.0 / static_cast<double>(size.width));
        EXPECT_EQ(out.size(), size);
        for (const float v : out.data) ASSERT_TRUE(v >= 0.0f && v <= 1.0f);
    };
    const Size usual{120, 80};
    constexpr OptNumber CRTParams::*kFields[] = {
        &CRTParams::pitchMm,   &CRTParams::dot,       &CRTParams::depth,       &CRTParams::spot,
        &CRTParams::wireMm,    &CRTParams::lumaLines, &CRTParams::chromaLines, &CRTParams::bloom,
        &CRTParams::bloomMm,   &CRTParams::vignette,  &CRTParams::convergeMm,  &CRTParams::cornerR,
        &CRTParams::bulge,     &CRTParams::overscan,  &CRTParams::cameraPsfUm, &CRTParams::whiteMean,
        &CRTParams::nominalIn, &CRTParams::whiteK,    &CRTParams::adapt};
    constexpr double kValues[] = {0.0, 1e-9, 1e300, -1e300};
    std::size_t turn = 0;
    for (OptNumber CRTParams::*field : kFields)
        tried([&](CRTParams& cfg) { cfg.*field = kValues[turn++ % 4]; }, usual);
    for (const double v : kValues)
        tried(
            [&](CRTParams& cfg) {
                for (OptNumber CRTParams::*field : kFields) cfg.*field = v;
            },
            usual);
    for (const std::int64_t v :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{10'000}, std::int64_t{1'000'000'000}}) {
        tried([&](CRTParams& cfg) { cfg.lines = v; }, usual);
        tried([&](CRTParams& cfg) { cfg.wires = v; }, usual);
    }
    for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 3000}, Size{3000, 1}})
        tried([](CRTParams&) {}, size);
}

} // namespace
} // namespace tamlo::test
