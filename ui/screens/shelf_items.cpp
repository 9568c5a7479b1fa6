#include "ui/screens/shelf_items.h"

#include "app/project/loaded.h"
#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "core/profiles/catalogue/catalogue_groups.h"
#include "ui/kit/words.h"
#include "ui/screens/rack_texts.h"

#include <algorithm>

namespace tamlo::ui::ShelfItems {

namespace {

using Sections = std::vector<ShelfSection>;

ShelfItem itemOf(const ProfileItem& profile, const std::optional<std::string>& badge)
{
    return {.id = profile.id, .title = qt(profile.title), .badge = RackTexts::fidelity(badge)};
}

/// The section of this title, at the end where it is new.
ShelfSection& sectionIn(Sections& sections, const QString& title)
{
    const auto found = std::ranges::find(sections, title, &ShelfSection::title);
    if (found != sections.end()) return *found;
    return sections.emplace_back(ShelfSection{title, {}});
}

Sections films(const AppModel& model, const ProcessSettings& now, bool keepsPaper)
{
    Sections out;
    for (const ProfileSection& section : model.lists.all().filmSections)
        for (const ProfileItem& film : section.items) {
            ShelfItem item = itemOf(film, model.lists.fidelityBadge(film.id));
            item.process = now;
            item.process.stock = film.id;
            if (!keepsPaper && film.id != now.stock) item.process.paper.clear();
            item.isIn = film.id == now.stock;
            if (!loaded([&] { return model.store().film(film.id); })) item.fault = word("shelf.unreadable");
            sectionIn(out, qt(section.title)).items.push_back(std::move(item));
        }
    return out;
}

Sections lenses(const AppModel& model, const ProcessSettings& now)
{
    Sections out;
    for (const ProfileSection& section : model.lists.all().lensSections)
        for (const ProfileItem& lens : section.items) {
            ShelfItem item = itemOf(lens, model.lists.lensFidelityBadge(lens.id));
            item.process = now;
            item.process.lens = lens.id;
            item.isIn = lens.id == now.lens;
            sectionIn(out, qt(section.title)).items.push_back(std::move(item));
        }
    return out;
}

bool takes(const CatalogueLists& lists, const std::string& paper, const std::string& film)
{
    const auto types = lists.paperFilmTypes.find(paper);
    const auto facts = lists.filmFacts.find(film);
    return types == lists.paperFilmTypes.end() || facts == lists.filmFacts.end() ||
           std::ranges::find(types->second, facts->second.type) != types->second.end();
}

Sections papers(const AppModel& model, const ProcessSettings& now)
{
    Sections out;
    const CatalogueLists& lists = model.lists.all();
    const std::string inForce = resolvedPaper(now, model.store());
    for (const ProfileItem& paper : lists.papers) {
        const auto profile = loaded([&] { return model.store().paper(paper.id); });
        if (!profile || !takes(lists, paper.id, now.stock)) continue;
        ShelfItem item = itemOf(paper, model.lists.paperFidelityBadge(paper.id));
        item.process = now;
        item.process.paper = paper.id;
        item.isIn = paper.id == inForce;
        const std::string_view group = CatalogueGroups::ofPaper(*profile, paper.id).group;
        sectionIn(out, group.empty() ? QString() : word(std::string(group))).items.push_back(std::move(item));
    }
    return out;
}

/// A slot of the lens for filters of one sort.
struct Slot {
    const char* group;
    CatalogueLists::Items CatalogueLists::*filters;
    OptText RenderOptions::*option;
};
constexpr Slot kSlots[] = {
    {"filterGroup.cut", &CatalogueLists::cutFilters, &RenderOptions::filterCut},
    {"filterGroup.diffusion", &CatalogueLists::diffusionFilters, &RenderOptions::filterDiffusion},
    {"filterGroup.rays", &CatalogueLists::rayFilters, &RenderOptions::filterRays},
    {"filterGroup.grad", &CatalogueLists::gradFilters, &RenderOptions::filterGrad},
};

Sections filters(const AppModel& model, const ProcessSettings& now)
{
    Sections out;
    for (const Slot& slot : kSlots) {
        const std::string in = (now.options.*slot.option).value_or("none");
        ShelfSection& section = sectionIn(out, word(slot.group));
        ShelfItem none{.title = word("knob.none"), .process = now, .isIn = in == "none" || in.empty()};
        (none.process.options.*slot.option).reset();
        section.items.push_back(std::move(none));
        for (const ProfileItem& filter : model.lists.all().*slot.filters) {
            ShelfItem item = itemOf(filter, std::nullopt);
            item.process = now;
            item.process.options.*slot.option = filter.id;
            item.isIn = in == filter.id;
            section.items.push_back(std::move(item));
        }
    }
    return out;
}

Sections presets(const AppModel& model, const ProcessSettings& now)
{
    Sections out;
    for (const PresetInfo& info : model.lists.all().presetInfos) {
        const auto preset = loaded([&] { return model.store().preset(info.id); });
        ShelfItem item{.id = info.id, .title = qt(info.title), .summary = qt(info.summary), .process = now};
        if (info.partial && preset) item.badge = qt(blocksTail(preset->blocks)).remove(0, 3);
        if (preset)
            applyPreset(item.process, *preset, info.title, model.store());
        else
            item.fault = word("shelf.unreadable");
        item.isIn = now.presetName == info.title;
        const QString group =
            info.group ? qt(PresetGroups::title(*info.group, info.groupEn.value_or(""))) : word("shelf.mine");
        sectionIn(out, group).items.push_back(std::move(item));
    }
    return out;
}

template <typename Profile>
QString notesOf(const std::optional<Profile>& profile)
{
    return profile ? qt(Loc::pick(profile->notes.value_or(""), profile->notesEn)) : QString();
}

} // namespace

Sections sections(ShelfKind kind, const AppModel& model, bool keepsPaper)
{
    const ProcessSettings now = model.rack.rackSettings();
    switch (kind) {
    case ShelfKind::film:
        return films(model, now, keepsPaper);
    case ShelfKind::lens:
        return lenses(model, now);
    case ShelfKind::filter:
        return filters(model, now);
    case ShelfKind::paper:
        return papers(model, now);
    case ShelfKind::presets:
        return presets(model, now);
    }
    return {};
}

QString notes(ShelfKind kind, const std::string& id, const AppModel& model)
{
    const ProfileStore& store = model.store();
    if (id.empty()) return {};
    switch (kind) {
    case ShelfKind::film:
        return notesOf(loaded([&] { return store.film(id); }));
    case ShelfKind::lens:
        return notesOf(loaded([&] { return store.lens(id); }));
    case ShelfKind::filter:
        return notesOf(loaded([&] { return store.filterProfile(id); }));
    case ShelfKind::paper:
        return notesOf(loaded([&] { return store.paper(id); }));
    case ShelfKind::presets: {
        const auto& infos = model.lists.all().presetInfos;
        const auto info = std::ranges::find(infos, id, &PresetInfo::id);
        return info == infos.end() ? QString() : qt(info->notes.value_or(""));
    }
    }
    return {};
}

QString title(ShelfKind kind)
{
    constexpr const char* kKeys[] = {"shelf.film", "shelf.lens", "shelf.filter", "shelf.paper",
                                     "shelf.presets"};
    return word(kKeys[static_cast<std::size_t>(kind)]);
}

} // namespace tamlo::ui::ShelfItems
