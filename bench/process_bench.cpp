// The program as a photographer runs it: JPEG to JPEG as a process of its own, wall time in E of the
// picture's samples and the peak of resident memory.
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

/// Runs the program and returns its peak of resident memory in MiB.
double develop(const fs::path& in, const fs::path& out)
{
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        dup2(null, 2);
        execl(TAMLO_PROGRAM, TAMLO_PROGRAM, "develop", in.c_str(), "-o", out.c_str(), "--set", "grain_mult=0",
              static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || status != 0) throw std::runtime_error("tamlo failed");
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void jpegToJpeg(benchmark::State& state)
{
    const fs::path folder = fs::temp_directory_path() / ("tamlo-bench-" + std::to_string(getpid()));
    fs::create_directories(folder);
    const fs::path in = photograph(folder, state.range(0));
    double peak = 0.0;
    inE(state, state.range(0) * 3'000'000, [&] { peak = std::max(peak, develop(in, folder / "out.jpg")); });
    state.counters["peak_MiB"] = peak;
    fs::remove_all(folder);
}

BENCHMARK(jpegToJpeg)
    ->Arg(2)
    ->Arg(24)
    ->Arg(60)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
