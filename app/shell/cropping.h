// Cropping: the session in which a frame's crop is made, over the picture as it was taken. Only when it ends
// does one value go into the frame, as one step.
#pragma once

#include "app/shell/crop_draft.h"
#include "core/profiles/options/film_format.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class Cropping {
public:
    using FrameIDs = std::vector<FrameID>;
    using Change = std::function<void(CropDraft&)>;

    explicit Cropping(AppModel& model) : model_(model) {}

    bool cropMode() const { return draft_.has_value(); }
    /// The crop being made; none outside of a session.
    const std::optional<CropDraft>& draft() const { return draft_; }

    /// There is a frame to crop, and no other process stands beside its own.
    bool cropKeyEnabled() const;
    /// Opens the frame under the cursor and begins; in a session, applies and ends it.
    void cropKey();
    /// On the develop screen. Returns false where the source's size can't be had.
    bool enterCropMode();
    void leaveCropMode();
    void applyCropAndExit();
    /// After the frame has changed under the session: what it says now.
    void refreshCropSession();
    /// A gesture of the session; nothing outside of one.
    void change(const Change& change);

    /// The session of a frame as it would begin; none where its source's size can't be had.
    std::optional<CropDraft> draftOf(const Frame& frame) const;
    /// Stores crops as one step; returns how many frames changed.
    std::size_t setCrops(const FrameIDs& ids, const std::function<std::optional<Crop>(const Frame&)>& cropOf);
    std::size_t setCrop(const FrameID& id, const std::optional<Crop>& crop);
    /// Removes stored crops.
    std::size_t resetCrops(const FrameIDs& ids);
    void resetCropOfFrame(const FrameID& id) { resetCrops({id}); }
    void resetCropOfTargets();

    /// The project's rule on what a crop takes of the film: a part of the frame, or all of it. One step.
    void setTakesPart(bool takesPart);
    bool takesPart() const;

    /// Of the film's window over a frame: long over short side; none for a custom size.
    std::optional<double> cropFormatAspect(const Frame& frame) const;
    /// Of the picture on an instant card.
    std::optional<double> cropCardWindowAspect(const Frame& frame) const;

    // What stands beside the rectangle, in the language in force.

    /// The film's window over a frame: the name of its size and its millimetres, or the card of an instant
    /// film. Empty where the film can't be loaded.
    std::string frameWindowLabel(const Frame& frame) const;
    /// The same for the crop being made; while nothing is cut, also that this is all, and its ratio.
    std::string windowLabel() const;
    /// Why the ratio of the format is not offered for a frame; none where it is.
    std::optional<std::string> formatHint(const Frame& frame) const;

private:
    std::optional<Formats::FormatName> formatName(const Frame& frame) const;

    AppModel& model_;
    std::optional<CropDraft> draft_;
    FrameID frame_; ///< whose it is
};

} // namespace tamlo
