#include "platform/checkpoint.h"

namespace tamlo::platform {
namespace {

thread_local const std::function<void()>* current = nullptr;

} // namespace

CheckpointScope::CheckpointScope(const std::function<void()>* ask) : outer_(current)
{
    current = ask;
}

CheckpointScope::~CheckpointScope()
{
    current = outer_;
}

const std::function<void()>* currentCheckpoint()
{
    return current;
}

void checkpoint()
{
    if (current) (*current)();
}

} // namespace tamlo::platform
