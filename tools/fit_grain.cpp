// Fits the data-sheet grain of films: a profile whose grain block carries "rms_granularity" (the published
// diffuse RMS granularity × 1000 through 48 µm at net density 1.0; the program never reads it) gets the
// "amount_rms" with which classic grain measures just that.
//   fit_grain FOLDER [--write]
// FOLDER holds film profiles. Prints film, size, target, amount_rms as it is, what it measures, as it should
// be. With --write that one number is replaced in the file and every other byte kept.
// Status: 0, 1 when a file can't be used, 2 for a wrong command line.
#include "core/profiles/formats/profile_json.h"
#include "core/sensitometry/sensitometry.h"
#include "platform/atomic_file.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using namespace tamlo;

std::string readText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

double measured(const FilmProfile& film)
{
    RenderOptions options;
    options.grainRms = true;
    options.grainEngine = GrainEngine::classic;
    const auto granularity = Sensitometry::measure(film, nullptr, options).granularity;
    return granularity ? granularity->rms[1] : 0.0;
}

void fit(const fs::path& path, bool write)
{
    const std::string text = readText(path);
    const nlohmann::json grain = nlohmann::json::parse(text).value("grain", nlohmann::json::object());
    if (!grain.contains("rms_granularity") || !grain.contains("amount_rms")) return;
    const double target = grain.at("rms_granularity"), was = grain.at("amount_rms");
    FilmProfile film = ProfileJSON::decode<FilmProfile>(text);
    if (film.isInstant() || film.isTricolor()) return;
    film.grain->amountRms = 0.05; // classic grain is linear in it
    const double at = measured(film);
    if (at <= 0.0) return;
    char number[32];
    std::snprintf(number, sizeof number, "%.4f", 0.05 * target / at);
    std::printf("%-24s size %5.1f  target %5.1f  amount_rms %.4f -> %s\n", path.stem().c_str(),
                film.grain->sizeUm.value_or(5.0), target, was, number);
    if (!write) return;
    const std::regex place(R"re(("amount_rms"\s*:\s*)[-+0-9.eE]+)re");
    const std::string fitted = std::regex_replace(text, place, std::string("$01") + number);
    platform::AtomicFile file(path.string());
    file.write({reinterpret_cast<const std::uint8_t*>(fitted.data()), fitted.size()});
    file.commit();
}

} // namespace

int main(int argc, char** argv)
{
    const bool write = argc == 3 && std::string(argv[2]) == "--write";
    if (argc != 2 && !write) {
        std::cerr << "usage: fit_grain FOLDER [--write]" << std::endl;
        return 2;
    }
    try {
        std::set<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(argv[1]))
            if (entry.path().extension() == ".json") paths.insert(entry.path());
        for (const fs::path& path : paths) fit(path, write);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "fit_grain: " << error.what() << std::endl;
        return 1;
    }
}
