// Rack: the knobs. A knob that is turned on the develop screen, a choice that is made for many frames, a
// block that goes back to neutral.
#pragma once

#include "app/project/frame.h"
#include "app/shell/format_follow.h"
#include "core/profiles/options/seed_stream.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;
struct Knob;

class Rack {
public:
    using FrameIDs = std::vector<FrameID>;
    using Change = std::function<void(ProcessSettings&)>;

    explicit Rack(AppModel& model) : model_(model) {}

    /// What the rack shows: the process of the frame on the develop screen, else a fresh one.
    ProcessSettings rackSettings() const;
    /// A knob was turned: one step a gesture. Only on the develop screen; on side B of two, without a step.
    void setRackSettings(const ProcessSettings& to);
    /// Settings for the frame on the develop screen as they stand, in a step named by what they change, or as
    /// said.
    void takeSettings(const ProcessSettings& to, const std::optional<std::string>& name = std::nullopt);
    /// Puts one knob of what the rack shows back to its default, as a step of its own.
    void toDefault(const Knob& knob);

    /// Gives the frame on the develop screen a process of its own to start from, where it has none.
    void startPrinting();
    /// What a preset would make of the rack's settings, were it applied now: what has changed since is
    /// counted from there. Fresh settings where none was.
    ProcessSettings recipe() const { return recipeOf(rackSettings()); }
    ProcessSettings recipeOf(const ProcessSettings& settings) const;

    /// Changes the process of frames as one step; a frame without one starts from a fresh one. Returns how
    /// many frames changed.
    std::size_t change(const FrameIDs& ids, const Change& change);
    /// Puts a block back to neutral on frames that have a process.
    std::size_t resetBlock(const FrameIDs& ids, const std::string& title, const PresetSchema::Blocks& blocks);
    /// Puts a block of what the rack edits back to neutral.
    void resetRackBlock(const std::string& title, const PresetSchema::Blocks& blocks);
    /// Rolls one source of chance anew; returns how many frames changed.
    std::size_t reroll(const FrameIDs& ids, Seeds::SeedStream stream);
    /// The same for what the rack edits.
    void rerollRack(Seeds::SeedStream stream);
    /// Makes originals of frames.
    std::size_t resetSettings(const FrameIDs& ids);
    /// The same of the targets; side B of two becomes a fresh process.
    void resetSettingsOfTargets();

    /// Gives a frame a process that something else than a knob has made; its crop follows the format.
    void give(Frame& frame, Shared<ProcessSettings> process, Refit refit = Refit::automatic) const;
    WindowOf window() const;

private:
    ProcessSettings turned(const ProcessSettings& from, ProcessSettings to) const;

    AppModel& model_;
};

} // namespace tamlo
