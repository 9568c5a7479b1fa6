// WakeEvent: what a thread sleeps on until another thread, or a signal, wakes it.
#pragma once

#include <optional>

namespace tamlo::platform {

class WakeEvent {
public:
    /// Errors: PlatformError.
    WakeEvent();
    ~WakeEvent();
    WakeEvent(const WakeEvent&) = delete;
    WakeEvent& operator=(const WakeEvent&) = delete;

    /// Wakes the sleeper, now or at its next wait. From any thread, and from a signal handler.
    void set() noexcept;
    /// Sleeps until set, or for so many seconds, or until another file is readable; unset afterwards.
    void wait(std::optional<double> seconds, int otherDescriptor = -1);
    /// To be polled together with other files: readable when set.
    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

} // namespace tamlo::platform
