// Cancellation: a render that nobody waits for any more ends between two bands of rows, wherever it stands.
// A scope on the render's thread holds the question; every band executor asks it before a band begins.
#pragma once

#include "platform/checkpoint.h"

#include <functional>

namespace tamlo {

/// While it lives, work of this thread ends with TamloError::cancelled soon after `shouldCancel` answers yes.
/// An empty question leaves the one of an outer scope in force. Results don't depend on it.
/// shouldCancel is called from several threads at once, some hundred times a second.
class CancellationScope {
public:
    explicit CancellationScope(std::function<bool()> shouldCancel);

private:
    std::function<void()> ask_;
    platform::CheckpointScope scope_;
};

/// For a long loop that no band executor runs. Errors: cancelled.
void cancellationPoint();

} // namespace tamlo
