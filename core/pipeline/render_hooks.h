// What a render asks of and tells its caller while it runs.
#pragma once

#include "core/image/tamlo_error.h"

#include <functional>

namespace tamlo {

struct RenderHooks {
    /// Asked at the cancellation points; true ends the render with TamloError::cancelled.
    std::function<bool()> shouldCancel;
    /// Told what begins and how far the render is, 0...1. Called on the render's thread.
    std::function<void(const char* phase, double fraction)> onProgress;

    void cancellationPoint() const
    {
        if (shouldCancel && shouldCancel()) throw TamloError::cancelled();
    }
    void progress(const char* phase, double fraction) const
    {
        if (onProgress) onProgress(phase, fraction);
    }
};

} // namespace tamlo
