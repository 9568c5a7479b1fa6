#include "cli/rack.h"

#include "app/project/process_rules.h"
#include "app/shell/rack_cards.h"
#include "cli/columns.h"
#include "cli/project_session.h"
#include "core/io/image_loader.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"

#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

Json knobJson(const RackKnob& one)
{
    Json out{{"key", one.knob->option}, {"name", one.knob->title()}, {"value", one.value}};
    if (one.row) {
        out["value"] = one.row->value;
        out["default"] = one.row->def;
        out["range"] = {one.row->low, one.row->high};
        out["step"] = one.row->step;
        out["at_default"] = one.row->atDefault();
        out["text"] = one.row->text();
    }
    if (!one.choices.empty()) out["choices"] = one.choices;
    return out;
}

Json cardJson(const RackCard& card)
{
    Json out{{"block", PresetSchema::rawText(card.block)}, {"title", card.title}, {"knobs", Json::array()}};
    if (!card.caption.empty()) out["caption"] = card.caption;
    if (!card.note.empty()) out["note"] = card.note;
    for (const RackKnob& one : card.knobs) out["knobs"].push_back(knobJson(one));
    return out;
}

Json materialJson(const std::string& id, const std::string& title, const std::optional<std::string>& badge)
{
    Json out{{"id", id}, {"title", title}};
    if (badge) out["fidelity"] = *badge;
    return out;
}

Json rackJson(const AppModel& model, const Frame& frame, const ProcessSettings& settings,
              const std::vector<RackCard>& cards, const std::vector<KnobChange>& changes)
{
    const Lists& lists = model.lists;
    const RackVisibility rack = *RackVisibility::of(settings, model.store());
    const std::string paper = resolvedPaper(settings, model.store());
    Json out{
        {"film",
         materialJson(settings.stock, lists.filmTitle(settings.stock), lists.fidelityBadge(settings.stock))},
        {"lens", materialJson(settings.lens, settings.lens, lists.lensFidelityBadge(settings.lens))},
        {"paper", materialJson(paper, lists.paperTitle(paper), lists.paperFidelityBadge(paper))},
        {"formats", rack.allowedFormats()},
        {"white_balance", wbPositions(ImageLoader::isRAW(frame.url), rack.film, settings.options.wbMode)},
        {"cards", Json::array()},
        {"changed", Json::array()}};
    if (const auto fugitive = rack.fugitiveFormat()) out["fugitive_format"] = *fugitive;
    if (const auto hint = lists.apertureHint(settings.lens)) out["aperture_hint"] = *hint;
    if (settings.presetName) out["recipe"] = *settings.presetName;
    for (const RackCard& card : cards) out["cards"].push_back(cardJson(card));
    for (const KnobChange& change : changes) out["changed"].push_back(change.key);
    return out;
}

void writeKnob(const RackKnob& one, std::ostream& out)
{
    constexpr std::size_t kKeyWidth = 26, kValueWidth = 14;
    out << "  " << leftAligned(one.knob->option, kKeyWidth)
        << leftAligned(one.row ? one.row->text() : one.value, kValueWidth);
    if (one.row)
        out << Fmt::number(one.row->low, 3) << " … " << Fmt::number(one.row->high, 3) << " / "
            << Fmt::number(one.row->step, 3) << "  ";
    for (const std::string& choice : one.choices) out << choice << ' ';
    out << (one.choices.empty() ? "" : " ") << one.knob->title() << '\n';
}

} // namespace

int runRack(const RackArguments& arguments, std::ostream& results)
{
    const auto session = ProjectSession::open(arguments.roll, ProjectSession::Access::read);
    const FrameID id = session->frame(arguments.frames);
    const Frame& frame = *session->project().frame(id);
    const ProcessSettings settings = frame.process ? *frame.process : ProcessSettings::fresh();
    const std::vector<RackCard> cards = rackCards(settings, session->model().store());
    if (cards.empty()) throw std::runtime_error(T("cli.noSuch.films", {{"id", settings.stock}}));
    const auto changes = differences(session->model().rack.recipeOf(settings), settings);
    if (arguments.json) {
        results << prettyJson(rackJson(session->model(), frame, settings, cards, changes)) << std::endl;
        return 0;
    }
    results << summary(settings, session->model().store()) << '\n';
    for (const RackCard& card : cards) {
        results << card.title << (card.caption.empty() ? "" : "  " + card.caption) << '\n';
        for (const RackKnob& one : card.knobs) writeKnob(one, results);
        if (!card.note.empty()) results << "  " << card.note << '\n';
    }
    if (!changes.empty()) results << changedLine(changes) << '\n';
    results.flush();
    return 0;
}

} // namespace tamlo::cli
