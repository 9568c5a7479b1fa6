// How the lists of the rack are read from the store.
#include "app/project/loaded.h"
#include "app/shell/lists.h"
#include "core/profiles/catalogue/catalogue_groups.h"
#include "core/text/loc.h"
#include "platform/unicode.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tamlo {

namespace {

using CatalogueGroups::Place;
using Items = CatalogueLists::Items;

template <typename Profile>
std::string titleOf(const Profile& profile, const std::string& id)
{
    return Loc::pick(profile.name.value_or(id), profile.nameEn);
}

/// An item with its place in the pickers.
template <typename Profile>
struct Placed {
    Place place;
    std::string id, title;
    Profile profile;

    ProfileItem item() const { return {id, title}; }
};

template <typename Profile, typename Load, typename PlaceOf>
std::vector<Placed<Profile>> placed(const std::vector<std::string>& ids, Load&& load, PlaceOf&& placeOf)
{
    std::vector<Placed<Profile>> out;
    for (const std::string& id : ids)
        if (const std::optional<Profile> profile = loaded([&] { return load(id); }))
            out.push_back({placeOf(*profile, id), id, titleOf(*profile, id), *profile});
    std::ranges::stable_sort(out, {}, [](const auto& one) {
        return std::tuple(one.place.groupOrder, one.place.order, platform::naturalSortKey(one.title));
    });
    return out;
}

void addToSection(std::vector<ProfileSection>& sections, std::string_view group, const std::string& type,
                  ProfileItem item)
{
    const std::string title = group.empty() ? "" : T(std::string(group));
    const auto found = std::ranges::find(sections, title, &ProfileSection::title);
    if (found != sections.end())
        found->items.push_back(std::move(item));
    else
        sections.push_back({title, type, {std::move(item)}});
}

/// The type that a section of films is of; the film's own before all titles.
std::string sectionType(std::string_view group, const FilmProfile& film)
{
    constexpr std::string_view kTypes = "filmType.";
    if (group.starts_with(kTypes)) return std::string(group.substr(kTypes.size()));
    return group == "filmSection.bwSpectral" ? "bw" : film.type;
}

void readFilms(const ProfileStore& store, CatalogueLists& into)
{
    std::vector<std::string> unread = store.list(ProfileKind::films);
    for (const std::string& id : store.filmsSorted()) {
        const std::optional<FilmProfile> film = loaded([&] { return store.film(id); });
        if (!film) continue;
        std::erase(unread, id);
        const ProfileItem item{id, titleOf(*film, id)};
        into.films.push_back(item);
        FilmFacts facts{film->type, film->fidelity};
        if (film->balance) facts.balanceK = film->balance->illuminantK.value_or(facts.balanceK);
        into.filmFacts[id] = facts;
        const std::string_view group = CatalogueGroups::ofFilm(*film).group;
        addToSection(into.filmSections, group, sectionType(group, *film), item);
    }
    for (const std::string& id : unread) {
        into.films.push_back({id, id});
        into.filmFacts[id] = {};
        addToSection(into.filmSections, "filmType.color", "color", {id, id});
    }
    if (into.films.empty()) into.filmSections = {{T("filmSection.noFilm"), "", {}}};
}

void readLenses(const ProfileStore& store, CatalogueLists& into)
{
    const auto lenses = placed<LensProfile>(
        store.list(ProfileKind::lenses), [&](const std::string& id) { return store.lens(id); },
        [](const LensProfile&, const std::string& id) { return CatalogueGroups::ofLens(id); });
    for (const auto& lens : lenses) {
        into.lenses.push_back(lens.item());
        addToSection(into.lensSections, lens.place.group, "", lens.item());
        if (lens.profile.fidelity) into.lensFidelity[lens.id] = *lens.profile.fidelity;
        if (lens.profile.apertureHint) into.apertureHints[lens.id] = *lens.profile.apertureHint;
        const OpticsParams& optics = lens.profile.optics;
        into.lensDistorts[lens.id] =
            optics.distortion.value_or(0) != 0 || optics.distortionK5.value_or(0) != 0;
    }
}

AltProcess altProcess(const std::string& id, const PaperProfile& paper, const std::string& title)
{
    AltProcess out{.id = id, .title = title, .base = paper.base.value_or("white_rag"), .coatStyle = "none"};
    if (paper.coat) {
        out.coatStyle = paper.coat->style.value_or("none");
        out.coatRough = paper.coat->rough.value_or(0);
    }
    out.hasCoat = out.coatStyle != "none";
    out.hasInkTexture = paper.texture && paper.texture->kind == "ink";
    if (paper.texture) out.roller = paper.texture->roller.value_or(0);
    out.hasTransfer = paper.transfer.has_value();
    if (paper.transfer) out.pickup = paper.transfer->pickup.value_or(0);
    out.hasRelief = paper.relief.has_value();
    out.plateMark = paper.plate && paper.plate->enabled.value_or(false);
    return out;
}

void addToFamily(std::vector<PaperFamilyItem>& families, const std::string& id, const PaperProfile& paper,
                 const std::string& title)
{
    const PaperFamily family = paper.family.value_or(PaperFamily());
    const std::string key = family.id.value_or(*paper.repro);
    auto found = std::ranges::find(families, key, &PaperFamilyItem::id);
    if (found == families.end()) {
        PaperFamilyItem item{key, Loc::pick(family.name.value_or(title), family.nameEn), {}, {}};
        if (family.pick) item.pick = Loc::pick(*family.pick, family.pickEn);
        found = families.insert(families.end(), std::move(item));
    }
    found->options.push_back({id, Loc::pick(family.option.value_or(title), family.optionEn)});
}

/// The papers of a press, a printer or a screen: by family, then by their place in it.
void readFamilies(std::vector<Placed<PaperProfile>> repro, CatalogueLists& into)
{
    constexpr std::string_view kFamilies[] = {"inkjet", "offset", "crt"};
    std::ranges::stable_sort(repro, {}, [&](const Placed<PaperProfile>& one) {
        const PaperFamily family = one.profile.family.value_or(PaperFamily());
        const auto at = std::ranges::find(kFamilies, family.id.value_or(*one.profile.repro));
        return std::tuple(at - std::begin(kFamilies), family.order.value_or(0));
    });
    for (const auto& paper : repro) addToFamily(into.reproFamilies, paper.id, paper.profile, paper.title);
}

Items& paperList(CatalogueLists& into, const PaperProfile& paper)
{
    if (paper.isPlate()) return into.platePapers;
    if (paper.isScan()) return into.scanPapers;
    if (paper.isReversal()) return into.reversalPapers;
    if (paper.isRepro()) return into.reproPapers;
    return into.silverPapers;
}

void readPapers(const ProfileStore& store, CatalogueLists& into)
{
    const auto papers = placed<PaperProfile>(
        store.list(ProfileKind::papers), [&](const std::string& id) { return store.paper(id); },
        [](const PaperProfile& paper, const std::string& id) { return CatalogueGroups::ofPaper(paper, id); });
    std::vector<Placed<PaperProfile>> repro;
    for (const auto& paper : papers) {
        into.papers.push_back(paper.item());
        if (paper.profile.fidelity) into.paperFidelity[paper.id] = *paper.profile.fidelity;
        if (paper.profile.filmTypes) into.paperFilmTypes[paper.id] = *paper.profile.filmTypes;
        if (paper.place.group.starts_with("altGroup.")) {
            into.altProcesses.push_back(altProcess(paper.id, paper.profile, paper.title));
            continue;
        }
        Items& list = paperList(into, paper.profile);
        list.push_back(paper.item());
        if (&list == &into.reproPapers) repro.push_back(paper);
        if (&list == &into.silverPapers)
            (paper.profile.type == "color_paper" ? into.silverColorPapers : into.silverBWPapers)
                .push_back(paper.item());
    }
    readFamilies(std::move(repro), into);
}

void readFilters(const ProfileStore& store, CatalogueLists& into)
{
    const auto filters = placed<FilterProfile>(
        store.list(ProfileKind::filters), [&](const std::string& id) { return store.filterProfile(id); },
        [](const FilterProfile& one, const std::string& id) { return CatalogueGroups::ofFilter(one, id); });
    const std::pair<std::string_view, Items CatalogueLists::*> kLists[] = {
        {"filterGroup.cut", &CatalogueLists::cutFilters},
        {"filterGroup.diffusion", &CatalogueLists::diffusionFilters},
        {"filterGroup.rays", &CatalogueLists::rayFilters},
        {"filterGroup.grad", &CatalogueLists::gradFilters}};
    for (const auto& filter : filters)
        for (const auto& [group, list] : kLists)
            if (filter.place.group == group) (into.*list).push_back(filter.item());
}

/// What a preset is printed with: the short names of film and paper.
std::string summaryOf(const PresetDocument& document, const CatalogueLists& lists)
{
    const auto titleIn = [](const Items& items, const std::string& id) {
        const auto found = std::ranges::find(items, id, &ProfileItem::id);
        return found == items.end() ? id : found->title;
    };
    std::string out = document.stock().empty() ? "" : titleIn(lists.films, document.stock());
    if (!document.paper().empty())
        out += (out.empty() ? "" : " · ") + titleIn(lists.papers, document.paper());
    return out;
}

std::optional<std::string> unlessEmpty(std::string text)
{
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/// id: what the store knows it by, which a file that was given another name does not hold.
PresetInfo infoOf(const std::string& id, const PresetDocument& document, const CatalogueLists& lists)
{
    return {.id = id,
            .title = document.name(),
            .summary = summaryOf(document, lists),
            .name = document.nameRu(),
            .blocks = document.blocks(),
            .builtin = document.builtin,
            .group = unlessEmpty(document.group()),
            .groupEn = unlessEmpty(document.groupEn()),
            .order = static_cast<int>(std::lround(document.order())),
            .notes = unlessEmpty(document.notes()),
            .partial = document.partial()};
}

/// A preset that does not read is no reason to lose the others.
std::optional<PresetDocument> documentOf(const ProfileStore& store, const std::string& id)
{
    try {
        return loaded([&] { return store.presetDocument(id); });
    } catch (const PresetError&) {
        return std::nullopt;
    }
}

} // namespace

void readPresets(const ProfileStore& store, CatalogueLists& into)
{
    into.presets.clear();
    into.hiddenPresets.clear();
    into.builtinPresets.clear();
    into.presetInfos.clear();
    for (const PresetEntry& entry : store.presetEntries(true)) {
        if (entry.builtin) into.builtinPresets.push_back(entry.id);
        const std::optional<PresetDocument> document = documentOf(store, entry.id);
        if (!document) continue;
        if (entry.hidden)
            into.hiddenPresets.push_back({entry.id, document->name()});
        else
            into.presetInfos.push_back(infoOf(entry.id, *document, into));
    }
    const auto& groups = PresetGroups::order();
    std::ranges::stable_sort(into.presetInfos, {}, [&](const PresetInfo& info) {
        const auto at = std::ranges::find(groups, info.group.value_or(""));
        return std::tuple(at - groups.begin(), info.order, platform::naturalSortKey(info.title));
    });
    for (const PresetInfo& info : into.presetInfos) into.presets.push_back({info.id, info.title});
}

CatalogueLists catalogueLists(const ProfileStore& store)
{
    CatalogueLists out;
    readFilms(store, out);
    readLenses(store, out);
    readPapers(store, out);
    readFilters(store, out);
    readPresets(store, out);
    return out;
}

} // namespace tamlo
