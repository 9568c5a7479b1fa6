// Speed of what happens to a finished print, in E of the print's picture (bench/unit_e.h): pressed marks, a
// mat of 6 cm, and tables under the matted sheet. Mats and tables write a larger canvas than the picture,
// which is most of what they cost: `canvas` is that writing alone.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/process/finishing/sheet_finish.h"
#include "core/process/mat/mat.h"
#include "core/process/mat/table.h"
#include "core/process/mat/table_surface.h"

namespace tamlo {
namespace {

/// A print of 30 cm on a sheet with margins of 16 mm.
RenderOptions printOptions(const benchmark::State& state)
{
    RenderOptions options;
    options.printPxUm = 300'000.0 / static_cast<double>(state.range(0));
    options.borderPx = 16'000.0 / options.printPxUm;
    options.mat = "double";
    return options;
}

RGBImage print(const benchmark::State& state)
{
    return bench::benchPicture(state.range(0), state.range(1));
}

void marks(benchmark::State& state)
{
    RGBImage image = print(state);
    RenderOptions options = printOptions(state);
    options.embossLine = "double";
    options.blindStamp = true;
    options.stampText = "Atelier";
    bench::inE(state, image.pixelCount() * 3, [&] { Finishing::applySheetFinish(image, options); });
}

void mat(benchmark::State& state)
{
    const RGBImage image = print(state);
    const RenderOptions options = printOptions(state);
    bench::inE(state, image.pixelCount() * 3,
               [&] { benchmark::DoNotOptimize(Finishing::applyMat(image, options)); });
}

void canvas(benchmark::State& state)
{
    const RGBImage image = print(state);
    const auto plan = Finishing::matPlan(image.size(), printOptions(state));
    bench::inE(state, image.pixelCount() * 3, [&] {
        RGBImage out(plan->W, plan->H);
        float* data = out.mutableData();
        parallelBands(plan->H, plan->W * 3, [&](std::int64_t start, std::int64_t end) {
            std::fill(data + start * plan->W * 3, data + end * plan->W * 3, 0.5f);
        });
        benchmark::DoNotOptimize(data);
    });
}

void table(benchmark::State& state, const char* kind)
{
    const RenderOptions options = printOptions(state);
    const RGBImage sheet = Finishing::applyMat(print(state), options);
    bench::inE(state, state.range(0) * state.range(1) * 3, [&] {
        GrainRNG rng(5);
        const Table::Lying lying{3.0, options.printPxUm, options.matBevelMm};
        benchmark::DoNotOptimize(Table::apply(sheet, kind, lying, std::nullopt, rng));
    });
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->Args({2048, 1365})->Args({6000, 4000})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(marks)->Apply(sizes);
BENCHMARK(canvas)->Apply(sizes);
BENCHMARK(mat)->Apply(sizes);
BENCHMARK_CAPTURE(table, grey, "grey")->Apply(sizes);
BENCHMARK_CAPTURE(table, linen, "linen")->Apply(sizes);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
