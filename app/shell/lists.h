// Lists: the catalogue as the pickers of the rack show it: films, lenses, papers and filters by their
// sections, presets by their groups. Read from the store when first asked for, and again after a profile or
// a preset has come, gone or been renamed.
#pragma once

#include "core/profiles/catalogue/profile_store.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

struct ProfileItem {
    std::string id;
    std::string title; ///< in the language in force
    bool operator==(const ProfileItem&) const = default;
};

/// A part of a picker. Films have the type of the section, lenses none.
struct ProfileSection {
    std::string title; ///< empty for what stands before all titles
    std::string type;
    std::vector<ProfileItem> items;
};

/// Papers that are one entry of the picker, with a choice within it.
struct PaperFamilyItem {
    std::string id, title;
    std::optional<std::string> pick; ///< what is chosen within the family, as a title
    std::vector<ProfileItem> options;
    bool contains(const std::string& paper) const;
};

/// A handmade process and the knobs that it has, with the values that they start from.
struct AltProcess {
    std::string id, title, base, coatStyle;
    bool hasCoat = false, hasInkTexture = false, hasTransfer = false, hasRelief = false, plateMark = false;
    double coatRough = 0, pickup = 0, roller = 0;
};

struct PresetInfo {
    std::string id, title, summary;
    std::string name; ///< as a process remembers it, whatever the language
    PresetSchema::Blocks blocks;
    bool builtin = false;
    std::optional<std::string> group, groupEn;
    int order = 0;
    std::optional<std::string> notes;
    bool partial = false;
};

/// What a picker and its badges need of a film.
struct FilmFacts {
    std::string type = "color";
    std::optional<std::string> fidelity;
    double balanceK = 5500;
};

struct CatalogueLists {
    using Items = std::vector<ProfileItem>;

    Items films, lenses, papers;
    std::vector<ProfileSection> filmSections, lensSections;
    Items scanPapers, silverPapers, silverBWPapers, silverColorPapers, platePapers, reproPapers,
        reversalPapers;
    std::vector<PaperFamilyItem> reproFamilies;
    std::vector<AltProcess> altProcesses;
    Items diffusionFilters, cutFilters, rayFilters, gradFilters;
    std::map<std::string, FilmFacts> filmFacts;
    std::map<std::string, std::string> paperFidelity, lensFidelity;
    /// Film types that a paper accepts, where it is particular.
    std::map<std::string, std::vector<std::string>> paperFilmTypes;
    std::map<std::string, bool> lensDistorts;
    std::map<std::string, std::string> apertureHints;

    Items presets, hiddenPresets;
    std::vector<std::string> builtinPresets;
    std::vector<PresetInfo> presetInfos;
};

class Lists {
public:
    explicit Lists(AppModel& model) : model_(model) {}

    /// The lists; read when first asked for.
    const CatalogueLists& all() const;
    void rebuildLists();
    void refreshPresets();
    /// Goes up with each rebuild.
    std::int64_t gen() const { return gen_; }

    CatalogueLists::Items scanPapers(const std::string& forFilm) const;
    /// Families without the papers that don't take the film; one that none of is left is left out.
    std::vector<PaperFamilyItem> reproFamilies(const std::string& forFilm) const;
    /// Short names: the id where there is none.
    std::string filmTitle(const std::string& id) const;
    std::string paperTitle(const std::string& id) const;
    /// On what kind of ground the profile stands, as the profile says it; none without a badge.
    std::optional<std::string> fidelityBadge(const std::string& film) const;
    std::optional<std::string> paperFidelityBadge(const std::string& paper) const;
    std::optional<std::string> lensFidelityBadge(const std::string& lens) const;
    /// The film is a positive when it is developed: slides, sets of three plates, collodion.
    bool isPositiveStock(const std::string& film) const;
    /// Balanced for lamplight.
    bool isTungstenStock(const std::string& film) const;
    bool lensHasDistortion(const std::string& lens) const;
    /// What stands in place of the aperture knob; none where the knob does.
    std::optional<std::string> apertureHint(const std::string& lens) const;
    /// By its title, or by the name that a process remembers of it; null for none.
    const PresetInfo* presetTitled(const std::string& title) const;

private:
    bool takesFilm(const std::string& paper, const std::string& film) const;

    AppModel& model_;
    mutable std::optional<CatalogueLists> lists_;
    std::int64_t gen_ = 0;
};

/// Whether a film is a positive when it is developed.
bool isPositiveType(const std::string& filmType);

/// Reads the whole catalogue. A profile that can't be read keeps its id as a title, among the films also the
/// type of a colour film; everywhere else it is left out.
CatalogueLists catalogueLists(const ProfileStore& store);
/// The presets alone, into lists that have the rest.
void readPresets(const ProfileStore& store, CatalogueLists& into);

} // namespace tamlo
