#include "ui/canvas/picture_layer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo::ui {
namespace {

/// Tiles this near to the visible part are made ahead of a hand that pans.
constexpr int kAheadPx = kTilePx;

quint64 nextID()
{
    static quint64 last = 0;
    return ++last;
}

quint64 indexOf(int x, int y)
{
    return (quint64(quint32(y)) << 32) | quint32(x);
}

template <typename F>
void eachTile(const QRect& tiles, F&& use)
{
    for (int y = tiles.top(); y <= tiles.bottom(); ++y)
        for (int x = tiles.left(); x <= tiles.right(); ++x) use(x, y);
}

/// Where a share of the shown picture comes to lie: whole pixels, so that neighbours meet.
int placed(int start, int side, qint64 part, qint64 whole)
{
    return start +
           static_cast<int>(std::llround(static_cast<double>(part) * side / static_cast<double>(whole)));
}

} // namespace

const QImage* PictureLayer::Seen::tile(int x, int y) const
{
    const auto found = tiles.find(indexOf(x, y));
    return found == tiles.end() ? nullptr : &found->second;
}

PictureLayer::PictureLayer(TileCache& cache) : cache_(cache)
{
    maker_.onTiles = [this](const std::vector<TileMaker::Made>& made) { take(made); };
    maker_.onStandIn = [this](const TileKey& key, std::shared_ptr<const StandIn> standIn) {
        takeStandIn(key, std::move(standIn));
    };
}

void PictureLayer::setPicture(Image image, Size full)
{
    if (image == latest_.image && (full == Size() || isNearly(full, latest_.shape))) return;
    latest_.image = std::move(image);
    latest_.id = nextID();
    if (!latest_.image) {
        latest_.shape = {};
        now_ = coming_ = {};
        maker_.setWanted({});
        Q_EMIT changed();
        return;
    }
    if (latest_.image->alpha != ReadyImage::Alpha::skip)
        latest_.image = std::make_shared<const ReadyImage>(ImageWriter::flattenOnWhite(*latest_.image));
    const Size own = latest_.pixels();
    if (full != Size() && !isNearly(full, latest_.shape))
        latest_.shape = full;
    else if (full == Size() && !isSameShape(latest_.shape, own))
        latest_.shape = own;
}

void PictureLayer::setColor(ScreenColor color)
{
    latest_.color = std::move(color);
}

PictureLayer::Seen PictureLayer::wanted() const
{
    Seen seen = latest_;
    seen.shown = placeOf(seen).shown();
    return seen;
}

CanvasPlace PictureLayer::placeOf(const Seen& seen) const
{
    CanvasPlace place = place_;
    place.shape = seen.shape;
    place.pixels = seen.pixels();
    return place;
}

QRect PictureLayer::visibleTiles(const Seen& seen, int beyondPx) const
{
    const QRect port = port_.adjusted(-beyondPx, -beyondPx, beyondPx, beyondPx);
    return tilesUnder(seen.shown, port.translated(-placeOf(seen).rect().topLeft()));
}

bool PictureLayer::gather(Seen& seen, const QRect& tiles)
{
    const bool isCopy = !seen.color.transform && seen.shown == seen.pixels();
    bool isAll = true;
    eachTile(tiles, [&](int x, int y) {
        if (seen.tile(x, y)) return;
        QImage tile = cache_.find(seen.key(x, y));
        if (tile.isNull() && isCopy) {
            tile = makeTile(*seen.image, seen.shown, tilePart(seen.shown, x, y), nullptr);
            cache_.put(seen.key(x, y), tile);
        }
        if (tile.isNull())
            isAll = false;
        else
            seen.tiles[indexOf(x, y)] = tile;
    });
    return isAll;
}

bool PictureLayer::isWhole(const Seen& seen, const QRect& tiles) const
{
    bool isWhole = true;
    eachTile(tiles, [&](int x, int y) { isWhole = isWhole && seen.tile(x, y); });
    return isWhole;
}

void PictureLayer::ask(const Seen& seen, const QRect& tiles, const QRect& beyond)
{
    std::vector<TileMaker::Work> work;
    const auto add = [&](int x, int y) {
        if (!seen.tile(x, y)) work.push_back({seen.key(x, y), seen.image, seen.color.transform});
    };
    eachTile(tiles, add);
    eachTile(beyond, [&](int x, int y) {
        if (!tiles.contains(x, y)) add(x, y);
    });
    maker_.setWanted(std::move(work));
}

