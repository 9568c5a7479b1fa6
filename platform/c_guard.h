// Calls into C libraries that report a fatal error by a callback which must not return (libjpeg, libpng).
// The callback jumps back to the guarded call, which throws; no C++ object may live in between, so the
// guarded function only calls the library and works on what it captured by reference.
#pragma once

#include "platform/checkpoint.h"
#include "platform/platform_error.h"

#include <csetjmp>
#include <cstdio>
#include <exception>
#include <utility>

namespace tamlo::platform {

class CGuard {
public:
    template <typename F>
    void run(const F& call)
    {
        if (setjmp(target_) != 0) {
            if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
            throw PlatformError(reason_);
        }
        call();
    }

    /// For the library's error callback, inside a run.
    [[noreturn]] void fail(const char* reason) noexcept
    {
        std::snprintf(reason_, sizeof reason_, "%s", reason);
        std::longjmp(target_, 1);
    }

    /// For a callback of the library, inside a run: asks the checkpoint, and jumps back where it throws.
    void checkpoint() noexcept
    {
        try {
            platform::checkpoint();
        } catch (...) {
            thrown_ = std::current_exception();
        }
        if (thrown_) std::longjmp(target_, 1);
    }

private:
    std::jmp_buf target_;
    char reason_[256] = {};
    std::exception_ptr thrown_;
};

} // namespace tamlo::platform
