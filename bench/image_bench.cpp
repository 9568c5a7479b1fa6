// Speed of the imaging foundation's hot passes on interleaved RGB, in E (bench/unit_e.h).
#include "bench/unit_e.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/orient.h"
#include "core/image/resample.h"

namespace tamlo {
namespace {

RGBImage testImage(std::int64_t w, std::int64_t h)
{
    RGBImage image(w, h);
    float* values = image.mutableData();
    parallelBands(h, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * w * 3; i < end * w * 3; ++i)
            values[i] = static_cast<float>((i * 2'654'435'761) & 0xFFFF) / 65'536.0f;
    });
    return image;
}

void blurInPlace(benchmark::State& state)
{
    RGBImage image = testImage(state.range(0), state.range(1));
    const double sigma = static_cast<double>(state.range(2));
    bench::inE(state, image.pixelCount() * 3, [&] { image = blur(std::move(image), sigma); });
}

void lanczosToHalf(benchmark::State& state)
{
    const RGBImage image = testImage(state.range(0), state.range(1));
    bench::inE(state, image.pixelCount() * 3, [&] {
        const RGBImage half = pilResize(image, image.width / 2, image.height / 2, Resampling::lanczos);
        benchmark::DoNotOptimize(half.data.data());
    });
}

void quarterTurn(benchmark::State& state)
{
    const RGBImage image = testImage(state.range(0), state.range(1));
    bench::inE(state, image.pixelCount() * 3, [&] {
        const RGBImage turned = Pipeline::orientImage(image, 90, false);
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
