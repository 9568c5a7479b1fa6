#include "app/shell/previews.h"

#include "platform/memory.h"

namespace tamlo {

Previews::Previews(Config config)
    : loop(config.loop),
      store(config.store),
      build(std::move(config.build)),
      cache({std::move(config.folder), [&at = config.loop] { return at.date(); }, config.registry,
             [this, weak = std::weak_ptr<bool>(alive)] {
                 loop.post([this, weak] {
                     if (!weak.expired() && onGrown) onGrown();
                 });
             }}),
      thumbs(cache),
      calibrations(cache.directory() / "calibrations", build),
      isScripted(static_cast<bool>(config.render)),
      frames(loop, &cache, config.memoryBytes > 0 ? config.memoryBytes : platform::memoryLimitBytes(),
             std::move(config.decoders)),
      renderer(loop, config.render ? std::move(config.render) : viewRender(config.store, &calibrations))
{}

} // namespace tamlo
