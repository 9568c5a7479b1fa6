// Speed of instant film from the light at the emulsion to the finished picture, and of the card round it, on
// every kind of film at 24 megapixels and at 2,048 pixels. CPU time in E of 24 megapixels, for the small
// picture too, without the system's work on fresh pages (bench/unit_e.h, bench/warm_pages.cpp).
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/film/emulsion/development.h"
#include "core/process/card/instant_card.h"
#include "core/process/instant/instant_film.h"
#include "core/profiles/catalogue/profile_store.h"

#include <cmath>

namespace tamlo {
namespace {

constexpr const char* kFilms[] = {"polaroid_sx70", "fp100c", "fp100c_silk", "polaroid_bw_600", "fp3000b"};
constexpr std::int64_t kSamples = 72'000'000;

/// A picture of the card's own shape, of so many pixels.
RGBImage pictureFor(const FilmProfile& film, double pixels)
{
    const double aspect = film.frame->style == "peel" ? 95.0 / 73.0 : 1.0;
    const auto width = static_cast<std::int64_t>(std::sqrt(pixels / aspect));
    return bench::benchPicture(width, static_cast<std::int64_t>(static_cast<double>(width) * aspect));
}

template <typename Work>
void measured(benchmark::State& state, const FilmProfile& film, const Work& work)
{
    const double pixels = state.range(0) == 24 ? 24e6 : 2048.0 * 1365.0;
    const RGBImage picture = pictureFor(film, pixels);
    double total = 0.0;
    for (auto _ : state) {
        RGBImage light = picture;
        light.mutableData(); // its own copy, outside the clock
        const double start = bench::cpuSeconds();
        {
            const RGBImage out = work(std::move(light));
            benchmark::DoNotOptimize(out.data.data());
        }
        const double took = bench::cpuSeconds() - start;
        total += took;
        state.SetIterationTime(took);
    }
    state.counters["E_cpu"] = total / static_cast<double>(state.iterations()) / bench::secondsOfE(kSamples);
}

void instantFilm(benchmark::State& state)
{
    const char* id = kFilms[state.range(1)];
    state.SetLabel(id);
    const RenderOptions options;
    const DevelopedFilm film = applyFilmStateAndDevelopment(ProfileStore::shared().film(id), options);
    measured(state, film.film, [&](RGBImage light) {
        const double pxUm = 79'000.0 / static_cast<double>(light.longSide());
        return film.film.isMonoInstant() ? Film::renderInstantMono(std::move(light), film, options, pxUm)
                                         : Film::renderInstant(std::move(light), film, options, pxUm);
    });
}

void instantCard(benchmark::State& state)
{
    const char* id = kFilms[state.range(1)];
    state.SetLabel(id);
    const FilmProfile film = ProfileStore::shared().film(id);
    measured(state, film, [&](RGBImage picture) {
        GrainRNG rng(1);
        return Pipeline::addInstantFrame(std::move(picture), *film.frame, {}, rng);
    });
}

BENCHMARK(instantFilm)
    ->ArgNames({"MP", "film"})
    ->ArgsProduct({{24, 3}, {0, 1, 2, 3, 4}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(instantCard)
    ->ArgNames({"MP", "film"})
    ->ArgsProduct({{24, 3}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
