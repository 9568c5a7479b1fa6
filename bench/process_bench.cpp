// The program as a photographer runs it: JPEG to JPEG as a process of its own, for a colour, a silver and a
// slide film with full grain. Wall and CPU time in E of the picture's samples, the peak of resident memory,
// and each stage's share of the wall time in percent.
#include "bench/unit_e.h"

#include "core/image/resample.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tamlo::bench {
namespace {

namespace fs = std::filesystem;

/// A sample photograph enlarged to 3:2 of that many megapixels.
fs::path photograph(const fs::path& folder, std::int64_t megapixels)
{
    const fs::path path = folder / (std::to_string(megapixels) + "mp.jpg");
    const std::int64_t height = std::llround(std::sqrt(static_cast<double>(megapixels) * 1e6 / 1.5));
    const RGBImage sample = ImageLoader::loadEncodedAsLinear(TAMLO_SAMPLES "/photos/fig.jpg");
    ImageWriter::save(pilResize(sample, height * 3 / 2, height, Resampling::bicubic), path.string(), 92, {});
    return path;
}

struct Material {
    const char* film;
    const char* paper;
    const char* grainMult;
};
constexpr Material kMaterials[] = {{"portra400", "color_ra4", "1"},
                                   {"trix400", "bw_neutral", "1"},
                                   {"velvia50", "scan_film", "1"},
                                   {"portra400", "color_ra4", "0"}};

struct Cost {
    double peakMiB = 0.0;
    double cpuSeconds = 0.0;
};

double seconds(const timeval& t)
{
    return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
}

/// Runs the program, its stage table into `table`.
Cost develop(const fs::path& in, const fs::path& out, const fs::path& table, const Material& material)
{
    const std::string grain = std::string("grain_mult=") + material.grainMult;
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        const int errors = open(table.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(null, 1);
        dup2(errors, 2);
        setenv("TAMLO_PROFILE", "1", 1);
        execl(TAMLO_PROGRAM, TAMLO_PROGRAM, "develop", in.c_str(), "-o", out.c_str(), "--film", material.film,
              "--paper", material.paper, "--set", grain.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || status != 0) throw std::runtime_error("tamlo failed");
    return {static_cast<double>(usage.ru_maxrss) / 1024.0, seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

/// Adds each stage's percent of the wall time from the program's table.
void addShares(benchmark::State& state, const fs::path& table)
{
    std::ifstream lines(table);
    constexpr std::size_t kNameWidth = 24; // the label's column; figures follow
    for (std::string line; std::getline(lines, line);) {
        const std::size_t percent = line.find('%');
        if (percent == std::string::npos) continue;
        const std::size_t from = line.rfind(' ', percent) + 1;
        std::string name = line.substr(0, kNameWidth);
        name.erase(name.find_last_not_of(' ') + 1);
        state.counters["% " + name] = std::stod(line.substr(from, percent - from));
    }
}

void jpegToJpeg(benchmark::State& state)
{
    const Material& material = kMaterials[state.range(1)];
    state.SetLabel(std::string(material.film) + ", grain " + material.grainMult);
    const fs::path folder = fs::temp_directory_path() / ("tamlo-bench-" + std::to_string(getpid()));
    fs::create_directories(folder);
    const fs::path in = photograph(folder, state.range(0));
    const std::int64_t samples = state.range(0) * 3'000'000;
    Cost worst;
    inE(state, samples, [&] {
        const Cost cost = develop(in, folder / "out.jpg", folder / "stages.txt", material);
        worst = {std::max(worst.peakMiB, cost.peakMiB), std::max(worst.cpuSeconds, cost.cpuSeconds)};
    });
    state.counters["peak_MiB"] = worst.peakMiB;
    state.counters["E_cpu"] = worst.cpuSeconds / secondsOfE(samples);
    addShares(state, folder / "stages.txt");
    fs::remove_all(folder);
}

BENCHMARK(jpegToJpeg)
    ->ArgsProduct({{2, 24, 60}, {0, 1, 2, 3}})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
