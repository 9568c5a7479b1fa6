// Speed of the emulsion's effects and of classic grain on interleaved RGB, in E (bench/unit_e.h), at the
// pitch of a 35 mm master, 5.5 µm a pixel.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/film/emulsion/adjacency.h"
#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/film/grain/classic_grain.h"

namespace tamlo {
namespace {

constexpr double kPxUm = 5.5;

void soften(benchmark::State& state)
{
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    FilmProfile film;
    film.mtf = FilmMTF{static_cast<double>(state.range(2))};
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Film::emulsionSoften(std::move(image), film, kPxUm); });
}

void halation(benchmark::State& state)
{
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    HalationParams params;
    params.strength = 1e-4;
    params.radiusUm = static_cast<double>(state.range(2));
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Film::applyHalation(std::move(image), params, kPxUm, 1.0); });
}

void adjacency(benchmark::State& state)
{
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    DevelopedFilm film;
    film.adjacency = 0.001;
    film.adjacencyUm = static_cast<double>(state.range(2));
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Film::applyAdjacency(std::move(image), film, kPxUm); });
}

void classicGrain(benchmark::State& state)
{
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    GrainParams gprof;
    gprof.sizeUm = static_cast<double>(state.range(2));
    gprof.amount = 2e-5; // above the least that is drawn: the picture stays itself over the rounds
    bench::inE(state, image.pixelCount() * 3, [&] {
        image = Grain::addColor(std::move(image), {}, {2, 2, 2}, {.gprof = gprof, .pxUm = kPxUm, .seed = 1});
    });
}

void classicSigma48Color(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(Grain::classicSigma48Color({}, {}, {2, 2, 2}));
}

BENCHMARK(soften)
    ->ArgNames({"w", "h", "f50"})
    ->Args({6000, 4000, 50})
    ->Args({6000, 4000, 20})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(halation)
    ->ArgNames({"w", "h", "um"})
    ->Args({6000, 4000, 300})
    ->Args({6000, 4000, 40})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(adjacency)
    ->ArgNames({"w", "h", "um"})
    ->Args({6000, 4000, 40})
    ->Args({6000, 4000, 150})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(classicGrain)
    ->ArgNames({"w", "h", "um"})
    ->Args({6000, 4000, 4})
    ->Args({6000, 4000, 14})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(classicSigma48Color)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
