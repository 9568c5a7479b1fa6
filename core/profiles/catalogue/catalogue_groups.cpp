#include "core/profiles/catalogue/catalogue_groups.h"

#include "platform/unicode.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

namespace tamlo::CatalogueGroups {
namespace {

struct Group {
    std::string_view key;
    std::vector<std::string_view> ids; ///< in order; others of the group follow them
};

int placeIn(std::span<const std::string_view> ids, std::string_view id)
{
    return static_cast<int>(std::ranges::find(ids, id) - ids.begin());
}

/// The listed place of an id; the last group when none lists it.
Place placeByID(std::span<const Group> groups, std::string_view id)
{
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const int at = placeIn(groups[i].ids, id);
        if (at < static_cast<int>(groups[i].ids.size()) || i + 1 == groups.size())
            return {groups[i].key, static_cast<int>(i), at};
    }
    return {};
}

Place placeByGroup(std::span<const Group> groups, std::string_view key, std::string_view id)
{
    const auto group = std::ranges::find(groups, key, &Group::key);
    return {key, static_cast<int>(group - groups.begin()),
            group == groups.end() ? 0 : placeIn(group->ids, id)};
}

/// A film that gives red hardly any weight, or nearly half of it all, draws foliage, skin and sky in its own
/// way.
bool seesOwnColours(const FilmProfile& film)
{
    constexpr double kLeastRed = 0.15, kMostRed = 0.45;
    if (!film.spectralWeights) return false;
    const Vec3d& weights = *film.spectralWeights;
    const double sum = weights[0] + weights[1] + weights[2];
    return sum > 0 && (weights[0] < kLeastRed * sum || weights[0] > kMostRed * sum);
}

std::string_view filmGroup(const FilmProfile& film)
{
    if (film.neutral.value_or(false)) return "";
    if (film.isCollodion() || film.section == "plates") return "filmType.collodion";
    if (film.isBW()) return seesOwnColours(film) ? "filmSection.bwSpectral" : "filmType.bw";
    if (film.isSlide()) return "filmType.slide";
    if (film.isInstant()) return "filmType.instant";
    return film.isTricolor() ? "filmType.tricolor" : "filmType.color";
}

std::string_view paperGroup(const PaperProfile& paper)
{
    if (paper.isPlate()) return "paperGroup.plate";
    if (paper.isScan()) return "paperGroup.scan";
    if (paper.isReversal()) return "paperGroup.reversal";
    if (paper.isRepro()) {
        if (paper.repro == "inkjet") return "paperGroup.inkjet";
        return paper.repro == "offset" ? "paperGroup.offset" : "paperGroup.crt";
    }
    if (!paper.isAlt()) return paper.type == "color_paper" ? "paperGroup.color" : "paperGroup.bw";
    return "";
}

} // namespace

Place ofFilm(const FilmProfile& film)
{
    static const std::vector<Group> kGroups{{"", {}},
                                            {"filmType.bw", {}},
                                            {"filmSection.bwSpectral", {}},
                                            {"filmType.color", {}},
                                            {"filmType.slide", {}},
                                            {"filmType.instant", {}},
                                            {"filmType.tricolor", {}},
                                            {"filmType.collodion", {}}};
    return placeByGroup(kGroups, filmGroup(film), "");
}

Place ofLens(std::string_view id)
{
    static const std::vector<Group> kGroups{
        {"", {"modern_clean"}},
        {"lensGroup.modern", {"summilux50_asph", "summilux35_fle"}},
        {"lensGroup.rangefinder", {"m_glow", "uncoated50s", "swirl58"}},
        {"lensGroup.oldSchool", {"petzval1900", "dagor1892", "wollaston1812", "pinhole"}},
        {"lensGroup.softFocus", {"imagon", "verito"}},
        {"lensGroup.other", {}}};
    return placeByID(kGroups, id);
}

Place ofPaper(const PaperProfile& paper, std::string_view id)
{
    static const std::vector<Group> kGroups{{"paperGroup.bw", {"bw_neutral"}},
                                            {"paperGroup.color", {"color_ra4"}},
                                            {"paperGroup.reversal", {}},
                                            {"altGroup.iron",
                                             {"cyanotype", "cyanotype_ware", "platinum", "platinum_palladium",
                                              "palladium", "vandyke", "salt", "albumen"}},
                                            {"altGroup.pigment", {"gum", "gum_tricolor", "carbon"}},
                                            {"altGroup.ink", {"bromoil", "bromoil_transfer", "collotype"}},
                                            {"paperGroup.plate", {"ambrotype", "ferrotype"}},
                                            {"paperGroup.scan", {"color_scan"}},
                                            {"paperGroup.inkjet", {}},
                                            {"paperGroup.offset", {}},
                                            {"paperGroup.crt", {}},
                                            {"paperGroup.other", {}}};
    std::string_view group = paperGroup(paper);
    if (group.empty()) {
        // An alternative process is told by its name; a user's own by the process it follows.
        for (std::string_view name : {id, std::string_view(*paper.process)})
            if (const Place place = placeByID(kGroups, name); place.group.starts_with("altGroup."))
                return place;
        group = "paperGroup.other";
    }
    return placeByGroup(kGroups, group, id);
}

Place ofFilter(const FilterProfile& filter, std::string_view id)
{
    static const std::vector<Group> kGroups{
        {"filterGroup.cut", {"yellow_6", "yellow_8", "orange_21", "red_29", "cyan_44a", "blue_47"}},
        {"filterGroup.diffusion", {"promist_1", "black_promist_12", "black_promist_14", "black_promist_18"}},
        {"filterGroup.rays", {"star_4", "star_6", "star_8", "streak_blue"}},
        {"filterGroup.grad", {"grad_nd1_soft", "grad_nd2_soft", "grad_nd3_soft"}},
        {"filterGroup.other", {}}};
    const std::string group = "filterGroup." + filter.type.value_or("cut");
    const auto known = std::ranges::find(kGroups, group, &Group::key);
    return placeByGroup(kGroups, known == kGroups.end() ? "filterGroup.other" : known->key, id);
}

std::string filmBrand(std::string_view name)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kAliases{
        {{"lomochrome", "lomography"}, {"fomapan", "foma"}, {"fujicolor", "fujifilm"}}};
    const std::string whole = platform::lowerCased(platform::trimmed(name));
    const std::string word = whole.substr(0, platform::whiteSpaceReplaced(whole, " ").find(' '));
    for (const auto& [old, later] : kAliases)
        if (word == old) return std::string(later);
    return word;
}

} // namespace tamlo::CatalogueGroups
