// CropSource: the picture that a crop is made on: the frame's source as it was taken, whole, turned and
// mirrored as it is shown.
#pragma once

#include "app/preview/keyed_renderer.h"
#include "app/project/frame.h"

#include <functional>
#include <memory>
#include <optional>

namespace tamlo {

class AppModel;
class LiveViews;

class CropSource {
public:
    using Image = std::shared_ptr<const ReadyImage>;

    /// Both outlive this. changed: there is another picture, on the main thread.
    CropSource(const AppModel& model, LiveViews& views, std::function<void()> changed);

    /// Sees to it that the picture of the frame under the cursor is there as soon as its source is. To be
    /// called again when either may have changed.
    void refresh();
    /// Null until it is there.
    const Image& image() const { return image_; }

private:
    const AppModel& model_;
    LiveViews& views_;
    std::function<void()> changed_;
    std::optional<FrameID> frame_; ///< whose picture is there or asked for
    Orient orient_;
    Image image_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tamlo
