#include "app/shell/graphics_probe.h"

#include "core/image/vector_set.h"
#include "core/pipeline/backend.h"
#include "platform/worker_pool.h"

namespace tamlo {

void GraphicsProbe::startGraphicsProbe()
{
    background_.run(
        [] {
            return Graphics{std::string(CPUBackend().name()), vectorSet(), platform::activeWorkers()};
        },
        [this](Graphics found) {
            graphics_ = std::move(found);
            for (const auto& take : std::exchange(waiting_, {})) take(*graphics_);
        });
}

void GraphicsProbe::awaitGraphics(std::function<void(const Graphics&)> take)
{
    graphics_ ? take(*graphics_) : waiting_.push_back(std::move(take));
}

} // namespace tamlo
