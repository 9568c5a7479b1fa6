// A roll on its way out, the program run as a photographer runs it. A batch of twelve beside twelve runs of
// one in the same bench: their CPU as a ratio, and the peak of resident memory beside that of one frame and
// the size of one decoded source. A contact sheet of 500 frames whose tiles stand on the disk: CPU, bytes,
// memory, and whether a second sheet is the same.
#include "bench/unit_e.h"

#include "core/image/resample.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"
#include "tests/support/scratch_folder.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tamlo::bench {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

struct Cost {
    double cpuSeconds = 0, peakMiB = 0;
};

double seconds(const timeval& t)
{
    return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
}

/// A folder with a roll of copies of one photograph, each a file of its own.
class BenchRoll {
public:
    /// width: of the photographs, 3:2.
    BenchRoll(std::size_t frames, std::int64_t width)
    {
        fs::create_directories(folder_ / "photos");
        const RGBImage sample = ImageLoader::loadEncodedAsLinear(TAMLO_SAMPLES "/photos/fig.jpg");
        const fs::path first = folder_ / "photos" / "0.jpg";
        ImageWriter::save(pilResize(sample, width, width * 2 / 3, Resampling::bicubic), first.string(), 92,
                          {});
        for (std::size_t i = 1; i < frames; ++i) {
            const fs::path copy = folder_ / "photos" / (std::to_string(i) + ".jpg");
            fs::copy_file(first, copy);
            std::ofstream(copy, std::ios::app) << i; // else it is the same picture
        }
        run({"project", "new", "roll", "photos"});
        run({"project", "set", "roll", "all", "film=portra400", "paper=color_ra4"});
    }

    /// In the roll's folder, with caches and preferences of its own.
    Cost run(const Words& words) const
    {
        std::vector<char*> arguments{const_cast<char*>(TAMLO_PROGRAM)};
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const std::string user = (folder_ / "user").string(), cache = (folder_ / "cache").string();
        const pid_t child = fork();
        if (child == 0) {
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, 1);
            dup2(null, 2);
            setenv("TAMLO_USER_DIR", user.c_str(), 1);
            setenv("TAMLO_PROXY_DIR", cache.c_str(), 1);
            if (chdir(folder_.path().c_str()) == 0) execv(TAMLO_PROGRAM, arguments.data());
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) != child || status != 0)
            throw std::runtime_error("tamlo failed: " + words[1]);
        return {seconds(usage.ru_utime) + seconds(usage.ru_stime),
                static_cast<double>(usage.ru_maxrss) / 1024.0};
    }
    fs::path file(const std::string& name) const { return folder_ / name; }

private:
    test::ScratchFolder folder_;
};

void batchAgainstSingles(benchmark::State& state)
{
    constexpr std::size_t kFrames = 12;
    const std::int64_t width = state.range(0);
    const BenchRoll roll(kFrames, width);
    for (auto _ : state) {
        const Cost batch =
            roll.run({"project", "export", "roll", "--set", "all", "--to", "batch", "--no-record"});
        Cost singles;
        for (std::size_t i = 1; i <= kFrames; ++i) {
            const Cost one =
                roll.run({"project", "export", "roll", std::to_string(i), "--to", "singles", "--no-record"});
            singles.cpuSeconds += one.cpuSeconds;
            singles.peakMiB = std::max(singles.peakMiB, one.peakMiB);
        }
        constexpr double kBytesPerPixel = 12, kMiB = 1024.0 * 1024.0;
        const double sourceMiB = static_cast<double>(width * (width * 2 / 3)) * kBytesPerPixel / kMiB;
        state.SetIterationTime(batch.cpuSeconds);
        state.counters["cpu_ratio"] = batch.cpuSeconds / singles.cpuSeconds;
        state.counters["peak_MiB"] = batch.peakMiB;
        state.counters["one_frame_MiB"] = singles.peakMiB;
        state.counters["one_source_MiB"] = sourceMiB;
    }
}
BENCHMARK(batchAgainstSingles)->Name("export/batch_of_12")->Arg(3000)->UseManualTime()->Iterations(1);

void sheetOfTiles(benchmark::State& state)
{
    const BenchRoll roll(static_cast<std::size_t>(state.range(0)), 1200);
    const auto bytes = [&](const char* name) {
        std::ifstream file(roll.file(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    roll.run({"project", "sheet", "roll", "--originals", "-o", "first.pdf"}); // makes the tiles
    for (auto _ : state) {
        const Cost cost = roll.run({"project", "sheet", "roll", "--originals", "-o", "second.pdf"});
        const std::string second = bytes("second.pdf");
        state.SetIterationTime(cost.cpuSeconds);
        state.counters["cpu_s"] = cost.cpuSeconds;
        state.counters["peak_MiB"] = cost.peakMiB;
        state.counters["file_MB"] = static_cast<double>(second.size()) / 1e6;
        state.counters["same"] = second == bytes("first.pdf") ? 1 : 0;
    }
}
BENCHMARK(sheetOfTiles)->Name("sheet/tiles")->Arg(500)->UseManualTime()->Iterations(1);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
