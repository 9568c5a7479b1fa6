// RackVisibility: which knobs stand on the rack, by film and paper. A graded paper has no contrast knob, a
// plate no paper white, an instant film no choice of format.
#pragma once

#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/presets/process_settings.h"

#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class ProfileStore;

struct RackVisibility {
    FilmProfile film;
    std::optional<PaperProfile> paper; ///< the one that the print is really on
    std::optional<LensProfile> lens;
    std::string lensID;
    RenderOptions options;

    /// None where the film can't be loaded; a paper or lens that can't stays absent.
    static std::optional<RackVisibility> of(const ProcessSettings& settings, const ProfileStore& store);

    /// The print is the plate itself.
    bool paperIsPlate() const;
    /// The grade knob is offered.
    bool contrast() const;
    /// A note on graded paper stands in its place.
    bool gradedNote() const;
    /// The knobs of black and white are offered.
    bool blackWhite() const;
    /// The black field of the border is.
    bool blackField() const;
    bool emboss() const;
    bool formatPicker() const;
    /// The format in force that the film isn't made in; it stays in the list.
    std::optional<std::string> fugitiveFormat() const;
    /// The plate's size stands in place of a size knob.
    bool plateSizeNote() const { return paperIsPlate(); }
    bool isSoftFocus() const;

    /// Formats that the film is made in, as the tables name them.
    std::vector<std::string> allowedFormats() const;
};

/// Positions of the white balance: "asshot" of a RAW file, "film", and "custom" for a film in colour that is
/// not balanced for daylight. `stored` stays in the list, offered or not.
std::vector<std::string> wbPositions(bool isRAW, const FilmProfile& film, const std::string& stored = "film");

} // namespace tamlo
