// tier_table [--sheets] PHOTO...: how alike the three tiers of a print look, for docs/math/tiers.md. Each
// photograph is printed on six films and two slides from its proxy, from a tier as large as a screen and from
// everything there is, as the develop screen does; each print is reduced to 1,024 pixels and compared with
// the last.
//   without grain: the 95th percentile of the colour difference (CIEDE2000) over all pixels
//   with grain:    its mean over the means of 8 x 8 pixels, since each size has its own grains
// With --sheets: sheets of the press and of the hand without the film's grain, the mean over the means of
// 8 x 8 pixels, since a proxy draws no dots that a file has.
// Status: 0 when no figure is above 1, else 1.
#include "app/preview/render_process.h"
#include "app/preview/source_decode.h"
#include "app/preview/tiers.h"
#include "core/image/resample.h"
#include "core/pipeline/backend.h"
#include "core/profiles/catalogue/profile_store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kComparedLong = 1024, kBlock = 8;
/// Pixels of a large screen's long side.
constexpr double kScreenLong = 3000;
constexpr double kMost = 1.0;

struct Choice {
    const char *film, *paper;
};
constexpr Choice kChoices[] = {{"portra400", "color_ra4"},     {"gold200", "color_ra4"},
                               {"cinestill800t", "color_ra4"}, {"trix400", "bw_neutral"},
                               {"hp5", "bw_fb_warm"},          {"delta3200", "bw_neutral"},
                               {"velvia50", "cibachrome"},     {"provia100f", "projector"}};

constexpr Choice kSheets[] = {{"portra400", "inkjet_plain"},  {"portra400", "inkjet_photo"},
                              {"portra400", "offset_coated"}, {"portra400", "offset_newsprint"},
                              {"portra400", "offset_book"},   {"trix400", "platinum"},
                              {"trix400", "albumen"},         {"trix400", "bromoil"},
                              {"trix400", "carbon"},          {"portra400", "gum_tricolor"}};

