#include "app/shell/rack_cards.h"

#include "app/shell/lists.h"
#include "core/pipeline/idle_options.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

constexpr double kNothing = 1e-6;

/// Which of the rack's own rules a knob follows, beside whether it acts at all.
struct KnobRule {
    std::string_view option;
    bool (RackVisibility::*holds)() const;
};

constexpr KnobRule kRules[] = {
    {"grade", &RackVisibility::contrast},         {"print_black", &RackVisibility::blackWhite},
    {"print_white", &RackVisibility::blackWhite}, {"border_black", &RackVisibility::blackField},
    {"emboss_line", &RackVisibility::emboss},     {"blind_stamp", &RackVisibility::emboss},
    {"stamp_text", &RackVisibility::emboss},      {"stamp_size", &RackVisibility::emboss},
    {"format", &RackVisibility::formatPicker},
};

bool isSizeOfPrint(std::string_view option)
{
    return option == "print_cm" || option == "sheet_cm";
}

/// The option has an effect under this value.
bool acts(RenderChoices& choices, const OptionRow& row, const Json& value)
{
    const RenderOptions before = choices.options; // the profiles are large: they are not copied
    row.read(choices.options, value, JsonPath());
    const bool out = Pipeline::idleOptions(choices, {row.key}).empty();
    choices.options = before;
    return out;
}

Json valueOf(const OptionRow& row, const RenderOptions& options)
{
    Json value;
    row.write(options, value);
    return value;
}

/// A value of the option that is not its default.
std::vector<Json> trials(const OptionRow& row)
{
    if (!row.allowed.empty()) return {row.allowed.begin(), row.allowed.end()};
    const Json usual = valueOf(row, RenderOptions{});
    if (row.type == OptionType::boolean) return {usual != Json(true)};
    if (row.hasRange) return {usual == Json(row.high) ? row.low : row.high};
    return {"-"}; // any text
}

std::string textOf(const Json& value)
{
    if (value.is_null()) return "";
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// What a number that is absent stands for: the paper's own, or the size of the print.
double whenAbsent(std::string_view option, const RenderChoices& choices)
{
    const PaperProfile& paper = choices.paper;
    if (option == "sheet_cm") return choices.options.printCm;
    if (option == "relief") return 1;
    if (option == "ink_roller" && paper.texture) return paper.texture->roller.value_or(0);
    if (option == "pickup" && paper.transfer) return paper.transfer->pickup.value_or(0);
    if (option == "coat_rough" && paper.coat) return paper.coat->rough.value_or(0);
    return 0;
}

std::optional<RackKnob> standing(const Knob& knob, const RackVisibility& rack, RenderChoices& choices)
{
    const auto rule = std::ranges::find(kRules, knob.option, &KnobRule::option);
    if (rule != std::end(kRules) && !(rack.*rule->holds)()) return std::nullopt;
    if (isSizeOfPrint(knob.option) && rack.plateSizeNote()) return std::nullopt;
    const OptionRow& row = *findOption(knob.option);
    const Json now = valueOf(row, choices.options), usual = valueOf(row, RenderOptions{});
    RackKnob out{&knob, std::nullopt, {}, textOf(now)};
    bool any = false;
    for (const Json& trial : trials(row)) {
        const bool isOffered = acts(choices, row, trial);
        const bool isUsual = trial == usual || (usual.is_null() && trial == "none");
        any = any || (isOffered && !isUsual);
        if (!row.allowed.empty() && (isOffered || trial == now)) out.choices.push_back(textOf(trial));
    }
    if (!any) return std::nullopt;
    if (knob.option == std::string_view("format")) {
        out.choices = rack.allowedFormats();
        if (const auto fugitive = rack.fugitiveFormat()) out.choices.push_back(*fugitive);
    }
    if (knob.step > 0) out.row = knobRow(knob, choices.options, whenAbsent(knob.option, choices));
    return out;
}

std::string pushText(const RenderOptions& options, const char* longer, const char* shorter, const char* plain)
{
    return T(options.push > kNothing ? longer : options.push < -kNothing ? shorter : plain);
}

std::string instantMood(const RenderOptions& options)
{
    constexpr double kHotC = 27, kColdC = 15, kUsualMottle = 1;
    std::string out = T(options.devTempC > kHotC    ? "dev.hot"
                        : options.devTempC < kColdC ? "dev.cold"
                                                    : "dev.room");
    if (options.devMottle > kUsualMottle + kNothing) out += T("dev.dirt", {{"n", options.devMottle}});
    return out;
}

/// There is nothing to mount.
bool hasNoSheet(const RackVisibility& rack)
{
    return rack.paper && !rack.paper->hasSheet() && !rack.film.isInstant();
}

void describe(RackCard& card, const RackVisibility& rack)
{
    const bool isInstant = rack.film.isInstant(), isPlate = rack.film.isCollodion();
    if (card.block == PresetBlock::film && isInstant) card.caption = T("rack.cartridge");
    if (card.block == PresetBlock::develop) {
        card.caption = developmentCaption(rack.film, rack.options);
        if (isInstant) card.note = T("rack.instant.devNote");
    }
    if (card.block == PresetBlock::print) {
        if (isPositiveType(rack.film.type) && !isInstant)
            card.caption = T(isPlate ? "print.asIs" : "print.slideAsIs");
        if (rack.gradedNote()) card.note = T("rack.grade.graded.help");
    }
    if (card.block == PresetBlock::finish && hasNoSheet(rack))
        card.note = T(rack.paper->repro == "crt" ? "finish.noScreen.note" : "print.filmIsPaper");
}

/// The lights of the source are the frame's own, and in no preset; they stand with the source all the same.
bool holdsKey(PresetBlock block, std::string_view key)
{
    if (key == "src_lights") return block == PresetBlock::source;
    return std::ranges::find(PresetSchema::keys(block), key) != PresetSchema::keys(block).end();
}

} // namespace

