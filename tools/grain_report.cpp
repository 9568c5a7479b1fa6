// grain_report PHOTO FOLDER: what grain measures and how it looks, for docs/math/grain.md. Writes to FOLDER
//   granularity.csv  sigma through 48 µm against net density, growth and classic grain
//   spectrum.csv     power along a row against frequency, growth on both paths and classic grain
//   crops.jpg        a piece of PHOTO at 100 % on three films, printed straight from the negative
// tools/plot_grain.py turns the tables into plots.
#include "core/film/grain/classic_grain.h"
#include "core/film/grain/growth_grain.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"
#include "core/profiles/catalogue/profile_store.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

namespace tamlo {
namespace {

constexpr const char* kFilms[] = {"portra400", "trix400", "velvia50"};
constexpr std::uint32_t kSeed = 1;

enum class Engine { full, aggregate, classic };
constexpr std::pair<Engine, const char*> kEngines[] = {
    {Engine::full, "full"}, {Engine::aggregate, "aggregate"}, {Engine::classic, "classic"}};

/// A film's grain and the limits of its layers; a silver film has its one layer three times.
struct Emulsion {
    bool silver;
    GrainParams grain;
    Vec3d dmins, dmaxs;
};

Emulsion emulsionOf(const char* name)
{
    const FilmProfile film = ProfileStore::shared().film(name);
    Emulsion emulsion{film.isBW(), film.grain.value_or(GrainParams{}), {}, {}};
    for (std::size_t c = 0; c < 3; ++c) {
        const NegativeLayer& layer = film.isBW() ? film.negative.value()
                                     : c == 0    ? film.layers.value().r
                                     : c == 1    ? film.layers.value().g
                                                 : film.layers.value().b;
        emulsion.dmins[c] = layer.dmin;
        emulsion.dmaxs[c] = layer.dmax;
    }
    return emulsion;
}

/// Absolute density with grain; silver works on the first channel and fills all three.
RGBImage grained(const Emulsion& film, RGBImage density, double pxUm, Engine engine)
{
    if (engine == Engine::classic) {
        const Grain::ClassicGrain classic{film.grain, pxUm, 1.0, 1.0, kSeed};
        if (!film.silver) return Grain::addColor(std::move(density), film.dmins, film.dmaxs, classic);
        const Plane plane = Grain::addBW(density.plane(0), film.dmins[0], film.dmaxs[0], classic);
        return {plane, plane, plane};
    }
    Grain::GrowthFrame frame;
    frame.grain = film.grain;
    frame.formatLongUm = pxUm * static_cast<double>(density.longSide());
    frame.seed = kSeed;
    frame.zone = engine == Engine::full ? Grain::GrowthZone::full : Grain::GrowthZone::aggregate;
    if (!film.silver) return Grain::growthColor(std::move(density), film.dmins, film.dmaxs, frame);
    const Plane plane = Grain::growthBW(density.plane(0), film.dmins[0], film.dmaxs[0], frame);
    return {plane, plane, plane};
}

RGBImage flat(const Emulsion& film, std::int64_t side, double net)
{
    Vec3f fill;
    for (std::size_t c = 0; c < 3; ++c) fill[c] = static_cast<float>(film.dmins[c] + net);
    return {side, side, fill};
}

void writeGranularity(const std::string& path)
{
    constexpr double kPxUm = 6.0;
    std::ofstream out(path);
    out << "film,engine,net,red,green,blue\n";
    for (const char* name : kFilms) {
        const Emulsion film = emulsionOf(name);
        for (const auto& [engine, label] : kEngines)
            for (int step = 1; step <= 20; ++step) {
                const double net = step / 10.0;
                const RGBImage image = grained(film, flat(film, 500, net), kPxUm, engine);
                out << name << ',' << label << ',' << net;
                for (int c = 0; c < 3; ++c) out << ',' << Grain::disc48Std(image.plane(c), kPxUm);
                out << '\n';
            }
    }
}

/// Power density along the rows, in density² × mm, at frequencies f / (n × pitch).
std::vector<double> rowPower(const Plane& plane, double pxUm)
{
    const auto n = static_cast<std::size_t>(plane.width);
    std::vector<double> cosine(n), power(n / 2, 0.0);
    for (std::size_t i = 0; i < n; ++i)
        cosine[i] = std::cos(2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n));
    const double mean = plane.mean();
    for (std::int64_t y = 0; y < plane.height; ++y)
        for (std::size_t f = 1; f < n / 2; ++f) {
            double re = 0.0, im = 0.0;
            for (std::size_t x = 0; x < n; ++x) {
                const double v = static_cast<double>(plane.row(y)[x]) - mean;
                re += v * cosine[x * f % n];
                im += v * cosine[(x * f + n / 4) % n];
            }
            power[f] += (re * re + im * im) * pxUm * 1e-3 / static_cast<double>(plane.width * plane.height);
        }
    return power;
}

void writeSpectrum(const std::string& path)
{
    constexpr std::int64_t kSide = 512;
    std::ofstream out(path);
    out << "film,engine,pitch_um,cycles_per_mm,power\n";
    const auto curve = [&](const char* name, Engine engine, const char* label, double pxUm) {
        const Emulsion film = emulsionOf(name);
        const Plane plane = grained(film, flat(film, kSide, 1.0), pxUm, engine).plane(1);
        const std::vector<double> power = rowPower(plane, pxUm);
        constexpr std::size_t kBin = 4; // neighbours averaged, so that the curve can be read
        for (std::size_t f = 1; f + kBin <= power.size(); f += kBin) {
            double sum = 0.0;
            for (std::size_t i = 0; i < kBin; ++i) sum += power[f + i];
            const double frequency =
                (static_cast<double>(f) + (kBin - 1) / 2.0) / (static_cast<double>(kSide) * pxUm * 1e-3);
            out << name << ',' << label << ',' << pxUm << ',' << frequency << ',' << sum / kBin << '\n';
        }
    };
    for (const char* name : kFilms) {
        for (const double pxUm : {2.0, 5.5, 17.6}) curve(name, Engine::full, "full", pxUm);
        curve(name, Engine::aggregate, "aggregate", 17.6);
        curve(name, Engine::classic, "classic", 5.5);
    }
}

/// The photograph at net densities round 0.9 with a gamma of 0.65, and back to light after the grain.
constexpr double kGamma = 0.65, kAnchor = 0.9;

RGBImage crop(const RGBImage& photo, std::int64_t width, std::int64_t height)
{
    RGBImage out(width, height);
    float* p = out.mutableData();
    const std::int64_t x0 = (photo.width - width) / 2, y0 = (photo.height - height) / 2;
    for (std::int64_t y = 0; y < height; ++y)
        std::copy_n(photo.row(y + y0) + x0 * 3, width * 3, p + y * width * 3);
    return out;
}

RGBImage printed(const Emulsion& film, const RGBImage& light, double pxUm)
{
    RGBImage density = light;
    float* p = density.mutableData();
    for (std::int64_t i = 0; i < density.pixelCount(); ++i) {
        const float luma = 0.2126f * p[i * 3] + 0.7152f * p[i * 3 + 1] + 0.0722f * p[i * 3 + 2];
        for (std::size_t c = 0; c < 3; ++c) {
            float& v = p[i * 3 + static_cast<std::int64_t>(c)];
            const double exposure = std::log10(std::max(film.silver ? luma : v, 1e-4f) / 0.18);
            v = static_cast<float>(film.dmins[c] + std::max(kAnchor + kGamma * exposure, 0.0));
        }
    }
    density = grained(film, std::move(density), pxUm, Engine::full);
    p = density.mutableData();
    for (std::int64_t i = 0; i < density.pixelCount() * 3; ++i) {
        const double net = static_cast<double>(p[i]) - film.dmins[static_cast<std::size_t>(i % 3)];
        p[i] = static_cast<float>(std::clamp(0.18 * std::pow(10.0, (net - kAnchor) / kGamma), 0.0, 1.0));
    }
    return density;
}

void writeCrops(const std::string& photo, const std::string& path)
{
    constexpr std::int64_t kGap = 8;
    const RGBImage source = ImageLoader::loadEncodedAsLinear(photo);
    const std::int64_t width = std::min<std::int64_t>(source.width, 320),
                       height = std::min<std::int64_t>(source.height, 360);
    const RGBImage piece = crop(source, width, height);
    RGBImage sheet(3 * width + 2 * kGap, height, {1.0f, 1.0f, 1.0f});
    float* p = sheet.mutableData();
    for (std::int64_t i = 0; i < 3; ++i) {
        const RGBImage view = printed(emulsionOf(kFilms[i]), piece, 5.5);
        for (std::int64_t y = 0; y < height; ++y)
            std::copy_n(view.row(y), width * 3, p + (y * sheet.width + i * (width + kGap)) * 3);
    }
    ImageWriter::save(sheet, path, 90, std::nullopt);
}

} // namespace
} // namespace tamlo

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: grain_report PHOTO FOLDER\n");
        return 1;
    }
    try {
        const std::string folder = std::string(argv[2]) + "/";
        tamlo::writeCrops(argv[1], folder + "crops.jpg");
        tamlo::writeGranularity(folder + "granularity.csv");
        tamlo::writeSpectrum(folder + "spectrum.csv");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "grain_report: %s\n", error.what());
        return 1;
    }
    return 0;
}
