#include "ui/screens/rack_texts.h"

#include "app/project/process_rules.h"
#include "app/shell/app_model.h"
#include "core/io/image_loader.h"
#include "core/process/altprint/paper_base.h"
#include "core/profiles/options/option_table.h"
#include "ui/kit/words.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace tamlo::ui::RackTexts {

namespace {

/// Where the names of an option's choices stand in the tables.
struct ChoiceTexts {
    std::string_view option, prefix;
};
constexpr ChoiceTexts kChoiceTexts[] = {
    {"src_exposure", "srcExposure."},
    {"wb_mode", "wbMode."},
    {"dev", "devName."},
    {"format", "format."},
    {"frame_size", "frameSize."},
    {"peel_size", "frameSize."},
    {"inkjet_feed", "inkjetFeed."},
    {"crt_phosphor", "phosphor."},
    {"coat", "coat."},
    {"paper_base", "base."},
    {"frame_style", "frameStyle."},
    {"table", "table."},
    {"mat", "mat."},
    {"mat_color", "colour."},
    {"mat_core", "colour."},
    {"mat_reveal_color", "colour."},
    {"emboss_line", "line."},
    {"stamp_size", "stampSize."},
};

/// What an absent choice stands for, where no profile says it.
constexpr ChoiceTexts kUsualChoices[] = {
    {"frame_size", "full"},        {"table", "none"},         {"mat", "none"},
    {"emboss_line", "none"},       {"mat_color", "white"},    {"mat_core", "white"},
    {"mat_reveal_color", "black"}, {"crt_phosphor", "green"}, {"coat", "none"},
    {"paper_base", "white_rag"},   {"filter_cut", "none"},    {"filter_diffusion", "none"},
    {"filter_rays", "none"},       {"filter_grad", "none"},
};

const CatalogueLists::Items* filtersOf(std::string_view option, const CatalogueLists& lists)
{
    if (option == "filter_cut") return &lists.cutFilters;
    if (option == "filter_diffusion") return &lists.diffusionFilters;
    if (option == "filter_rays") return &lists.rayFilters;
    if (option == "filter_grad") return &lists.gradFilters;
    return nullptr;
}

/// Chips of the boards, as they look.
struct Board {
    std::string_view name;
    QRgb chip;
};
constexpr Board kBoards[] = {
    {"white", 0xFFEFEAE1}, {"cream", 0xFFE6DAC0}, {"grey", 0xFFA7A29B}, {"black", 0xFF262422}};

std::optional<QColor> swatchOf(std::string_view option, const std::string& choice)
{
    if (option.starts_with("mat_")) {
        const auto board = std::ranges::find(kBoards, choice, &Board::name);
        return board == std::end(kBoards) ? std::nullopt : std::optional(QColor(board->chip));
    }
    if (option != "paper_base") return std::nullopt;
    const auto base = std::ranges::find(AltPrint::paperBases, std::string_view(choice),
                                        [](const auto& one) { return one.first; });
    if (base == std::end(AltPrint::paperBases)) return std::nullopt;
    const auto encoded = [](double linear) { return std::pow(linear, 1 / 2.2); }; // near enough for a chip
    return QColor::fromRgbF(encoded(base->second[0]), encoded(base->second[1]), encoded(base->second[2]));
}

std::vector<std::string> choiceIDs(const RackKnob& one, const View& view)
{
    const std::string_view option = one.knob->option;
    if (option == "paper_base") {
        std::vector<std::string> out;
        for (const auto& base : AltPrint::paperBases) out.emplace_back(base.first);
        return out;
    }
    if (option == "wb_mode") {
        const FrameRef frame = view.model.selection.currentFrame();
        return wbPositions(frame && ImageLoader::isRAW(frame->url), view.rack.film,
                           view.settings.options.wbMode);
    }
    return one.choices;
}

QString numberOf(double value, bool isSigned)
{
    return (isSigned && value > 0 ? QStringLiteral("+") : QString()) + qt(Fmt::number(value, 2));
}

QString joined(const QStringList& parts)
{
    return parts.join(QStringLiteral(" · "));
}

QString titleIn(const CatalogueLists::Items& items, const std::string& id)
{
    const auto found = std::ranges::find(items, id, &ProfileItem::id);
    return qt(found == items.end() ? id : found->title);
}

QString filterCaption(const View& view)
{
    const RenderOptions& options = view.settings.options;
    const CatalogueLists& lists = view.model.lists.all();
    QStringList out;
    const auto add = [&](const OptText& filter, const CatalogueLists::Items& items) {
        if (filter && !filter->empty() && *filter != "none") out << titleIn(items, *filter);
    };
    add(options.filterCut, lists.cutFilters);
    add(options.filterDiffusion, lists.diffusionFilters);
    add(options.filterRays, lists.rayFilters);
    add(options.filterGrad, lists.gradFilters);
    return out.isEmpty() ? word("knob.none") : joined(out);
}

QString finishCaption(const View& view)
{
    const RenderOptions& options = view.settings.options;
    return joined({choiceTitle("mat", options.mat.value_or("none")),
                   choiceTitle("table", options.table.value_or("none"))});
}

} // namespace

