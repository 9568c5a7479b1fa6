// Checkpoints: where long work asks whether it is still wanted. The question belongs to the thread that began
// the work and goes with it to the worker pool; a question that wants the work to end throws, and what it
// throws comes out where the work was begun.
#pragma once

#include <functional>

namespace tamlo::platform {

/// While it lives, checkpoint() on this thread, and on workers that its loops are spread over, calls `ask`.
/// Null: nothing is asked. Scopes nest; the innermost holds. `ask` outlives the scope and is called from
/// several threads at once.
class CheckpointScope {
public:
    explicit CheckpointScope(const std::function<void()>* ask);
    ~CheckpointScope();
    CheckpointScope(const CheckpointScope&) = delete;
    CheckpointScope& operator=(const CheckpointScope&) = delete;

private:
    const std::function<void()>* outer_;
};

/// The question in force on this thread; null for none.
const std::function<void()>* currentCheckpoint();

/// Asks it. Errors: what the question throws.
void checkpoint();

} // namespace tamlo::platform
