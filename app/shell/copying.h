// Copying: settings and blocks from frame to frame, from project to project and to a text and back.
#pragma once

#include "app/project/frame.h"

#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class Copying {
public:
    using FrameIDs = std::vector<FrameID>;

    explicit Copying(AppModel& model) : model_(model) {}

    /// The envelope of a frame's settings; of fresh ones for an original.
    std::string settingsEnvelope(const FrameID& id) const;
    /// The envelope of some blocks of them.
    std::string blockEnvelope(const FrameID& id, const std::string& title,
                              const PresetSchema::Blocks& blocks) const;

    /// What the rack shows of the current frame, or some blocks of it, to the clipboard.
    void copySettings();
    void copyBlock(const std::string& title, const PresetSchema::Blocks& blocks);
    bool hasSettings() const;

    struct Pasted {
        std::size_t frames = 0; ///< that changed
        std::vector<std::string> notes;
    };
    /// Pastes an envelope of either sort into frames, as one step; none when the text is no envelope.
    std::optional<Pasted> paste(const std::string& text, const FrameIDs& ids);
    /// The clipboard's settings into the targets of an action, or into side B while the rack edits it; the
    /// same with its block.
    void pasteSettings();
    void pasteBlock();

private:
    Pasted give(const ProcessSettings& process, const FrameIDs& ids);
    Pasted stamp(const std::string& title, const Preset& preset, const FrameIDs& ids);

    AppModel& model_;
};

} // namespace tamlo
