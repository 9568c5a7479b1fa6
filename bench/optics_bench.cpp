// Speed of the lens on interleaved RGB, in E (bench/unit_e.h): whole lenses wide open, and each effect alone
// at the strength of an old portrait lens.
#include "bench/unit_e.h"

#include "core/film/optics.h"
#include "core/image/bands.h"
#include "core/profiles/profile_store.h"

namespace tamlo {
namespace {

RGBImage testImage(benchmark::State& state)
{
    const std::int64_t w = state.range(0), h = state.range(1);
    RGBImage image(w, h);
    float* values = image.mutableData();
    parallelBands(h, w, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * w * 3; i < end * w * 3; ++i)
            values[i] = static_cast<float>((i * 2'654'435'761) & 0xFFFF) / 65'536.0f;
    });
    return image;
}

LensProfile petzval()
{
    return ProfileStore::shared().lens("petzval1900");
}

LensProfile softFocus()
{
    LensProfile lens;
    lens.optics.glow = 0.3;
    lens.optics.glowRadius = 0.02;
    lens.optics.glowRing = 0.4;
    lens.optics.glowChroma = Vec3d{1.1, 1.0, 0.9};
    return lens;
}

void apply(benchmark::State& state, const LensProfile& lens)
{
    RGBImage image = testImage(state);
    const Vec3f means{0.3f, 0.3f, 0.3f};
    bench::inE(state, image.pixelCount() * 3,
               [&] { image = Optics::apply(std::move(image), lens, means, {}); });
}

void petzvalWideOpen(benchmark::State& state)
{
    apply(state, petzval());
}

void softFocusRing(benchmark::State& state)
{
    apply(state, softFocus());
}

void emptyLens(benchmark::State& state)
{
    apply(state, {});
}

void effectAlone(benchmark::State& state)
{
    const OpticsParams all = petzval().optics;
    LensProfile lens;
    switch (state.range(2)) {
    case 0:
        lens.optics.distortion = all.distortion;
        state.SetLabel("distortion");
        break;
    case 1:
        lens.optics.veil = all.veil;
        state.SetLabel("veil");
        break;
    case 2:
        lens.optics.bloom = all.bloom;
        lens.optics.bloomThreshold = all.bloomThreshold;
        state.SetLabel("bloom");
        break;
    case 3:
        lens.optics.fieldCurvature = all.fieldCurvature;
        lens.optics.astigmatism = all.astigmatism;
        lens.optics.defocusBias = all.defocusBias;
        state.SetLabel("field");
        break;
    case 4:
        lens.optics.ca = all.ca;
        state.SetLabel("lateral colour");
        break;
    case 5:
        lens.optics.vignette = all.vignette;
        lens.optics.vignettePower = all.vignettePower;
        state.SetLabel("vignette");
        break;
    default:
        lens.optics.soften = all.soften;
        state.SetLabel("soften");
    }
    apply(state, lens);
}

void sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"w", "h"})->Args({2048, 1365})->Args({6000, 4000});
    bench->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(petzvalWideOpen)->Apply(sizes);
BENCHMARK(softFocusRing)->Apply(sizes);
BENCHMARK(emptyLens)->Apply(sizes);
BENCHMARK(effectAlone)
    ->ArgNames({"w", "h", "effect"})
    ->ArgsProduct({{6000}, {4000}, {0, 1, 2, 3, 4, 5, 6}})
    ->ArgsProduct({{2048}, {1365}, {3}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
