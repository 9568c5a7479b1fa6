#include "app/shell/snapshots.h"

namespace tamlo {

namespace {

bool samePicture(const Frame& a, const Frame& b)
{
    return a.process == b.process && a.crop == b.crop && a.orient == b.orient;
}

Frame merged(const Frame& then, const Frame& now, bool linksFiles)
{
    Frame frame = then;
    if (!linksFiles) {
        frame.url = now.url;
        frame.relPath = now.relPath;
        frame.bookmark = now.bookmark;
        frame.fingerprint = now.fingerprint;
        frame.shot = now.shot;
    }
    if (samePicture(then, now)) {
        frame.exportedAt = now.exportedAt;
        frame.exportedName = now.exportedName;
    }
    return frame;
}

} // namespace

Project withPresentFiles(const Project& snapshot, const Project& present, bool linksFiles)
{
    Project out = snapshot;
    out.filter = present.filter;
    out.thumbSize = present.thumbSize;
    out.lastExportSet = present.lastExportSet;
    out.name = present.name;
    const auto places = present.frames.places();
    for (std::size_t i = 0; i < out.frames.size(); ++i) {
        const auto place = places.find(out.frames[i].id);
        if (place == places.end()) continue;
        const FrameRef& now = present.frames.ref(place->second);
        if (now == out.frames.ref(i)) continue; // shared: nothing has happened to it
        Frame frame = merged(out.frames[i], *now, linksFiles);
        if (!(frame == out.frames[i])) out.frames.replace(i, std::make_shared<const Frame>(std::move(frame)));
    }
    return out;
}

} // namespace tamlo
