#include "platform/exiv2_session.h"

#include <mutex>

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {

std::unique_lock<std::recursive_mutex> exiv2Session()
{
    static std::recursive_mutex ours, lock;
    std::unique_lock session(ours);
    [[maybe_unused]] static const bool done = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::enableBMFF(true); // HEIF, AVIF, JPEG XL and CR3 keep their metadata in boxes
        Exiv2::XmpParser::initialize(
            [](void* held, bool take) {
                auto& mutex = *static_cast<std::recursive_mutex*>(held);
                if (take)
                    mutex.lock();
                else
                    mutex.unlock();
            },
            &lock);
        Exiv2::XmpProperties::registerNs("https://tamlo.app/xmp/1.0/", "tamlo");
        return true;
    }();
    return session;
}

} // namespace tamlo::platform
