// Speed of the imaging foundation's hot passes on interleaved RGB, in E (bench/unit_e.h).
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/image/gaussian.h"
#include "core/image/orient.h"
#include "core/image/resample.h"

namespace tamlo {
namespace {

void blurInPlace(benchmark::State& state)
{
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    const double sigma = static_cast<double>(state.range(2));
    bench::inE(state, image.pixelCount() * 3, [&] { image = blur(std::move(image), sigma); });
}

void lanczosToHalf(benchmark::State& state)
{
    const RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    bench::inE(state, image.pixelCount() * 3, [&] {
        const RGBImage half = pilResize(image, image.width / 2, image.height / 2, Resampling::lanczos);
        benchmark::DoNotOptimize(half.data.data());
    });
}

void quarterTurn(benchmark::State& state)
{
    const RGBImage image = bench::benchPicture(state.range(0), state.range(1));
    bench::inE(state, image.pixelCount() * 3, [&] {
        const RGBImage turned = Orientation::orientImage(image, 90, false);
        benchmark::DoNotOptimize(turned.data.data());
    });
}

BENCHMARK(blurInPlace)
    ->ArgNames({"w", "h", "sigma"})
    ->Args({6000, 4000, 3})
    ->Args({6000, 4000, 10})
    ->Args({6000, 4000, 30})
    ->Args({1800, 1200, 3})
    ->Args({1800, 1200, 30})
    ->UseManualTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(lanczosToHalf)
    ->ArgNames({"w", "h"})
    ->Args({6000, 4000})
    ->Args({1800, 1200})
    ->UseManualTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(quarterTurn)
    ->ArgNames({"w", "h"})
    ->Args({6000, 4000})
    ->Args({1800, 1200})
    ->UseManualTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
