// PictureLayer: one picture on the canvas: what of it stands on screen, what is being made to take its place,
// and how it is drawn. Another picture, another size or another screen's colours come in only when all of the
// visible part is there, so that nothing ever goes blank or half one, half the other; until then what stands
// is drawn where the picture lies now.
#pragma once

#include "ui/canvas/canvas_place.h"
#include "ui/canvas/tile_maker.h"

#include <QObject>
#include <QPainter>

#include <memory>
#include <unordered_map>

namespace tamlo::ui {

class PictureLayer : public QObject {
    Q_OBJECT

public:
    using Image = std::shared_ptr<const ReadyImage>;

    /// cache: of all layers of a view; outlives this.
    explicit PictureLayer(TileCache& cache);

    /// Null: there is none. full: size of the same picture in all its pixels; empty: the image's own, or that
    /// of the picture before where they are of one shape.
    void setPicture(Image image, Size full);
    const Image& picture() const { return latest_.image; }
    /// What is fitted; empty without a picture.
    Size shape() const { return latest_.shape; }
    Size pixels() const { return latest_.pixels(); }
    void setColor(ScreenColor color);

    /// Where the picture lies from now on. place.shape and pixels are not looked at. port: device pixels of
    /// the panel that show this picture, from the panel's corner. isMoving: further steps follow at once, and
    /// what can't be had at once may wait for the last.
    void aim(const CanvasPlace& place, const QRect& port, bool isMoving);
    /// Draws into a painter of device pixels whose origin is the panel's corner. isMoving: as for aim.
    void paint(QPainter& painter, bool isMoving) const;

    /// Device pixels of the panel on which paint leaves nothing bare.
    QRect covered() const;
    /// All that the port shows stands there exactly.
    bool isExact() const;

Q_SIGNALS:
    void changed();

private:
    /// A picture at a size in a screen's colours.
    struct Seen {
        quint64 id = 0;
        Image image;
        Size shape, shown;
        ScreenColor color;
        std::unordered_map<quint64, QImage> tiles; ///< by column and row
        std::shared_ptr<const StandIn> standIn;

        bool isSameAs(const Seen& other) const
        {
            return id == other.id && shown == other.shown && color == other.color;
        }
        Size pixels() const { return image ? Size{image->width, image->height} : Size(); }
        TileKey key(int x, int y) const { return {id, shown, x, y, color.serial}; }
        const QImage* tile(int x, int y) const;
    };

    Seen wanted() const;
    CanvasPlace placeOf(const Seen& seen) const;
    QRect visibleTiles(const Seen& seen, int beyondPx = 0) const;
    /// What is at hand, or costs nothing to make; returns whether that is all of the tiles.
    bool gather(Seen& seen, const QRect& tiles);
    bool isWhole(const Seen& seen, const QRect& tiles) const;
    void ask(const Seen& seen, const QRect& tiles, const QRect& beyond);
    void keepComing();
    void adopt(Seen seen);
    void take(const std::vector<TileMaker::Made>& made);
    void takeStandIn(const TileKey& key, std::shared_ptr<const StandIn> standIn);
    void paintTile(QPainter& painter, const QRect& at, int x, int y) const;

    Seen latest_; ///< only its picture and colours
    Seen now_, coming_;
    CanvasPlace place_;
    QRect port_;
    TileCache& cache_;
    TileMaker maker_; ///< last: it ends before the rest goes
};

} // namespace tamlo::ui
