// RenderProfiler: wall time by stage, for whoever asks where a render's time goes. Off unless the environment
// holds TAMLO_PROFILE; then one lock guards the totals of the process. Nothing in a render depends on it.
// Stages that are booked do not nest, so their seconds add up to no more than the run's.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace tamlo::RenderProfiler {

/// What a stage has taken so far.
struct Entry {
    std::int64_t calls = 0;
    double seconds = 0.0;
    std::int64_t pixels = 0;
};

struct Snapshot {
    std::map<std::string, Entry> cpu;
};

/// True when the environment held TAMLO_PROFILE at the first question.
bool enabled();
/// Books one call of a stage.
void book(const char* name, std::int64_t pixels, double seconds);
void reset();
Snapshot snapshot();
/// The stages as a table, the dearest first, at most `top` of them, with their shares of `total` seconds.
std::string report(const std::string& title, double total, std::size_t top);

/// Books the time from its making to the end of its scope.
class Scope {
public:
    Scope(const char* name, std::int64_t pixels) : name_(name), pixels_(pixels) {}
    ~Scope()
    {
        if (!enabled()) return;
        book(name_, pixels_, std::chrono::duration<double>(Clock::now() - start_).count());
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    using Clock = std::chrono::steady_clock;
    const char* name_;
    std::int64_t pixels_;
    Clock::time_point start_ = Clock::now();
};

/// Runs body, books its time under the label and returns its value.
template <class Body>
auto cpu(const char* name, std::int64_t pixels, Body&& body)
{
    const Scope scope(name, pixels);
    return std::forward<Body>(body)();
}

} // namespace tamlo::RenderProfiler