std::string developmentCaption(const FilmProfile& film, const RenderOptions& options)
{
    if (film.isInstant()) return instantMood(options);
    if (film.isSlide()) return pushText(options, "dev.slidePush", "dev.pull", "dev.e6");
    if (film.isCollodion()) return T(options.dev == Development::pyro ? "dev.pyro" : "dev.iron");
    if (film.type == "color") {
        if (options.dev == Development::hand) return T("dev.hand", {{"t", Fmt::number(options.c41TempC, 1)}});
        return pushText(options, "dev.push", "dev.pull", "dev.c41");
    }
    const std::string developer =
        options.dev == Development::standard ? T("dev.d76") : std::string(rawText(options.dev));
    if (options.push > kNothing) return developer + " · " + T("dev.push");
    return options.push < -kNothing ? developer + " · " + T("dev.pull") : developer;
}

std::vector<RackCard> rackCards(const ProcessSettings& settings, const ProfileStore& store)
{
    const std::optional<RackVisibility> rack = RackVisibility::of(settings, store);
    return rack ? rackCards(*rack) : std::vector<RackCard>();
}

std::vector<RackCard> rackCards(const RackVisibility& rack)
{
    RenderChoices choices{rack.film, rack.lens.value_or(LensProfile()), rack.paper.value_or(PaperProfile()),
                          rack.options};
    std::vector<RackCard> out;
    for (const PresetBlock block : PresetSchema::order()) {
        RackCard card{.block = block, .title = T(std::string(PresetSchema::titleKey(block)))};
        for (const Knob& knob : knobTable())
            if (holdsKey(block, knob.option) && !(block == PresetBlock::finish && hasNoSheet(rack)))
                if (auto one = standing(knob, rack, choices)) card.knobs.push_back(std::move(*one));
        describe(card, rack);
        out.push_back(std::move(card));
    }
    return out;
}

std::string changedLine(const std::vector<KnobChange>& changes)
{
    constexpr std::size_t kMostNames = 3;
    if (changes.empty()) return {};
    std::string list;
    for (std::size_t i = 0; i < std::min(changes.size(), kMostNames); ++i)
        list += (i == 0 ? "" : ", ") + changes[i].name;
    const std::string tail = changes.size() > kMostNames
                                 ? T("rack.changed.more", {{"n", changes.size() - kMostNames}})
                                 : std::string();
    return T("rack.changed", {{"list", list}, {"tail", tail}});
}

} // namespace tamlo
