// How quickly a picture answers and how little it costs to see a roll again, each beside the bare operation
// in the same run. Times are wall times of the fastest round, with the processor's time beside them, which is
// what counts on a busy machine; E_ms is one E of a proxy's samples in this run.
//   TAMLO_SOAK_SECONDS=3600 preview_bench --benchmark_filter=soak     an hour of a session, for growth
#include "bench/bench_picture.h"
#include "bench/unit_e.h"

#include "app/preview/frame_store.h"
#include "app/preview/keyed_renderer.h"
#include "app/preview/thumb_cache.h"
#include "core/io/image_loader.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/job_queue.h"
#include "platform/main_loop.h"
#include "platform/work_arena.h"
#include "tests/support/scratch_folder.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <optional>

#include <unistd.h>

namespace tamlo::bench {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// Colour negative with grain on RA-4 paper.
ProcessSettings negative()
{
    ProcessSettings process = ProcessSettings::fresh();
    process.stock = "portra400";
    process.lens = "modern_clean";
    process.paper = "color_ra4";
    return process;
}

const RGBImage& proxy()
{
    static const RGBImage image =
        resized(ImageLoader::loadEncodedAsLinear(TAMLO_SAMPLES "/photos/fig.jpg"), ProxyFile::kProxyLong);
    return image;
}

/// Best of the rounds, kept as the iteration's time, and what all threads have spent on one.
struct Best {
    benchmark::State& state;
    double seconds = 1e9;
    std::clock_t began = std::clock();

    void add(double took)
    {
        state.SetIterationTime(took);
        seconds = std::min(seconds, took);
    }
    ~Best()
    {
        const double cpu = static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
        state.counters["ms_best"] = seconds * 1e3;
        state.counters["cpu_ms_mean"] = cpu * 1e3 / static_cast<double>(state.iterations());
        state.counters["E_ms"] = secondsOfE(proxy().pixelCount() * 3) * 1e3;
    }
};

void bareProxy(benchmark::State& state)
{
    const CPUBackend backend;
    const RenderChoices choices = choicesOf(negative(), ProfileStore::shared());
    backend.processReady(proxy(), choices); // the film's calibration
    inE(state, proxy().pixelCount() * 3,
        [&] { benchmark::DoNotOptimize(backend.processReady(proxy(), choices)); });
}
BENCHMARK(bareProxy)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// A loop, a renderer, and a knob that is turned.
struct Session {
    platform::HeadlessLoop loop;
    KeyedRenderer renderer{loop, viewRender(ProfileStore::shared())};
    std::int64_t ticket = 0;

    double turn()
    {
        bool done = false;
        const auto begin = Clock::now();
        KeyedRenderer::Request request;
        request.image = proxy();
        request.process = negative();
        request.process->options.grade = static_cast<double>(ticket % 5);
        request.ticket = ++ticket;
        renderer.setTicket(ticket);
        renderer.submit("frame", std::move(request), [&](KeyedRenderer::Outcome) { done = true; });
        loop.runUntil([&] { return done; });
        return secondsSince(begin);
    }
};

void knobToProxy(benchmark::State& state)
{
    Session session;
    session.turn();
    const CPUBackend backend;
    const RenderChoices choices = choicesOf(negative(), ProfileStore::shared());
    double bare = 1e9, more = 1e9;
    {
        Best best{state};
        for (auto _ : state) { // one beside the other, so that both meet the same machine
            const auto begin = Clock::now();
            benchmark::DoNotOptimize(backend.processReady(proxy(), choices));
            const double alone = secondsSince(begin), turned = session.turn();
            best.add(turned);
            bare = std::min(bare, alone);
            more = std::min(more, turned - alone);
        }
    }
    state.counters["ms_bare"] = bare * 1e3;
    state.counters["ms_more"] = more * 1e3;
}
BENCHMARK(knobToProxy)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// The same while a roll is exported: a master renders again and again behind the view.
void knobBesideAnExport(benchmark::State& state)
{
    const RGBImage master = benchPicture(4882, 3255);
    std::atomic<bool> ends{false};
    platform::SerialQueue queue("bench.export", platform::Niceness::utility);
    queue.submit([&] {
        const RenderChoices choices = choicesOf(negative(), ProfileStore::shared());
        CPUBackend backend;
        backend.hooks.shouldCancel = [&] { return ends.load(); };
        platform::runIn(platform::WorkArena::background, [&] {
            try {
                while (!ends) benchmark::DoNotOptimize(backend.process(master, choices));
            } catch (const TamloError&) {}
        });
    });
    Session session;
    session.turn();
    {
        Best best{state};
        for (auto _ : state) best.add(session.turn());
    }
    ends = true;
    queue.drain();
    double alone = 1e9;
    for (int i = 0; i < 5; ++i) alone = std::min(alone, session.turn());
    state.counters["ms_alone"] = alone * 1e3;
}
BENCHMARK(knobBesideAnExport)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// From the turn of a knob until the master of 24 megapixels that is being rendered has stopped, at moments
/// spread over its run. The time told is the longest.
void supersededMasterStops(benchmark::State& state)
{
    Session session;
    const RGBImage master = benchPicture(6000, 4000);
    double longest = 0, longestCpu = 0;
    int round = 0;
    for (auto _ : state) {
        bool done = false;
        KeyedRenderer::Request request;
        request.image = master;
        request.process = negative();
        request.ticket = session.ticket;
        session.renderer.submit("fine", std::move(request), [&](KeyedRenderer::Outcome) { done = true; });
        const double moment = 0.2 + 0.4 * round++;
        const auto start = Clock::now();
        auto timer = session.loop.after(moment, [] {});
        session.loop.runUntil([&] { return secondsSince(start) >= moment; });
        const auto begin = Clock::now();
        const std::clock_t spent = std::clock();
        session.renderer.setTicket(++session.ticket);
        session.loop.runUntil([&] { return done; });
        const double took = secondsSince(begin);
        longestCpu = std::max(longestCpu, static_cast<double>(std::clock() - spent) / CLOCKS_PER_SEC);
        state.SetIterationTime(took);
        longest = std::max(longest, took);
    }
    state.counters["ms_longest"] = longest * 1e3;
    state.counters["cpu_ms_longest"] = longestCpu * 1e3;
}
BENCHMARK(supersededMasterStops)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// A cache of its own.
struct Cached {
    test::ScratchFolder folder;
    ProxyCache cache{{folder / "cache", [] { return 1.8e9; }}};
    ThumbCache thumbs{cache};

