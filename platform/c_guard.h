// Calls into C libraries that report a fatal error by a callback which must not return (libjpeg, libpng).
// The callback jumps back to the guarded call, which throws; no C++ object may live in between, so the
// guarded function only calls the library and works on what it captured by reference.
#pragma once

#include "platform/platform_error.h"

#include <csetjmp>
#include <cstdio>

namespace tamlo::platform {

class CGuard {
public:
    template <typename F>
    void run(const F& call)
    {
        if (setjmp(target_) != 0) throw PlatformError(reason_);
        call();
    }

    /// For the library's error callback, inside a run.
    [[noreturn]] void fail(const char* reason) noexcept
    {
        std::snprintf(reason_, sizeof reason_, "%s", reason);
        std::longjmp(target_, 1);
    }

private:
    std::jmp_buf target_;
    char reason_[256] = {};
};

} // namespace tamlo::platform
