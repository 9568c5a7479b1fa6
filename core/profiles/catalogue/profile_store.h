// ProfileStore: the catalogue of films, lenses, papers, filters and presets: a set carried inside the
// program, and what the user adds below his own root. A profile is looked up in the override folder (for
// development), then in the carried set, then among the user's: a user's profile never hides one of the
// program's. With presets it is the other way round: a user's preset takes the place of a carried one of its
// id. Reading is safe from any thread; files are written from one.
#pragma once

#include "core/profiles/catalogue/flag_cache.h"
#include "core/profiles/catalogue/preset_library.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/filter_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/formats/profile_kind.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ProfileStore {
public:
    using Kind = ProfileKind;
    using Path = std::filesystem::path;

    /// The catalogue of the process, made at the first call from the environment of that moment.
    static ProfileStore& shared();

    /// overrideRoot: folder of kind/name.json that wins over the carried set; absent takes the path of
    /// TAMLO_PROFILES where that exists. The user's root is that of TAMLO_USER_DIR, else "Tamlo" in the
    /// user's data folder.
    explicit ProfileStore(std::optional<Path> overrideRoot = std::nullopt);

    const std::optional<Path>& overrideRoot() const { return overrideRoot_; }
    const Path& userRoot() const { return userRoot_; }

    // Looking up. Errors of all: ProfileError notFound, also for a name that would leave its folder;
    // TamloError io; decoded values also ProfileError invalid naming the key and what was expected.

    /// JSON text of a profile.
    std::string data(Kind kind, const std::string& name) const;
    FilmProfile film(const std::string& name) const;
    LensProfile lens(const std::string& name) const;
    PaperProfile paper(const std::string& name) const;
    FilterProfile filterProfile(const std::string& name) const;

    // Listing.

    /// Sorted names of the carried and the user's profiles. Without includeHidden, those marked hidden and
    /// user profiles of a sort that the program can't render are left out.
    std::vector<std::string> list(Kind kind, bool includeHidden = false) const;
    /// The name is in the list without hidden ones.
    bool offers(Kind kind, const std::string& name) const;
    bool isBuiltin(Kind kind, const std::string& name) const;
    /// The profile's own flag; false for one that can't be read.
    bool isMarkedHidden(Kind kind, const std::string& name) const;
    /// Carried profiles are; a user's has a type or kind that the program knows.
    bool isRenderable(Kind kind, const std::string& name) const;
    /// Films as a picker shows them: Neutral, then by type, brand and name in natural order. A user's file
    /// that can't be read as a film is left out.
    std::vector<std::string> filmsSorted() const;
    /// The nearest listed name, for a "did you mean"; nothing when none is near.
    std::optional<std::string> nearestName(Kind kind, std::string_view name) const;
    /// The paper that a frame on this film starts with.
    static std::string defaultPaperName(const FilmProfile& film);

    // The user's own profiles. Errors of all: ProfileValidator::Failure with what is wrong, in the user's
    // words; TamloError io. Nothing is half done.

    /// Checks and writes a profile; one of that name is replaced. Returns its file.
    Path saveUserProfile(Kind kind, const std::string& name, std::string_view data);
    /// Moves a user's profile to the trash. Returns where it lies now.
    Path deleteUserProfile(Kind kind, const std::string& name);
    /// Moves a file back from the trash; one that stands in its place is replaced.
    void restoreUserProfile(Kind kind, const std::string& name, const Path& from);
    void renameUserProfile(Kind kind, const std::string& from, const std::string& to);
    /// Copies any profile to the user's, under a name that is free.
    Path duplicateProfile(Kind kind, const std::string& name, const std::string& id);
    void exportProfile(Kind kind, const std::string& name, const Path& to) const;

    /// A checked file that waits for the user's decision.
    struct Incoming {
        Kind kind = Kind::films;
        std::string id; ///< the file's name
        std::string title;
        std::string data;
        bool conflicts = false; ///< a profile of that id is there
    };
    Incoming inspectImport(const Path& url) const;
    /// The first free name: the base itself, else with "_2", "_3" and so on.
    std::string freeName(Kind kind, const std::string& base) const;

    // Presets (preset_library.cpp, preset_import.cpp). Errors of all: PresetError; TamloError io.

    /// By id. A user's file with the id of a carried preset takes its place.
    std::vector<PresetEntry> presetEntries(bool includeHidden) const;
    std::vector<std::string> listPresets() const;
    std::optional<PresetEntry> presetEntry(const std::string& id) const;
    /// Errors also: ProfileError notFound.
    PresetDocument presetDocument(const std::string& id) const;
    Preset preset(const std::string& id) const;

    PresetSchema::KeySet hiddenPresetIDs() const;
    void setPresetHidden(const std::string& id, bool hidden);
    /// Forgets hidden ids that are no preset's any more.
    void pruneHiddenPresets();

    PresetDocument makePreset(const std::string& id, const std::string& name,
                              const PresetRecipe& recipe) const;
    /// The user's profiles that a recipe names, by kind and name.
    JSONValue embedUserProfiles(const PresetRecipe& recipe) const;
    /// Writes to the given file, else to the user's presets. Returns the file.
    Path write(const PresetDocument& document, const std::optional<Path>& to = std::nullopt);
    /// name: an id, or the path of a .tpreset or .json file, whose base name is the id then. Absent title:
    /// the id. Returns the file.
    Path savePreset(const std::string& name, const PresetRecipe& recipe,
                    const std::optional<std::string>& title);
    /// Moves a user's preset to the trash. Returns where it lies now.
    Path deletePreset(const std::string& id);
    void restorePreset(const std::string& id, const Path& from);
    void renamePreset(const std::string& id, const std::string& name);
    /// Returns the id of the copy.
    std::string duplicatePreset(const std::string& id, const std::optional<std::string>& as = std::nullopt);
    /// to: a folder, or a file. Returns the file.
    Path exportPreset(const std::string& id, const Path& to) const;
    /// All or nothing: a failure leaves every file as it was.
    PresetImportResult importPreset(const Path& url, PresetConflict onConflict);
    /// Ids of the presets that name a profile.
    std::vector<std::string> presetsUsing(Kind kind, const std::string& name) const;

private:
    std::optional<std::string> find(Kind kind, const std::string& name) const;
    Path userFile(Kind kind, const std::string& name) const;
    Path trashFolder(Kind kind) const;
    void writeHidden(const PresetSchema::KeySet& ids);
    template <typename Judge>
    bool flag(const char* flag, Kind kind, const std::string& name, Judge&& judge) const;
    void forget(Kind kind, const std::string& name);
    bool isTaken(Kind kind, const std::string& name) const;

    std::optional<Path> overrideRoot_;
    Path userRoot_;
    mutable FlagCache flags_;
};

} // namespace tamlo
