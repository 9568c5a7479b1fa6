// Speed of the filters on interleaved RGB, in E (bench/unit_e.h). The ray filter is also told in the Fourier
// transforms that it needs: for each channel the light, the kernel and the way back, of the padded grid.
#include "bench/unit_e.h"

#include "core/film/filters/filters.h"
#include "core/image/bands.h"
#include "platform/fft.h"
#include "platform/worker_pool.h"

#include <algorithm>

namespace tamlo {
namespace {

/// A night scene: dark, with lamps.
RGBImage nightScene(std::int64_t w, std::int64_t h)
{
    RGBImage image(w, h);
    float* values = image.mutableData();
    parallelBands(h, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * w * 3; i < end * w * 3; ++i) {
            const std::int64_t pixel = i / 3, x = pixel % w, y = pixel / w;
            const bool lamp = x % 997 < 20 && y % 613 < 20;
            values[i] = lamp ? 4.0f : static_cast<float>((i * 2'654'435'761) & 0xFFFF) / 131'072.0f;
        }
    });
    return image;
}

RGBImage testScene(const benchmark::State& state)
{
    return nightScene(state.range(0), state.range(1));
}

void rays(benchmark::State& state, const FilterProfile& profile)
{
    RGBImage image = testScene(state);
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Filters::applyRays(std::move(image), profile, 0.0); });
}

/// Nine two-dimensional real transforms of the size that star_6 pads its grid to.
void raysTransforms(benchmark::State& state)
{
    const std::int64_t longSide = std::max(state.range(0), state.range(1));
    const double shrink = std::max(static_cast<double>(longSide) * 0.0016 / 3.0, 1.0);
    const auto padded = [&](std::int64_t n) {
        const double reach = 0.14 * static_cast<double>(longSide) / shrink;
        return platform::quickFftLength(static_cast<std::int64_t>(static_cast<double>(n) / shrink + reach));
    };
    const std::int64_t w = padded(state.range(0)), h = padded(state.range(1));
    const std::int64_t blocks = (w / 2 + platform::kFftColumns) / platform::kFftColumns;
    const platform::FftBuffer data(blocks * platform::kFftColumns * 2 * h);
    const platform::RowFft rowFft(w);
    const platform::ColumnFft columnFft(h);
    bench::inE(state, state.range(0) * state.range(1) * 3, [&] {
        for (int i = 0; i < 9; ++i) {
            parallelBands(h, w, [&](std::int64_t start, std::int64_t end) {
                const platform::FftBuffer row(w);
                for (std::int64_t y = start; y < end; ++y)
                    rowFft.forward(row.real(), data.complex() + y * blocks * platform::kFftColumns);
            });
            parallelBands(blocks, h * 8, [&](std::int64_t start, std::int64_t end) {
                for (std::int64_t b = start; b < end; ++b)
                    columnFft.forward(data.complex() + b * h * platform::kFftColumns);
            });
        }
    });
}

void diffusion(benchmark::State& state)
{
    RGBImage image = testScene(state);
    const FilterProfile profile = ProfileStore::shared().filterProfile("promist_1");
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Filters::applyDiffusion(std::move(image), profile, 0.01); });
}

void grad(benchmark::State& state)
{
    RGBImage image = testScene(state);
    const FilterProfile profile = ProfileStore::shared().filterProfile("grad_nd2_soft");
    const auto degrees = static_cast<double>(state.range(2));
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Filters::applyGrad(std::move(image), profile, 0.0, degrees); });
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->Args({2048, 1365})->Args({6000, 4000})->UseManualTime()->Unit(benchmark::kMillisecond);
}

void gradCases(benchmark::internal::Benchmark* bench)
{
    for (const std::int64_t degrees : {0, 20}) bench->Args({6000, 4000, degrees});
    bench->UseManualTime()->Unit(benchmark::kMillisecond);
}

FilterProfile star6()
{
    return ProfileStore::shared().filterProfile("star_6");
}

/// The longest rays.
FilterProfile streak()
{
    FilterProfile profile;
    profile.rays = 2;
    profile.lengthFrac = 0.34;
    profile.widthFrac = 0.0016;
    return profile;
}

BENCHMARK_CAPTURE(rays, star_6, star6())->Apply(sizes);
BENCHMARK_CAPTURE(rays, streak, streak())->Apply(sizes);
BENCHMARK(raysTransforms)->Apply(sizes);
BENCHMARK(diffusion)->Apply(sizes);
BENCHMARK(grad)->Apply(gradCases);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
