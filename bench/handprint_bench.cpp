// Speed of the handmade prints from a developed negative to the coloured sheet, on every paper of the hand at
// 24 megapixels and at 2,048 pixels, a print of 30 cm. CPU time in E of the picture's samples
// (bench/unit_e.h).
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/process/gum/gum_layers.h"
#include "core/profiles/catalogue/profile_store.h"

#include <ctime>

namespace tamlo {
namespace {

constexpr const char* kPapers[] = {"salt",
                                   "albumen",
                                   "cyanotype",
                                   "cyanotype_ware",
                                   "vandyke",
                                   "platinum",
                                   "palladium",
                                   "platinum_palladium",
                                   "gum",
                                   "carbon",
                                   "collotype",
                                   "bromoil",
                                   "bromoil_transfer",
                                   "gum_tricolor"};

double cpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

/// A print of 30 cm, with a brushed coat or without.
void handPrint(benchmark::State& state)
{
    const char* id = kPapers[state.range(1)];
    const PaperProfile paper = ProfileStore::shared().paper(id);
    const std::int64_t width = state.range(0), height = width * 2 / 3;
    RenderOptions options;
    options.printPxUm = 300'000.0 / static_cast<double>(width);
    options.coat = state.range(2) ? "brush" : "none";
    state.SetLabel(std::string(id) + (state.range(2) ? ", coated" : ""));
    const RGBImage db = bench::benchPicture(width, height);
    const AltPrint::Job job{paper, options, nullptr};
    const bool layers = paper.layers && !paper.layers->empty();
    double best = 1e9;
    for (auto _ : state) {
        Plane density = layers ? Plane() : db.plane(1);
        const double start = cpuSeconds();
        const RGBImage print = layers ? Film::renderAltLayers({{}, 0.0f, db}, job)
                                      : AltPrint::printOneCoat(std::move(density), 0.5f, job);
        benchmark::DoNotOptimize(print.data.data());
        best = std::min(best, cpuSeconds() - start);
        state.SetIterationTime(cpuSeconds() - start);
    }
    state.counters["E_cpu"] = best / bench::secondsOfE(width * height * 3);
}

BENCHMARK(handPrint)
    ->ArgNames({"w", "paper", "coat"})
    ->ArgsProduct({{6000, 2048}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}, {0}})
    ->ArgsProduct({{6000, 2048}, {5, 13}, {1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
