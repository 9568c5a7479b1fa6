// Work arenas: two renders at once that don't slow each other evenly. What the user looks at gets the worker
// pool's threads first; work that goes on behind it takes what is left.
#pragma once

#include <functional>

namespace tamlo::platform {

enum class WorkArena { view, background };

/// Runs `work`, on this thread as a rule, and returns when it is done; the loops of its runConcurrently use
/// the arena's threads. Errors: what `work` throws.
void runIn(WorkArena arena, const std::function<void()>& work);

} // namespace tamlo::platform