void PictureLayer::aim(const CanvasPlace& place, const QRect& port, bool isMoving)
{
    place_ = place;
    port_ = port;
    if (!latest_.image || placeOf(latest_).isEmpty() || port.isEmpty()) return;
    Seen want = wanted();
    if (want.isSameAs(now_)) {
        coming_ = {};
        const QRect visible = visibleTiles(now_), beyond = visibleTiles(now_, kAheadPx);
        std::erase_if(now_.tiles, [&, far = visibleTiles(now_, 2 * kAheadPx)](const auto& entry) {
            return !far.contains(int(quint32(entry.first)), int(entry.first >> 32));
        });
        gather(now_, beyond);
        return ask(now_, visible, beyond);
    }
    if (isMoving && now_.image && want.shown != now_.shown) return;
    // A picture that is nearly there is shown, however soon the next one has come.
    const bool goesOn = coming_.image && coming_.shown == want.shown && coming_.color == want.color;
    if (!goesOn) coming_ = std::move(want);
    keepComing();
}

void PictureLayer::keepComing()
{
    const QRect visible = visibleTiles(coming_);
    if (gather(coming_, visible)) return adopt(std::exchange(coming_, {}));
    ask(coming_, visible, {});
}

void PictureLayer::adopt(Seen seen)
{
    // The old stand-in serves until there is one of the new picture.
    const bool isKept = now_.standIn && isSameShape(now_.shape, seen.shape);
    const bool isOwn = isKept && now_.id == seen.id && now_.color == seen.color;
    if (isKept) seen.standIn = now_.standIn;
    now_ = std::move(seen);
    if (!isOwn) maker_.wantStandIn({now_.key(-1, -1), now_.image, now_.color.transform});
    aim(place_, port_, false);
    Q_EMIT changed();
}

void PictureLayer::take(const std::vector<TileMaker::Made>& made)
{
    bool isOfNow = false, isOfComing = false;
    for (const TileMaker::Made& one : made) {
        cache_.put(one.key, one.tile);
        for (Seen* seen : {&now_, &coming_}) {
            if (!seen->image || !(one.key == seen->key(one.key.x, one.key.y))) continue;
            seen->tiles[indexOf(one.key.x, one.key.y)] = one.tile;
            (seen == &now_ ? isOfNow : isOfComing) = true;
        }
    }
    if (isOfComing && isWhole(coming_, visibleTiles(coming_))) return adopt(std::exchange(coming_, {}));
    if (isOfNow) Q_EMIT changed();
}

void PictureLayer::takeStandIn(const TileKey& key, std::shared_ptr<const StandIn> standIn)
{
    if (key.picture != now_.id || key.color != now_.color.serial) return;
    now_.standIn = std::move(standIn);
    Q_EMIT changed();
}

bool PictureLayer::isExact() const
{
    return now_.image && wanted().isSameAs(now_) && isWhole(now_, visibleTiles(now_));
}

QRect PictureLayer::covered() const
{
    if (!now_.image || !(now_.standIn || isWhole(now_, visibleTiles(now_)))) return {};
    return placeOf(now_).rect() & port_;
}

void PictureLayer::paint(QPainter& painter, bool isMoving) const
{
    if (!now_.image || now_.shown.width < 1) return;
    const QRect at = placeOf(now_).rect();
    const QRect seen = at & port_;
    if (seen.isEmpty()) return;
    painter.save();
    painter.setClipRect(port_, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !isMoving);
    const auto share = [](int offset, int side, qint64 whole) {
        return static_cast<int>(static_cast<double>(offset) * static_cast<double>(whole) / side);
    };
    const QRect part(QPoint(share(seen.left() - at.left(), at.width(), now_.shown.width),
                            share(seen.top() - at.top(), at.height(), now_.shown.height)),
                     QPoint(share(seen.right() - at.left(), at.width(), now_.shown.width),
                            share(seen.bottom() - at.top(), at.height(), now_.shown.height)));
    eachTile(tilesUnder(now_.shown, part), [&](int x, int y) { paintTile(painter, at, x, y); });
    painter.restore();
}

void PictureLayer::paintTile(QPainter& painter, const QRect& at, int x, int y) const
{
    const QRect part = tilePart(now_.shown, x, y);
    const int left = placed(at.left(), at.width(), part.left(), now_.shown.width);
    const int top = placed(at.top(), at.height(), part.top(), now_.shown.height);
    const int right = placed(at.left(), at.width(), part.left() + part.width(), now_.shown.width);
    const int bottom = placed(at.top(), at.height(), part.top() + part.height(), now_.shown.height);
    const QRect target(left, top, right - left, bottom - top);
    if (const QImage* tile = now_.tile(x, y)) {
        if (target.size() == tile->size())
            painter.drawImage(target.topLeft(), *tile);
        else
            painter.drawImage(target, *tile);
    } else if (now_.standIn) {
        const QSizeF area = now_.standIn->area;
        const double w = static_cast<double>(now_.shown.width), h = static_cast<double>(now_.shown.height);
        painter.drawImage(QRectF(target), now_.standIn->image,
                          QRectF(part.x() / w * area.width(), part.y() / h * area.height(),
                                 part.width() / w * area.width(), part.height() / h * area.height()));
    }
}

} // namespace tamlo::ui
