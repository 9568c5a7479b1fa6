// Project: the document. An ordered roll of frames, each pointing at a source file, with marks, turns, crops
// and processes. No pixels: what a frame looks like follows from this document and its source. A plain value
// that is copied whole into undo steps and onto the thread that saves.
#pragma once

#include "app/project/roll.h"

#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ProfileStore;

enum class GridFilter { all, hideRejected, selected };
enum class SortMode { name, shot, manual };
enum class ExportSet { selected, notRejected, all };

/// A frame of this mark passes.
bool includes(GridFilter filter, Mark mark);
bool includes(ExportSet set, Mark mark);

struct Project {
    /// Name extension of its file.
    static constexpr std::string_view kExtension = ".tamlo";

    std::string name;
    Roll frames;
    GridFilter filter = GridFilter::all;
    double thumbSize = 200; ///< points
    ExportSet lastExportSet = ExportSet::selected;
    SortMode sortMode = SortMode::name;
    std::optional<std::string> cropGate; ///< what a crop does to the film area: "none" or "full"

    /// An empty roll with the name that a new project has in the language in force.
    static Project untitled();
    /// The document of a file's text, brought up to date from older forms.
    /// Errors: DecodeError that names the key ("frames[3].url").
    static Project decode(std::string_view text, const ProfileStore& store);
    /// The file's text: pretty-printed, keys sorted, the same for equal projects.
    std::string encoded() const;

    /// None when no frame has the id.
    FrameRef frame(const FrameID& id) const;
    std::vector<FrameRef> visibleFrames() const;
    std::vector<FrameRef> exportFrames(ExportSet set) const;
    std::size_t count(ExportSet set) const;

    struct MarkCounts {
        std::size_t selected = 0, rejected = 0;
    };
    MarkCounts counts() const;
    /// How many are originals.
    std::size_t framesWithoutProcess() const;
    /// Two digits at least: the place in the roll, counted from 1; empty for an unknown frame.
    std::string label(const FrameID& id) const;
    static std::string label(std::size_t place);

    bool operator==(const Project&) const = default;
};

} // namespace tamlo
