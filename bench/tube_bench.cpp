// Tubes, three plates and rebates at 24 megapixels and at a view's size, in E of 24 megapixels throughout, so
// that a view's figure can be set beside a file's.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/film/print/black_and_white.h"
#include "core/process/crt/tube_tone.h"
#include "core/process/press/repro.h"
#include "core/process/raster/raster.h"
#include "core/process/rebate/frame_plan.h"
#include "core/process/tricolor/tricolor.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo::bench {
namespace {

constexpr std::int64_t kSamples = 72'000'000;
constexpr const char* kTubes[] = {"crt_tv", "crt_trinitron", "crt_mono"};

Size sizeOf(const benchmark::State& state)
{
    return state.range(0) == 2 ? Size{2048, 1365} : Size{6000, 4000};
}

void tube(benchmark::State& state)
{
    const PaperProfile paper = ProfileStore::shared().paper(kTubes[state.range(1)]);
    const Size size = sizeOf(state);
    RenderOptions options;
    options.printPxUm = CRTScreen::screen(paper, options).longCm * 10'000.0 / static_cast<double>(size.width);
    CRTScreen::toneLUT(paper, {}, options); // measured once a tube
    state.SetLabel(kTubes[state.range(1)]);
    const RGBImage picture = benchPicture(size.width, size.height);
    inE(state, kSamples, [&] { benchmark::DoNotOptimize(Film::applyRepro(picture, paper, options, false)); });
    state.counters["grow"] = ReproPrint::planRaster(paper, options, options.printPxUm, size).grow;
}

BENCHMARK(tube)
    ->ArgsProduct({{2, 24}, {0, 1, 2}})
    ->UseManualTime()
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

/// The measuring of a tube, by a closeness of its own each time, so that nothing is remembered.
void tubeBench(benchmark::State& state)
{
    const PaperProfile paper = ProfileStore::shared().paper(kTubes[state.range(0)]);
    RenderOptions options;
    state.SetLabel(kTubes[state.range(0)]);
    inE(state, kSamples, [&] {
        options.crtZoom += 0.01;
        benchmark::DoNotOptimize(CRTScreen::toneLUT(paper, {true, true}, options));
    });
}

BENCHMARK(tubeBench)->DenseRange(0, 2)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void threePlates(benchmark::State& state)
{
    DevelopedFilm film;
    film.film = ProfileStore::shared().film("three_plates_1909");
    const Size size = sizeOf(state);
    RenderOptions options;
    options.grainMult = 0.0;
    const RGBImage picture = benchPicture(size.width, size.height);
    inE(state, kSamples, [&] {
        benchmark::DoNotOptimize(
            Tricolor::render(picture, film, options, 101'000.0 / static_cast<double>(size.width)));
    });
}

/// What three plates can't cost less than: the silver chain three times, each with the same weights.
void silverChains(benchmark::State& state)
{
    DevelopedFilm film;
    film.film = ProfileStore::shared().film("three_plates_1909");
    const Size size = sizeOf(state);
    RenderOptions options;
    options.grainMult = 0.0;
    const RGBImage picture = benchPicture(size.width, size.height);
    inE(state, kSamples, [&] {
        for (int plate = 0; plate < 3; ++plate)
            benchmark::DoNotOptimize(
                Film::bwNegativeDb(picture, film, options, 101'000.0 / static_cast<double>(size.width)));
    });
}

BENCHMARK(silverChains)->Arg(2)->Arg(24)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(threePlates)->Arg(2)->Arg(24)->UseManualTime()->Iterations(2)->Unit(benchmark::kMillisecond);

void rebate(benchmark::State& state)
{
    const FilmProfile film = ProfileStore::shared().film("portra400");
    const Size size = sizeOf(state);
    RenderOptions options;
    options.frameStyle = FrameStyle::wide;
    const RGBImage picture = benchPicture(size.width, size.height);
    inE(state, kSamples, [&] {
        RGBImage image = picture;
        const auto added = Pipeline::addRebate(image, film, options, {});
        benchmark::DoNotOptimize(Pipeline::composite(std::move(image), *added, added->mask, {1, 1, 1}, {}));
    });
}

BENCHMARK(rebate)->Arg(2)->Arg(24)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
