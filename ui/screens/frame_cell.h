// frameCell: one frame as the grid and the strip draw it: its tile, its mark, what is wrong with its file,
// and its caption.
#pragma once

#include "app/project/file_state.h"
#include "app/project/frame.h"
#include "ui/screens/tile_pixmaps.h"

#include <QRect>
#include <QString>

class QPainter;
class QPalette;

namespace tamlo {
class ProfileStore;
}

namespace tamlo::ui {

struct FrameCell {
    const Frame* frame = nullptr;
    QString label; ///< its number
    TilePixmaps::Image tile;
    FileState state = FileState::ok;
    bool isSelected = false, isCursor = false, hasFocus = false, isStale = false;
};

/// tile: the square of the picture; caption: the line below it, empty for none. Returns whether the tile came
/// out roughly and wants another paint.
bool paintFrameCell(QPainter& painter, TilePixmaps& pixmaps, const FrameCell& cell, const QRect& tile,
                    const QRect& caption, const QPalette& palette);

/// What a tooltip and an assistive program read: number, name, mark, state, shot and process.
QString describe(const Frame& frame, const QString& label, FileState state, const ProfileStore& store);

} // namespace tamlo::ui
