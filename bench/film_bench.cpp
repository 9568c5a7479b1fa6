// The colour chain's hot passes, in E.
#include "bench/unit_e.h"

#include "core/film/light/source_light.h"
#include "core/film/print/color_negative_passes.h"
#include "core/film/print/print.h"
#include "core/image/source_exposure.h"

namespace tamlo::bench {
namespace {

RGBImage ramp(std::int64_t width, std::int64_t height)
{
    RGBImage image(width, height);
    float* p = image.mutableData();
    for (std::size_t i = 0; i < image.data.size(); ++i)
        p[i] = 0.001f + 1.2f * static_cast<float>(i % 1021) / 1021.0f;
    return image;
}

std::int64_t widthOf(const benchmark::State& state)
{
    return state.range(0);
}

void curves(benchmark::State& state)
{
    const std::int64_t width = widthOf(state), height = width * 2 / 3;
    const RGBImage source = ramp(width, height);
    RGBImage image = source;
    CurvesColorParams params;
    params.curves = {HDCurve(0.2, 2.3, 0.6, 1.5, 0.85), HDCurve(0.55, 2.65, 0.575, 1.5, 0.85),
                     HDCurve(0.9, 3.0, 0.55, 1.5, 0.85)};
    params.couplers.mode = GPUCouplers::Mode::scalar;
    params.couplers.csF = 1.14f;
    image.mutableData();
    inE(state, width * height * 3, [&] { curves_color(image, params, nullptr); });
}

void printing(benchmark::State& state)
{
    const std::int64_t width = widthOf(state), height = width * 2 / 3;
    RGBImage image = ramp(width, height);
    PrintColorParams params;
    params.curve = Print::paperCurve(PaperProfile{}, 2.0, 0.0, 0.0);
    LookParams look;
    look.shadowTint = Vec3d{-0.006, 0.003, 0.005};
    look.saturation = -0.03;
    look.greenMute = 0.3;
    params.look = Film::LookOp(look);
    inE(state, width * height * 3, [&] { print_color(image, params); });
}

void flareMean(benchmark::State& state)
{
    const std::int64_t width = widthOf(state), height = width * 2 / 3;
    const RGBImage image = ramp(width, height);
    const std::span<const float> samples(image.data.data(), image.data.size());
    inE(state, width * height * 3, [&] {
        for (std::int64_t c = 0; c < 3; ++c)
            benchmark::DoNotOptimize(Film::enlargerFlareAdd(0.008, samples, {3, c}, 0.0f, 0.0f));
    });
}

void sourceStats(benchmark::State& state)
{
    const std::int64_t width = widthOf(state), height = width * 2 / 3;
    const RGBImage image = ramp(width, height);
    inE(state, width * height * 3,
        [&] { benchmark::DoNotOptimize(SourceExposure::gain(image, SourceExposure::Mode::auto_)); });
}

BENCHMARK(curves)->Arg(2048)->Arg(6000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(printing)->Arg(2048)->Arg(6000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(flareMean)->Arg(6000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(sourceStats)->Arg(6000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