/// CIE L*a*b* of display-linear sRGB under D65.
Vec3d labOf(const float* rgb)
{
    const auto f = [](double t) {
        return t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0;
    };
    const double r = std::clamp(rgb[0], 0.0f, 1.0f), g = std::clamp(rgb[1], 0.0f, 1.0f),
                 b = std::clamp(rgb[2], 0.0f, 1.0f);
    const double x = f((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.9504700),
                 y = f(0.2126729 * r + 0.7151522 * g + 0.0721750 * b),
                 z = f((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.0888300);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

/// Sharma, Wu, Dalal, "The CIEDE2000 color-difference formula", 2005.
double ciede2000(const Vec3d& one, const Vec3d& two)
{
    constexpr double kPi = std::numbers::pi, kDegree = kPi / 180.0;
    const auto pow7 = [](double c) {
        return std::sqrt(std::pow(c, 7.0) / (std::pow(c, 7.0) + std::pow(25.0, 7.0)));
    };
    const double meanC = (std::hypot(one[1], one[2]) + std::hypot(two[1], two[2])) / 2.0;
    const double stretch = 1.5 - 0.5 * pow7(meanC);
    const double a1 = one[1] * stretch, a2 = two[1] * stretch;
    const double c1 = std::hypot(a1, one[2]), c2 = std::hypot(a2, two[2]);
    const auto hue = [](double a, double b) {
        const double h = a == 0.0 && b == 0.0 ? 0.0 : std::atan2(b, a);
        return h < 0.0 ? h + 2.0 * kPi : h;
    };
    const double h1 = hue(a1, one[2]), h2 = hue(a2, two[2]);
    double dh = c1 * c2 == 0.0 ? 0.0 : h2 - h1, h = h1 + h2;
    if (dh > kPi) dh -= 2.0 * kPi;
    if (dh < -kPi) dh += 2.0 * kPi;
    if (c1 * c2 != 0.0) {
        if (std::abs(h1 - h2) > kPi) h += h < 2.0 * kPi ? 2.0 * kPi : -2.0 * kPi;
        h /= 2.0;
    }
    const double dL = two[0] - one[0], dC = c2 - c1, dH = 2.0 * std::sqrt(c1 * c2) * std::sin(dh / 2.0);
    const double l = (one[0] + two[0]) / 2.0 - 50.0, c = (c1 + c2) / 2.0;
    const double t = 1.0 - 0.17 * std::cos(h - 30.0 * kDegree) + 0.24 * std::cos(2.0 * h) +
                     0.32 * std::cos(3.0 * h + 6.0 * kDegree) - 0.20 * std::cos(4.0 * h - 63.0 * kDegree);
    const double turn = 30.0 * kDegree * std::exp(-std::pow((h / kDegree - 275.0) / 25.0, 2.0));
    const double sl = 1.0 + 0.015 * l * l / std::sqrt(20.0 + l * l), sc = 1.0 + 0.045 * c,
                 sh = 1.0 + 0.015 * c * t;
    const double lp = dL / sl, cp = dC / sc, hp = dH / sh;
    return std::sqrt(lp * lp + cp * cp + hp * hp - std::sin(2.0 * turn) * 2.0 * pow7(c) * cp * hp);
}

/// Means of blocks; what is left at the edges is left out.
RGBImage blockMeans(const RGBImage& image)
{
    RGBImage out(image.width / kBlock, image.height / kBlock);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x)
            for (std::int64_t c = 0; c < 3; ++c) {
                double sum = 0.0;
                for (std::int64_t i = 0; i < kBlock * kBlock; ++i) {
                    const std::int64_t at = (y * kBlock + i / kBlock) * image.width + x * kBlock + i % kBlock;
                    sum += image.data.data()[at * 3 + c];
                }
                *to++ = static_cast<float>(sum / (kBlock * kBlock));
            }
    return out;
}

/// Pixel by pixel, of two pictures of one size.
std::vector<double> differences(const RGBImage& a, const RGBImage& b)
{
    std::vector<double> out;
    for (std::int64_t i = 0; i < a.pixelCount(); ++i)
        out.push_back(ciede2000(labOf(a.data.data() + i * 3), labOf(b.data.data() + i * 3)));
    return out;
}

double percentile95(std::vector<double> values)
{
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() * 95 / 100);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

double mean(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values) sum += value;
    return sum / static_cast<double>(values.size());
}

/// The inputs of the tiers of a photograph, the largest last.
struct Photo {
    std::string name;
    FrameSource source;
    RGBImage whole;
};

Photo photoOf(const std::filesystem::path& file)
{
    return {file.stem().string(), SourceDecode::proxy(file, WBMode::film),
            SourceDecode::full(file, 0, WBMode::film)};
}

std::array<RGBImage, 3> prints(const Photo& photo, const RenderChoices& choices)
{
    const Size full = photo.source.fullSize();
    const Tiers::Caps caps = Tiers::capsOf(choices.film, choices.paper, choices.options, full);
    const std::int64_t whole = Tiers::fullLong(full, caps, 1.0);
    const std::int64_t screen = Tiers::neededLong(whole, caps, 1.0, kScreenLong);
    const auto print = [&](const RGBImage& source, std::int64_t longPx) {
        RGBImage lit = DisplayLights::restore(source, photo.source.lights, choices.options.srcLights);
        return CPUBackend().process(resized(std::move(lit), longPx), choices);
    };
    std::array<RGBImage, 3> out{print(photo.source.proxy, ProxyFile::kProxyLong), print(photo.whole, screen),
                                print(photo.whole, whole)};
    // All to one size: a short side that rounds the other way would lay the pictures a pixel apart.
    const Size size = resizedSize(out[2].size(), kComparedLong);
    for (RGBImage& tier : out)
        tier = pilResize(std::move(tier), size.width, size.height, Resampling::lanczos);
    return out;
}

RenderChoices choicesFor(const Choice& choice)
{
    ProcessSettings process = ProcessSettings::fresh();
    process.stock = choice.film;
    process.paper = choice.paper;
    process.lens = "modern_clean";
    RenderChoices choices = choicesOf(process, ProfileStore::shared());
    choices.options.seed = 1;
    return choices;
}

/// A line of the table of sheets; whether both its figures hold.
bool compareSheets(const Photo& photo, const Choice& choice)
{
    RenderChoices choices = choicesFor(choice);
    choices.options.grainMult = 0.0;
    choices.options.coat = "none";
    std::array<RGBImage, 3> tiers = prints(photo, choices);
    for (RGBImage& tier : tiers) tier = blockMeans(tier);
    const double proxy = mean(differences(tiers[0], tiers[2]));
    const double screen = mean(differences(tiers[1], tiers[2]));
    std::printf("| %s | %s | %s | %.2f | %.2f |\n", choice.film, choice.paper, photo.name.c_str(), proxy,
                screen);
    std::fflush(stdout);
    return proxy <= kMost && screen <= kMost;
}

/// A line of the table; whether all its figures hold.
bool compare(const Photo& photo, const Choice& choice)
{
    RenderChoices choices = choicesFor(choice);
    std::array<double, 4> figures{};
    for (const bool grain : {false, true}) {
        choices.options.grainMult = grain ? 1.0 : 0.0;
        std::array<RGBImage, 3> tiers = prints(photo, choices);
        if (grain)
            for (RGBImage& tier : tiers) tier = blockMeans(tier);
        for (std::size_t i = 0; i < 2; ++i) {
            const std::vector<double> all = differences(tiers[i], tiers[2]);
            figures[(grain ? 2 : 0) + i] = grain ? mean(all) : percentile95(all);
        }
    }
    std::printf("| %s | %s | %s | %.2f | %.2f | %.2f | %.2f |\n", choice.film, choice.paper,
                photo.name.c_str(), figures[0], figures[1], figures[2], figures[3]);
    std::fflush(stdout);
    return std::ranges::all_of(figures, [](double figure) { return figure <= kMost; });
}

} // namespace
} // namespace tamlo

int main(int argc, char** argv)
{
    using namespace tamlo;
    const bool sheets = argc > 1 && std::string_view(argv[1]) == "--sheets";
    const int first = sheets ? 2 : 1;
    if (argc <= first) {
        std::fprintf(stderr, "usage: tier_table [--sheets] PHOTO...\n");
        return 2;
    }
    try {
        if (sheets)
            std::printf(
                "| film | paper | photograph | proxy, mean | screen, mean |\n|---|---|---|---|---|\n");
        else
            std::printf(
                "| film | paper | photograph | proxy, p95 without grain | screen, p95 without grain | "
                "proxy, mean "
                "with grain | screen, mean with grain |\n|---|---|---|---|---|---|---|\n");
        bool holds = true;
        for (int i = first; i < argc; ++i) {
            const Photo photo = photoOf(argv[i]);
            if (sheets)
                for (const Choice& choice : kSheets) holds = compareSheets(photo, choice) && holds;
            else
                for (const Choice& choice : kChoices) holds = compare(photo, choice) && holds;
        }
        return holds ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tier_table: %s\n", error.what());
        return 2;
    }
}
