#include "core/image/cancellation.h"

#include "core/image/tamlo_error.h"

#include <utility>

namespace tamlo {
namespace {

std::function<void()> throwing(std::function<bool()> shouldCancel)
{
    if (!shouldCancel) return {};
    return [ask = std::move(shouldCancel)] {
        if (ask()) throw TamloError::cancelled();
    };
}

} // namespace

CancellationScope::CancellationScope(std::function<bool()> shouldCancel)
    : ask_(throwing(std::move(shouldCancel))), scope_(ask_ ? &ask_ : platform::currentCheckpoint())
{}

void cancellationPoint()
{
    platform::checkpoint();
}

} // namespace tamlo
