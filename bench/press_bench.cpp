// The presses of the catalogue at 2 and 24 megapixels and a print of 30 cm, in E of their own picture: drawn
// dots grow with the print, so a small picture on newsprint costs more a pixel than a large one.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/process/press/repro.h"
#include "core/process/raster/raster.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo::bench {
namespace {

constexpr const char* kPapers[] = {"offset_newsprint", "offset_coated", "offset_book", "inkjet_plain",
                                   "inkjet_photo"};

void press(benchmark::State& state)
{
    const PaperProfile paper = ProfileStore::shared().paper(kPapers[state.range(1)]);
    const bool small = state.range(0) == 2;
    const Size size = small ? Size{2048, 1365} : Size{6000, 4000};
    RenderOptions options;
    options.printPxUm = 300'000.0 / static_cast<double>(size.width);
    const ReproPrint::RasterPlan plan = ReproPrint::planRaster(paper, options, options.printPxUm, size);
    state.SetLabel(kPapers[state.range(1)]);
    const RGBImage picture = benchPicture(size.width, size.height);
    inE(state, size.width * size.height * 3,
        [&] { benchmark::DoNotOptimize(Film::applyRepro(picture, paper, options, false)); });
    state.counters["grow"] = plan.grow;
    state.counters["ss"] = plan.ss;
}

BENCHMARK(press)
    ->ArgsProduct({{2, 24}, {0, 1, 2, 3, 4}})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

void surface(benchmark::State& state)
{
    PaperProfile paper = ProfileStore::shared().paper("color_ra4");
    paper.surface = SurfaceParams{"lustre", 0.05, 350.0, {}};
    RenderOptions options;
    options.printPxUm = 50.0;
    const RGBImage picture = benchPicture(6000, 4000);
    inE(state, 72'000'000,
        [&] { benchmark::DoNotOptimize(Film::applyRepro(picture, paper, options, false)); });
}

BENCHMARK(surface)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
