#include "ui/canvas/tiles.h"

#include <algorithm>
#include <span>

namespace tamlo::ui {
namespace {

constexpr std::int64_t kStandInLongPx = 2048;

QImage inScreenColors(const std::uint8_t* rgba, int width, int height,
                      const platform::DisplayTransform* transform)
{
    QImage out(width, height, QImage::Format_RGB32);
    if (transform) {
        transform->convert(rgba, out.bits(), std::int64_t{width} * height); // rows of 32 bits have no gaps
        return out;
    }
    for (int y = 0; y < height; ++y) {
        auto* const to = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < width; ++x, rgba += 4) to[x] = qRgb(rgba[0], rgba[1], rgba[2]);
    }
    return out;
}

} // namespace

QRect tilePart(Size shown, int x, int y)
{
    const QRect whole(0, 0, static_cast<int>(shown.width), static_cast<int>(shown.height));
    return QRect(x * kTilePx, y * kTilePx, kTilePx, kTilePx) & whole;
}

QRect tilesUnder(Size shown, const QRect& part)
{
    const QRect inside = part & QRect(0, 0, static_cast<int>(shown.width), static_cast<int>(shown.height));
    if (inside.isEmpty()) return {};
    return {QPoint(inside.left() / kTilePx, inside.top() / kTilePx),
            QPoint(inside.right() / kTilePx, inside.bottom() / kTilePx)};
}

QImage makeTile(const ReadyImage& picture, Size shown, const QRect& part,
                const platform::DisplayTransform* transform)
{
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(part.width()) * part.height() * 4);
    drawViewWindow(picture, shown, {part.x(), part.y(), part.width(), part.height()}, rgba);
    return inScreenColors(rgba.data(), part.width(), part.height(), transform);
}

std::shared_ptr<const StandIn> makeStandIn(std::shared_ptr<const ReadyImage> picture,
                                           const platform::DisplayTransform* transform)
{
    QSizeF area(static_cast<double>(picture->width), static_cast<double>(picture->height));
    while (std::max(picture->width, picture->height) > kStandInLongPx) {
        picture = std::make_shared<const ReadyImage>(halved(*picture));
        area /= 2;
    }
    return std::make_shared<const StandIn>(
        StandIn{inScreenColors(picture->rgba.data(), static_cast<int>(picture->width),
                               static_cast<int>(picture->height), transform),
                area});
}

std::size_t TileCache::Hash::operator()(const TileKey& key) const noexcept
{
    std::size_t hash = key.picture;
    for (const auto part : {std::size_t(key.shown.width), std::size_t(key.shown.height), std::size_t(key.x),
                            std::size_t(key.y), std::size_t(key.color)})
        hash = hash * 1'000'003 + part;
    return hash;
}

QImage TileCache::find(const TileKey& key)
{
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) return {};
    byUse_.splice(byUse_.begin(), byUse_, found->second);
    return found->second->tile;
}

void TileCache::put(const TileKey& key, const QImage& tile)
{
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
        bytes_ -= found->second->tile.sizeInBytes();
        byUse_.erase(found->second);
    }
    byUse_.push_front({key, tile});
    byKey_[key] = byUse_.begin();
    bytes_ += tile.sizeInBytes();
    while (bytes_ > mostBytes_ && byUse_.size() > 1) {
        bytes_ -= byUse_.back().tile.sizeInBytes();
        byKey_.erase(byUse_.back().key);
        byUse_.pop_back();
    }
}

} // namespace tamlo::ui
