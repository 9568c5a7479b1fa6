#include "ui/screens/tile_pixmaps.h"

#include <QImage>

#include <algorithm>
#include <chrono>

namespace tamlo::ui {
namespace {

constexpr std::int64_t kMostBytes = 96LL << 20;
/// Of one paint; taste: leaves the rest of a 60 Hz frame to painting.
constexpr double kScaleSeconds = 0.007;

double seconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::int64_t bytesOf(const QPixmap& pixmap)
{
    return std::int64_t{pixmap.width()} * pixmap.height() * 4;
}

} // namespace

void TilePixmaps::beginPaint()
{
    until_ = seconds() + kScaleSeconds;
}

QPixmap TilePixmaps::fitted(const FrameID& id, const Image& image, int side, bool& isRough)
{
    isRough = false;
    const auto found = places_.find(id);
    if (found != places_.end()) {
        const auto at = found->second;
        if (at->image.lock() == image && at->side == side) {
            kept_.splice(kept_.begin(), kept_, at);
            return at->pixmap;
        }
    }
    const QImage whole(image->rgba.data(), static_cast<int>(image->width), static_cast<int>(image->height),
                       static_cast<qsizetype>(image->width) * 4, QImage::Format_RGBX8888);
    isRough = seconds() > until_;
    const QSize size = whole.size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
    if (isRough) return QPixmap::fromImage(whole.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    QPixmap pixmap = QPixmap::fromImage(whole.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                            .convertToFormat(QImage::Format_RGB32));
    if (found != places_.end()) {
        bytes_ -= bytesOf(found->second->pixmap);
        kept_.erase(found->second);
    }
    kept_.push_front({id, image, side, pixmap});
    places_[id] = kept_.begin();
    bytes_ += bytesOf(pixmap);
    while (bytes_ > kMostBytes && kept_.size() > 1) {
        bytes_ -= bytesOf(kept_.back().pixmap);
        places_.erase(kept_.back().id);
        kept_.pop_back();
    }
    return pixmap;
}

QPixmap TilePixmaps::known(const FrameID& id, int side) const
{
    const auto found = places_.find(id);
    return found != places_.end() && found->second->side == side ? found->second->pixmap : QPixmap();
}

void TilePixmaps::clear()
{
    kept_.clear();
    places_.clear();
    bytes_ = 0;
}

} // namespace tamlo::ui
