// Speed of what a plate adds to the silver chain: coating and coverage on one plane, the ring of the glass,
// and the view, for a quarter plate at 24 megapixels and at 2,048 pixels. CPU time in E of 24 megapixels
// (bench/unit_e.h), whatever the size.
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "core/process/plates/glass_ring.h"
#include "core/process/plates/plate_coating.h"
#include "core/process/plates/plate_view.h"
#include "core/profiles/catalogue/profile_store.h"

#include <algorithm>

namespace tamlo {
namespace {

constexpr double kQuarterPlateUm = 101'000.0;
constexpr std::int64_t kSamples24 = 6000 * 4000 * 3;

struct Frame {
    Size size;
    double pxUm;

    explicit Frame(const benchmark::State& state)
        : size{state.range(0), state.range(0) * 2 / 3},
          pxUm(kQuarterPlateUm / static_cast<double>(size.width))
    {}
};

/// All three steps of a film's coat on one plane, with crystals where `push` says so.
void coat(benchmark::State& state)
{
    const Frame frame(state);
    const FilmProfile film = ProfileStore::shared().film(state.range(1) ? "dryplate_ortho" : "collodion_wet");
    RenderOptions options;
    options.push = static_cast<double>(state.range(2));
    state.SetLabel(film.nameEn.value_or(""));
    Plane plane = bench::benchPicture(frame.size.width, frame.size.height).plane(1);
    bench::inE(state, kSamples24, [&] {
        Plate::Coating coating(film, options, frame.size, frame.pxUm);
        plane = coating.onLight(std::move(plane));
        plane = coating.onDensity(std::move(plane), 0.05, 2.0);
        plane = coating.atTheEnd(std::move(plane), 0.05);
    });
}

void ring(benchmark::State& state)
{
    const Frame frame(state);
    const Plane light = bench::benchPicture(frame.size.width, frame.size.height).plane(1);
    const auto rows = [&](std::int64_t y, float* to) { std::copy_n(light.row(y), light.width, to); };
    std::vector<float> line(static_cast<std::size_t>(light.width));
    bench::inE(state, kSamples24, [&] {
        const auto halo = Glass::Halo::of(frame.size, frame.pxUm, 1.6, rows);
        for (std::int64_t y = 0; y < light.height; ++y) halo->row(y, line.data());
        benchmark::DoNotOptimize(line.data());
    });
}

void view(benchmark::State& state)
{
    const Frame frame(state);
    const PaperProfile paper = ProfileStore::shared().paper("ambrotype");
    const Plane density = bench::benchPicture(frame.size.width, frame.size.height).plane(1);
    bench::inE(state, kSamples24, [&] {
        const RGBImage out = Plate::viewPlate(density, paper, {}, {0.05, 2.0}, std::nullopt);
        benchmark::DoNotOptimize(out.data.data());
    });
}

BENCHMARK(coat)
    ->ArgNames({"w", "dry", "push"})
    ->ArgsProduct({{6000, 2048}, {0}, {0, 3}})
    ->ArgsProduct({{6000, 2048}, {1}, {0}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ring)->Arg(6000)->Arg(2048)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(view)->Arg(6000)->Arg(2048)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