QString choiceTitle(std::string_view option, const std::string& choice)
{
    if (choice == "none" && option.starts_with("filter_")) return word("knob.none");
    const auto texts = std::ranges::find(kChoiceTexts, option, &ChoiceTexts::option);
    return texts == std::end(kChoiceTexts) ? qt(choice) : word(std::string(texts->prefix) + choice);
}

std::vector<KitOption> choices(const RackKnob& one, const View& view)
{
    const std::string_view option = one.knob->option;
    std::vector<KitOption> out;
    if (const auto* filters = filtersOf(option, view.model.lists.all())) {
        out.push_back({QStringLiteral("none"), word("knob.none")});
        for (const ProfileItem& filter : *filters) out.push_back({qt(filter.id), qt(filter.title)});
        return out;
    }
    for (const std::string& id : choiceIDs(one, view))
        out.push_back({qt(id), choiceTitle(option, id), swatchOf(option, id)});
    return out;
}

std::string inForce(const RackKnob& one, const View& view)
{
    const std::string_view option = one.knob->option;
    if (!one.value.empty()) return one.value;
    const auto& paper = view.rack.paper;
    if (option == "paper_base" && paper && paper->base) return *paper->base;
    if (option == "coat" && paper && paper->coat && paper->coat->style) return *paper->coat->style;
    if (option == "crt_phosphor" && paper && paper->crt && paper->crt->phosphor) return *paper->crt->phosphor;
    if (option == "format" && view.rack.film.formatDefault) return *view.rack.film.formatDefault;
    const auto usual = std::ranges::find(kUsualChoices, option, &ChoiceTexts::option);
    return usual == std::end(kUsualChoices) ? std::string() : std::string(usual->prefix);
}

bool isOn(const RackKnob& one, const View& view)
{
    if (!one.value.empty()) return one.value == "true";
    const auto& paper = view.rack.paper;
    return one.knob->option == std::string_view("plate_mark") && paper && paper->plate &&
           paper->plate->enabled.value_or(false);
}

QString title(const Knob& knob)
{
    return knob.option == std::string_view("frame_size") ? word("knob.frameSize") : qt(knob.title());
}

std::string numberUnit(std::string_view option)
{
    constexpr std::string_view kShown[] = {"cm", "mm", "degrees", "degrees Celsius", "stops", "years"};
    const std::string_view unit = findOption(option)->unit;
    if (std::ranges::find(kShown, unit) == std::end(kShown)) return {};
    if (unit == "degrees") return T("knobUnit.degrees");
    return " " + T(unit == "degrees Celsius" ? "knobUnit.degreesCelsius" : "knobUnit." + std::string(unit));
}

QString spokenUnit(std::string_view option)
{
    std::string key = "optionUnit.";
    bool raises = false;
    for (const char c : std::string_view(findOption(option)->unit)) {
        if (c != ' ') key += raises ? static_cast<char>(std::toupper(c)) : c;
        raises = c == ' ';
    }
    return key == "optionUnit." ? QString() : word(key);
}

double engravings(std::string_view option)
{
    constexpr std::string_view kByOne[] = {"ev", "stop", "push", "grade", "print_ev"};
    return std::ranges::find(kByOne, option) == std::end(kByOne) ? 0 : 1;
}

QString fidelity(const std::optional<std::string>& badge)
{
    if (!badge) return {};
    const std::string key = "fidelity." + *badge;
    return Loc::value(key, Loc::Lang::ru) ? word(key) : qt(*badge);
}

QString caption(const RackCard& card, const View& view)
{
    const RenderOptions& options = view.settings.options;
    const Lists& lists = view.model.lists;
    const RenderOptions usual;
    const auto push = options.push != usual.push ? numberOf(options.push, true) : QString();
    switch (card.block) {
    case PresetBlock::source:
        return choiceTitle("wb_mode", options.wbMode);
    case PresetBlock::light:
        return numberOf(options.ev, true) + qt(numberUnit("ev"));
    case PresetBlock::optics:
        return titleIn(lists.all().lenses, view.settings.lens);
    case PresetBlock::filter:
        return filterCaption(view);
    case PresetBlock::film:
        return qt(lists.filmTitle(view.settings.stock));
    case PresetBlock::develop: {
        const QString mood = qt(card.caption);
        return push.isEmpty() ? mood : push + QStringLiteral(" · ") + mood;
    }
    case PresetBlock::print:
        return qt(lists.paperTitle(resolvedPaper(view.settings, view.model.store())));
    case PresetBlock::finish:
        return card.note.empty() ? finishCaption(view) : qt(card.note);
    }
    return {};
}

} // namespace tamlo::ui::RackTexts
