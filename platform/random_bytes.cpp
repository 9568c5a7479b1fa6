#include "platform/random_bytes.h"

#include "platform/platform_error.h"

#include <cerrno>
#include <cstring>

#include <sys/random.h>

namespace tamlo::platform {

void fillRandom(std::span<std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t got = getrandom(bytes.data(), bytes.size(), 0);
        if (got > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(got));
        else if (errno != EINTR)
            throw PlatformError(std::strerror(errno));
    }
}

} // namespace tamlo::platform
