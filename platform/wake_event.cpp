#include "platform/wake_event.h"

#include "platform/platform_error.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace tamlo::platform {

WakeEvent::WakeEvent() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (descriptor_ < 0) throw PlatformError(std::generic_category().message(errno));
}

WakeEvent::~WakeEvent()
{
    ::close(descriptor_);
}

void WakeEvent::set() noexcept
{
    const int before = errno; // a signal handler leaves no trace
    const std::uint64_t one = 1;
    (void)!::write(descriptor_, &one, sizeof one);
    errno = before;
}

void WakeEvent::wait(std::optional<double> seconds, int otherDescriptor)
{
    constexpr double kLongestSeconds = 3600.0;
    // Rounded up: a timer must not be looked at just before it is due, again and again.
    const int milliseconds =
        seconds ? static_cast<int>(std::ceil(std::clamp(*seconds, 0.0, kLongestSeconds) * 1000.0)) : -1;
    std::array<pollfd, 2> waited{pollfd{descriptor_, POLLIN, 0}, pollfd{otherDescriptor, POLLIN, 0}};
    ::poll(waited.data(), waited.size(), milliseconds);
    std::uint64_t count = 0;
    (void)!::read(descriptor_, &count, sizeof count);
}

} // namespace tamlo::platform
