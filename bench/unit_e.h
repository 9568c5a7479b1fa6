// E, the unit of this project's speed figures: one scalar std::exp(float) per sample on one thread, over a
// block that stays in the cache. It is timed in the same process as what it measures, so that a figure in E
// means the same on a busy machine.
#pragma once

#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

namespace tamlo::bench {

/// Seconds of one E for `samples` samples (three a pixel).
inline double secondsOfE(std::int64_t samples)
{
    static const double secondsPerSample = [] {
        std::vector<float> block(4096);
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = -4.0f + 8.0f * static_cast<float>(i) / 4096.0f;
        double best = 1e9;
        for (int round = 0; round < 7; ++round) {
            const std::clock_t start = std::clock(); // of this process: a busy machine doesn't count
            float sum = 0.0f;
            constexpr int kPasses = 1000;
            for (int pass = 0; pass < kPasses; ++pass) {
                for (const float v : block) sum += std::exp(v);
                benchmark::DoNotOptimize(sum);
            }
            const double took = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            best = std::min(best, took / (kPasses * 4096.0));
        }
        return best;
    }();
    return secondsPerSample * static_cast<double>(samples);
}

/// Seconds that this process spent outside the kernel, which is where the pages of fresh buffers come from.
inline double userSeconds()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_utime.tv_sec) + 1e-6 * static_cast<double>(used.ru_utime.tv_usec);
}

/// Runs the benchmark loop on wall time and reports the fastest and the mean iteration in E, and the mean of
/// what all threads spent as E_cpu, the figure that holds on a busy machine; E_user leaves the kernel out.
template <typename F>
void inE(benchmark::State& state, std::int64_t samples, F&& work)
{
    double best = 1e9, total = 0.0;
    const std::clock_t began = std::clock();
    const double userBegan = userSeconds();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(took.count());
        best = std::min(best, took.count());
        total += took.count();
    }
    const double cpu = static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
    const double user = userSeconds() - userBegan;
    const double e = secondsOfE(samples);
    state.counters["E_user"] = user / static_cast<double>(state.iterations()) / e;
    state.counters["E_cpu"] = cpu / static_cast<double>(state.iterations()) / e;
    state.counters["E_best"] = best / e;
    state.counters["E_mean"] = total / static_cast<double>(state.iterations()) / e;
    state.counters["ns_per_px"] = best * 1e9 / (static_cast<double>(samples) / 3.0);
}

} // namespace tamlo::bench