    static std::string key(int n)
    {
        return ProxyFile::key({n, 0, static_cast<std::uint64_t>(n)}, WBMode::film);
    }
    static std::string view(int n) { return key(n) + "-1.0"; }
    static FrameSource source()
    {
        return {proxy(), SourceExposure::Stats{0.01, 0.2, 0.9, 4000, 6000}, 6000, 4000, true, WBMode::film,
                true};
    }
    static ReadyImage tile() { return ImageWriter::readyImage(resized(proxy(), 1024)); }
};

void proxyFromDisk(benchmark::State& state)
{
    Cached cached;
    cached.cache.store(Cached::source(), Cached::key(1));
    Best best{state};
    for (auto _ : state) {
        const auto begin = Clock::now();
        benchmark::DoNotOptimize(cached.cache.read(Cached::key(1)));
        best.add(secondsSince(begin));
    }
}
BENCHMARK(proxyFromDisk)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void tileFromDisk(benchmark::State& state)
{
    Cached cached;
    cached.thumbs.store(Cached::view(1), Cached::tile(), ThumbCache::Raster::t);
    Best best{state};
    for (auto _ : state) {
        const auto begin = Clock::now();
        benchmark::DoNotOptimize(cached.thumbs.read(Cached::view(1), ThumbCache::Raster::t));
        best.add(secondsSince(begin));
    }
}
BENCHMARK(tileFromDisk)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void shapesOf5000(benchmark::State& state)
{
    constexpr int kFrames = 5000;
    Cached cached;
    FrameSource small = Cached::source();
    small.proxy = resized(proxy(), 32);
    for (int n = 0; n < kFrames; ++n) cached.cache.store(small, Cached::key(n));
    Best best{state};
    for (auto _ : state) {
        const auto begin = Clock::now();
        for (int n = 0; n < kFrames; ++n) benchmark::DoNotOptimize(cached.cache.readShape(Cached::key(n)));
        best.add(secondsSince(begin));
    }
}
BENCHMARK(shapesOf5000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void tilesOf500(benchmark::State& state)
{
    constexpr int kFrames = 500;
    Cached cached;
    const ReadyImage tile = Cached::tile();
    for (int n = 0; n < kFrames; ++n) cached.thumbs.store(Cached::view(n), tile, ThumbCache::Raster::t);
    double best = 1e9;
    for (auto _ : state) {
        const std::clock_t begin = std::clock();
        for (int n = 0; n < kFrames; ++n)
            benchmark::DoNotOptimize(cached.thumbs.read(Cached::view(n), ThumbCache::Raster::t));
        const double cpu = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        state.SetIterationTime(cpu);
        best = std::min(best, cpu);
    }
    state.counters["cpu_s_best"] = best;
}
BENCHMARK(tilesOf500)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

/// Megabytes of memory that are this process's own now.
double residentMB()
{
    std::ifstream file("/proc/self/statm");
    double pages = 0, resident = 0;
    file >> pages >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Knobs are turned, masters begun and superseded, tiles and proxies stored, read and trimmed, for as long as
/// TAMLO_SOAK_SECONDS says. What the memory and the cache come to after a tenth of it and at the end.
void soak(benchmark::State& state)
{
    const char* wanted = std::getenv("TAMLO_SOAK_SECONDS");
    const double seconds = wanted ? std::atof(wanted) : 2.0;
    Session session;
    Cached cached;
    const RGBImage master = benchPicture(3000, 2000);
    double early = 0;
    for (auto _ : state) {
        const auto begin = Clock::now();
        for (int n = 0; secondsSince(begin) < seconds; ++n) {
            KeyedRenderer::Request request;
            request.image = master;
            request.process = negative();
            request.ticket = session.ticket;
            session.renderer.submit("fine", std::move(request), [](KeyedRenderer::Outcome) {});
            session.turn();
            cached.cache.store(Cached::source(), Cached::key(n % 50));
            cached.cache.read(Cached::key((n * 7) % 50));
            cached.thumbs.store(Cached::view(n), Cached::tile(), ThumbCache::Raster::t);
            if (n % 20 == 19) cached.cache.trim(std::int64_t{200} << 20, std::nullopt, 1.8e9 + n);
            if (early == 0 && secondsSince(begin) > seconds / 10) early = residentMB();
        }
        state.SetIterationTime(secondsSince(begin));
    }
    state.counters["MB_early"] = early;
    state.counters["MB_late"] = residentMB();
    state.counters["MB_cache"] = static_cast<double>(cached.cache.usage().bytes) / 1e6;
    state.counters["turns"] = static_cast<double>(session.ticket);
}
BENCHMARK(soak)->UseManualTime()->Unit(benchmark::kSecond)->Iterations(1);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
