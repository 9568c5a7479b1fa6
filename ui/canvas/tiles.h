// Tiles: the finished pixels of a shown picture, in squares of the screen's own pixels. What has been made is
// kept, so that panning moves finished squares and coming back to a size costs nothing.
#pragma once

#include "app/preview/view_window.h"
#include "platform/display_transform.h"

#include <QImage>
#include <QRect>

#include <list>
#include <memory>
#include <unordered_map>

namespace tamlo::ui {

inline constexpr int kTilePx = 256; ///< device pixels

/// What a screen makes of colours; the serial names it among all that a program has met.
struct ScreenColor {
    std::shared_ptr<const platform::DisplayTransform> transform; ///< null: sRGB
    quint32 serial = 0;
    bool operator==(const ScreenColor& other) const { return serial == other.serial; }
};

struct TileKey {
    quint64 picture = 0;
    Size shown;
    int x = 0, y = 0; ///< column and row of squares
    quint32 color = 0;
    bool operator==(const TileKey&) const = default;
};

/// Part of the shown picture that a tile covers; those of the last column and row are smaller.
QRect tilePart(Size shown, int x, int y);
/// Columns and rows of the tiles that a part of the shown picture touches; empty for an empty part.
QRect tilesUnder(Size shown, const QRect& part);

/// Pixels of a tile in the colours of the screen. Any thread.
QImage makeTile(const ReadyImage& picture, Size shown, const QRect& part,
                const platform::DisplayTransform* transform);

/// A small whole picture in the colours of the screen, drawn wherever a tile is still to come.
struct StandIn {
    QImage image;
    QSizeF area; ///< pixels of `image` that the picture covers, from its top left corner
};
/// Halved until it is no longer than a screen needs. Any thread.
std::shared_ptr<const StandIn> makeStandIn(std::shared_ptr<const ReadyImage> picture,
                                           const platform::DisplayTransform* transform);

/// The least recently asked for goes first. Main thread.
class TileCache {
public:
    static constexpr qint64 kMostBytes = qint64(128) << 20;

    explicit TileCache(qint64 mostBytes = kMostBytes) : mostBytes_(mostBytes) {}

    /// Null where there is none.
    QImage find(const TileKey& key);
    void put(const TileKey& key, const QImage& tile);
    qint64 bytes() const { return bytes_; }

private:
    struct Hash {
        std::size_t operator()(const TileKey& key) const noexcept;
    };
    struct Entry {
        TileKey key;
        QImage tile;
    };

    qint64 mostBytes_, bytes_ = 0;
    std::list<Entry> byUse_; ///< last used first
    std::unordered_map<TileKey, std::list<Entry>::iterator, Hash> byKey_;
};

} // namespace tamlo::ui
