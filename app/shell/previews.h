// Previews: what a session shows pictures with: the two caches, the decoded sources and the renderer, in one
// place and in the order in which they stand on each other.
#pragma once

#include "app/preview/calibration_cache.h"
#include "app/preview/frame_store.h"
#include "app/preview/keyed_renderer.h"
#include "app/preview/thumb_cache.h"

#include <optional>
#include <string>

namespace tamlo {

class ProfileStore;

struct Previews {
    struct Config {
        platform::MainLoop& loop;
        ProfileStore& store;
        const ProjectRegistry* registry = nullptr;
        std::filesystem::path folder = ProxyCache::defaultFolder();
        std::string build = "dev";    ///< of the program
        std::int64_t memoryBytes = 0; ///< 0: what this process may use
        FrameStore::Decoders decoders = {};
        KeyedRenderer::Render render = {}; ///< none: the real one
    };

    explicit Previews(Config config);

    platform::MainLoop& loop;
    ProfileStore& store;
    std::string build;
    std::function<void()> onGrown; ///< the cache wants to be trimmed; on the main thread
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
    ProxyCache cache;
    ThumbCache thumbs;
    CalibrationCache calibrations;
    bool isScripted; ///< renders are the caller's: there is nothing to make ready for them
    FrameStore frames;
    KeyedRenderer renderer;
};

} // namespace tamlo
