// GraphicsProbe: what renders pictures on this machine, found out beside the main thread when the program
// starts.
#pragma once

#include "app/shell/background.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

struct Graphics {
    std::string backend; ///< its name
    std::string vectors; ///< its vector instructions
    int threads = 0;
};

class GraphicsProbe {
public:
    explicit GraphicsProbe(platform::MainLoop& loop) : background_(loop, "tamlo.probe") {}

    void startGraphicsProbe();
    /// Told at once where it is known, else when it is.
    void awaitGraphics(std::function<void(const Graphics&)> take);
    const std::optional<Graphics>& graphics() const { return graphics_; }

private:
    std::optional<Graphics> graphics_;
    std::vector<std::function<void(const Graphics&)>> waiting_;
    Background background_;
};

} // namespace tamlo
