// FrameViews: what an edit asks of whatever shows the frames. A session without a screen shows nothing, and
// takes this struct as it is.
#pragma once

#include "app/project/frame.h"
#include "core/io/ready_image.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tamlo {

struct FrameViews {
    virtual ~FrameViews() = default;

    /// These frames look different now: their tiles are to be rendered.
    virtual void renderThumbs(const std::vector<FrameID>&) {}
    virtual void renderAllThumbs() {}
    /// The frame on the screen is to be rendered, its first tier after a delay.
    virtual void renderCurrent(double /*delaySeconds*/) {}
    virtual void cancelPendingRenders() {}
    /// Another process is to be shown beside that of the frame on the screen, or no longer.
    virtual void renderAB(const ProcessSettings&) {}
    virtual void dropAB() {}
    /// The frame on the screen is looked at from nearer or farther: so many times its fit.
    virtual void setZoom(double /*zoom*/) {}
    /// The frame's source is to be read, or forgotten.
    virtual void load(const FrameID&) {}
    virtual void evict(const FrameID&) {}
    /// A frame was opened on the develop screen, or the grid has come back.
    virtual void openedFrame(const FrameID&) {}
    virtual void backToGrid() {}
    /// The open project has a file from now on, or is about to be left.
    virtual void openedProject() {}
    virtual void closingProject() {}
    /// All that is known of the frames of a project belongs to another one now.
    virtual void clear() {}
    /// Tiles show untouched pictures.
    virtual bool showsOriginals() const { return false; }
    /// A tile for a sheet: on the disk, or what the grid shows where it is not kept there.
    struct SheetTile {
        enum class State { ready, coming, none };
        /// From any thread; null where it can't be read after all.
        using Read = std::function<std::shared_ptr<const ReadyImage>()>;
        State state = State::none;
        Read read = {};
    };
    virtual SheetTile sheetTile(const FrameID&) { return {}; }
    /// Goes up with each picture that comes onto the develop screen.
    virtual std::int64_t pictureGen() const { return 0; }
};

} // namespace tamlo
