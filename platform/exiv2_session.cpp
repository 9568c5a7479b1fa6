#include "platform/exiv2_session.h"

#include <mutex>

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {

void readyExiv2()
{
    static std::recursive_mutex lock;
    [[maybe_unused]] static const bool done = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(
            [](void* held, bool take) {
                auto& mutex = *static_cast<std::recursive_mutex*>(held);
                if (take)
                    mutex.lock();
                else
                    mutex.unlock();
            },
            &lock);
        return true;
    }();
}

} // namespace tamlo::platform
