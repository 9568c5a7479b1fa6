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

/// What a bench with warm pages (warm_pages.cpp) spent on clearing them; 0 in the others.
inline double clearingSeconds = 0.0;

/// Seconds that all threads of this process have computed. With warm pages that is without the kernel's work
/// on fresh buffers; the system's own split of user and kernel time is sampled and holds for a whole process
/// only.
inline double cpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec) - clearingSeconds;
}

/// Runs the benchmark loop on wall time and reports the fastest and the mean iteration in E, and the mean of
/// what all threads spent as E_cpu, the figure that holds on a busy machine.
template <typename F>
void inE(benchmark::State& state, std::int64_t samples, F&& work)
{
    double best = 1e9, total = 0.0;
    const double began = cpuSeconds();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(took.count());
        best = std::min(best, took.count());
        total += took.count();
    }
    const double cpu = cpuSeconds() - began;
    const double e = secondsOfE(samples);
    state.counters["E_cpu"] = cpu / static_cast<double>(state.iterations()) / e;
    state.counters["E_best"] = best / e;
    state.counters["E_mean"] = total / static_cast<double>(state.iterations()) / e;
    state.counters["ns_per_px"] = best * 1e9 / (static_cast<double>(samples) / 3.0);
}

} // namespace tamlo::bench
