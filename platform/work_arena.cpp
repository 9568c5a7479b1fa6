#include "platform/work_arena.h"

#include "platform/checkpoint.h"

#include <oneapi/tbb/task_arena.h>

namespace tamlo::platform {
namespace {

tbb::task_arena& arenaOf(WorkArena arena)
{
    using Priority = tbb::task_arena::priority;
    static tbb::task_arena view(tbb::task_arena::automatic, 1, Priority::high);
    static tbb::task_arena background(tbb::task_arena::automatic, 1, Priority::low);
    return arena == WorkArena::view ? view : background;
}

} // namespace

void runIn(WorkArena arena, const std::function<void()>& work)
{
    // An arena with no room for this thread runs the work on one of its own.
    const std::function<void()>* const question = currentCheckpoint();
    arenaOf(arena).execute([&] {
        const CheckpointScope scope(question);
        work();
    });
}

} // namespace tamlo::platform
