// TilePixmaps: the tiles of the grid and the strip as they stand on the screen: scaled to the size they are
// shown at, and kept while there is room. Scaling takes a millisecond or two a tile, so a paint that passes
// many at once shows the rest roughly and asks to be repeated.
#pragma once

#include "app/project/frame.h"
#include "core/io/ready_image.h"

#include <QPixmap>

#include <list>
#include <memory>
#include <unordered_map>

namespace tamlo::ui {

class TilePixmaps {
public:
    using Image = std::shared_ptr<const ReadyImage>;

    /// A paint begins: from here on it may scale for so long.
    void beginPaint();
    /// The tile fitted into a square of `side` device pixels. isRough: there was no time for more.
    QPixmap fitted(const FrameID& id, const Image& image, int side, bool& isRough);
    /// As it was shown last at this size; null where that is not kept.
    QPixmap known(const FrameID& id, int side) const;
    void clear();

private:
    struct Kept {
        FrameID id;
        std::weak_ptr<const ReadyImage> image; ///< which it was made of
        int side;
        QPixmap pixmap;
    };

    std::list<Kept> kept_; ///< the last used first
    std::unordered_map<FrameID, std::list<Kept>::iterator> places_;
    std::int64_t bytes_ = 0;
    double until_ = 0;
};

} // namespace tamlo::ui
