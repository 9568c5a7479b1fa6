// Speed and memory of growth grain. The full path counts in E per site and layer, the aggregate path in E per
// pixel and layer (bench/unit_e.h), both on one core; a calibration is in seconds of one core; the master
// also tells its peak of memory beyond the picture, in pictures, and the proxy what the whole chain costs
// with grain over the chain without it.
#include "bench/unit_e.h"

#include "core/film/grain/growth_calibration.h"
#include "core/film/grain/growth_grain.h"
#include "core/pipeline/backend.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/worker_pool.h"

#include <fstream>
#include <string>

namespace tamlo::bench {
namespace {

const FilmProfile& portra()
{
    static const FilmProfile film = ProfileStore::shared().film("portra400");
    return film;
}

const Vec3d kDmins{0.2, 0.55, 0.9}, kDmaxs{2.3, 2.65, 3.0};

/// Densities from base to 1.8 above it, across the frame.
RGBImage ramp(std::int64_t width, std::int64_t height)
{
    RGBImage image(width, height);
    float* p = image.mutableData();
    for (std::int64_t i = 0; i < image.pixelCount() * 3; ++i)
        p[i] = 0.2f + 0.35f * static_cast<float>(i % 3) +
               1.8f * static_cast<float>(i / 3 % width) / static_cast<float>(width);
    return image;
}

Grain::GrowthFrame frameOf(double pxUm, std::int64_t width, Grain::GrowthZone zone)
{
    Grain::GrowthFrame frame;
    frame.grain = *portra().grain;
    frame.formatLongUm = pxUm * static_cast<double>(width);
    frame.seed = 1;
    frame.zone = zone;
    return frame;
}

/// The site calibration is done ahead and the picture handed over, as the negative does.
template <typename Make, typename Lay>
void lay(benchmark::State& state, std::int64_t samples, const Make& make, const Lay& grain)
{
    const platform::WorkerLimit oneCore(1);
    auto image = make();
    image = grain(std::move(image));
    inE(state, samples, [&] { image = grain(std::move(image)); });
}

void color(benchmark::State& state)
{
    const double pxUm = static_cast<double>(state.range(0)) / 10.0;
    const auto zone = state.range(1) ? Grain::GrowthZone::aggregate : Grain::GrowthZone::full;
    const std::int64_t width = state.range(2), height = width * 2 / 3, scale = Grain::growthScale(pxUm);
    const Grain::GrowthFrame frame = frameOf(pxUm, width, zone);
    const std::int64_t sites = state.range(1) ? 1 : scale * scale;
    lay(
        state, width * height * 3 * sites, [&] { return ramp(width, height); },
        [&](RGBImage image) { return Grain::growthColor(std::move(image), kDmins, kDmaxs, frame); });
}

void silver(benchmark::State& state)
{
    const double pxUm = static_cast<double>(state.range(0)) / 10.0;
    const auto zone = state.range(1) ? Grain::GrowthZone::aggregate : Grain::GrowthZone::full;
    const std::int64_t width = state.range(2), height = width * 2 / 3, scale = Grain::growthScale(pxUm);
    Grain::GrowthFrame frame = frameOf(pxUm, width, zone);
    frame.grain = *ProfileStore::shared().film("trix400").grain;
    const std::int64_t sites = state.range(1) ? 1 : scale * scale;
    lay(
        state, width * height * sites, [&] { return ramp(width, height).plane(0); },
        [&](Plane plane) { return Grain::growthBW(std::move(plane), 0.28, 2.45, frame); });
}

void calibration(benchmark::State& state)
{
    const platform::WorkerLimit oneCore(1);
    double amount = 0.03;
    for (auto _ : state) {
        amount += 1e-3; // a film not seen before
        benchmark::DoNotOptimize(Grain::growthColorCal({amount, 8.4, 2.0, *portra().grain, kDmins, kDmaxs}));
    }
}

/// Kilobytes of a line of /proc/self/status.
double statusKb(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name)) return std::stod(line.substr(name.size()));
    return 0.0;
}

void master(benchmark::State& state)
{
    const std::int64_t width = 6545, height = 4363;
    Grain::GrowthFrame frame = frameOf(36'000.0 / static_cast<double>(width), width, Grain::GrowthZone::full);
    RGBImage image = ramp(width, height);
    double beyondKb = 0.0;
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak begins anew
        const double before = statusKb("VmRSS:");
        image = Grain::growthColor(std::move(image), kDmins, kDmaxs, frame);
        beyondKb = statusKb("VmHWM:") - before;
    }
    state.counters["pictures_beyond"] = beyondKb * 1024.0 / (static_cast<double>(image.data.size()) * 4.0);
}

/// The whole chain on the proxy, with and without grain in turn.
void proxyChain(benchmark::State& state)
{
    const ProfileStore& store = ProfileStore::shared();
    RenderChoices choices{portra(), store.lens("modern_clean"), store.paper("color_ra4"), {}};
    RGBImage light = ramp(2048, 1365);
    const CPUBackend backend;
    double with = 1e9, without = 1e9;
    const auto timed = [&](double grainMult) {
        choices.options.grainMult = grainMult;
        const auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(backend.process(light, choices));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    timed(1.0);
    for (auto _ : state) {
        without = std::min(without, timed(0.0));
        with = std::min(with, timed(1.0));
    }
    state.counters["chain_ratio"] = with / without;
}

BENCHMARK(color)
    ->ArgNames({"tenths_um", "aggregate", "width"})
    ->Args({20, 0, 1500})
    ->Args({55, 0, 1500})
    ->Args({140, 0, 600})
    ->Args({176, 1, 2048})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(silver)
    ->ArgNames({"tenths_um", "aggregate", "width"})
    ->Args({20, 0, 1500})
    ->Args({55, 0, 1500})
    ->Args({176, 1, 2048})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(calibration)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(master)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(proxyChain)->Unit(benchmark::kMillisecond)->Iterations(4);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
