#include "app/shell/lists.h"

#include "app/shell/app_model.h"

#include <algorithm>

namespace tamlo {

namespace {

template <typename Map>
std::optional<typename Map::mapped_type> valueIn(const Map& map, const std::string& key)
{
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

std::string titleIn(const CatalogueLists::Items& items, const std::string& id)
{
    const auto found = std::ranges::find(items, id, &ProfileItem::id);
    return found == items.end() ? id : found->title;
}

} // namespace

bool PaperFamilyItem::contains(const std::string& paper) const
{
    return std::ranges::find(options, paper, &ProfileItem::id) != options.end();
}

bool isPositiveType(const std::string& filmType)
{
    return filmType == "slide" || filmType == "tricolor" || filmType == "collodion";
}

const CatalogueLists& Lists::all() const
{
    if (!lists_) lists_ = catalogueLists(model_.store());
    return *lists_;
}

void Lists::rebuildLists()
{
    lists_ = catalogueLists(model_.store());
    ++gen_;
    model_.observers.note(Concern::lists);
}

void Lists::refreshPresets()
{
    if (lists_) readPresets(model_.store(), *lists_);
    ++gen_;
    model_.observers.note(Concern::lists);
}

bool Lists::takesFilm(const std::string& paper, const std::string& film) const
{
    const auto types = valueIn(all().paperFilmTypes, paper);
    const auto facts = all().filmFacts.find(film);
    return !types || facts == all().filmFacts.end() ||
           std::ranges::find(*types, facts->second.type) != types->end();
}

CatalogueLists::Items Lists::scanPapers(const std::string& forFilm) const
{
    CatalogueLists::Items out = all().scanPapers;
    std::erase_if(out, [&](const ProfileItem& paper) { return !takesFilm(paper.id, forFilm); });
    return out;
}

std::vector<PaperFamilyItem> Lists::reproFamilies(const std::string& forFilm) const
{
    std::vector<PaperFamilyItem> out = all().reproFamilies;
    for (PaperFamilyItem& family : out)
        std::erase_if(family.options, [&](const ProfileItem& one) { return !takesFilm(one.id, forFilm); });
    std::erase_if(out, [](const PaperFamilyItem& family) { return family.options.empty(); });
    return out;
}

std::string Lists::filmTitle(const std::string& id) const
{
    return titleIn(all().films, id);
}

std::string Lists::paperTitle(const std::string& id) const
{
    return titleIn(all().papers, id);
}

std::optional<std::string> Lists::fidelityBadge(const std::string& film) const
{
    const auto found = all().filmFacts.find(film);
    return found == all().filmFacts.end() ? std::nullopt : found->second.fidelity;
}

std::optional<std::string> Lists::paperFidelityBadge(const std::string& paper) const
{
    return valueIn(all().paperFidelity, paper);
}

std::optional<std::string> Lists::lensFidelityBadge(const std::string& lens) const
{
    return valueIn(all().lensFidelity, lens);
}

bool Lists::isPositiveStock(const std::string& film) const
{
    const auto found = all().filmFacts.find(film);
    return found != all().filmFacts.end() && isPositiveType(found->second.type);
}

bool Lists::isTungstenStock(const std::string& film) const
{
    constexpr double kLamplightK = 4500;
    const auto found = all().filmFacts.find(film);
    return found != all().filmFacts.end() && found->second.balanceK < kLamplightK;
}

bool Lists::lensHasDistortion(const std::string& lens) const
{
    const auto found = all().lensDistorts.find(lens);
    return found != all().lensDistorts.end() && found->second;
}

std::optional<std::string> Lists::apertureHint(const std::string& lens) const
{
    return valueIn(all().apertureHints, lens);
}

const PresetInfo* Lists::presetTitled(const std::string& title) const
{
    const auto& infos = all().presetInfos;
    const auto found = std::ranges::find_if(
        infos, [&](const PresetInfo& info) { return info.title == title || info.name == title; });
    return found == infos.end() ? nullptr : &*found;
}

} // namespace tamlo
