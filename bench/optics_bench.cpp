// Speed of the lens on interleaved RGB, in E (bench/unit_e.h): whole lenses wide open, and each effect alone
// at the strength of an old portrait lens.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/film/lens/optics.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo {
namespace {

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
    RGBImage image = bench::benchPicture(state.range(0), state.range(1));
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
