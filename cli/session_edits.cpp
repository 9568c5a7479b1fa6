// tamlo session: what a screen does to its targets, to what the rack shows, to the crop and to the selection.

#include "cli/messages.h"
#include "cli/project_settings.h"
#include "cli/session_words.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/fmt.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

using Words = SessionWords;

// The targets: the selected frames of the grid, or the one on the develop screen.

void markTargets(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().marks.markCurrent(
        wordAt<Mark>(words, 1, {{"pick", Mark::selected}, {"reject", Mark::rejected}, {"none", Mark::none}}));
}

void turnTargets(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().turns.orientTarget(wordAt<OrientAction>(words, 1,
                                                            {{"right", OrientAction::right},
                                                             {"left", OrientAction::left},
                                                             {"flip-h", OrientAction::flipH},
                                                             {"flip-v", OrientAction::flipV},
                                                             {"reset", OrientAction::reset}}));
}

void removeTargets(LiveSession& session, const Words&, std::ostream&)
{
    session.questions().removePicked = true; // saying it is the answer
    session.model().removal.removeSelected(true);
}

void copySettings(LiveSession& session, const Words& words, std::ostream& results)
{
    if (words.size() > 1) {
        const PresetSchema::Blocks blocks = blocksNamed(words[1]);
        session.model().copying.copyBlock(blocksTitle(blocks), blocks);
    } else {
        session.model().copying.copySettings();
    }
    results << session.model().status() << '\n';
}

void pasteSettings(LiveSession& session, const Words& words, std::ostream&)
{
    Copying& copying = session.model().copying;
    words.size() > 1 && words[1] == "block" ? copying.pasteBlock() : copying.pasteSettings();
}

void resetRack(LiveSession& session, const Words& words, std::ostream&)
{
    Rack& rack = session.model().rack;
    if (words.size() < 2) return rack.resetSettingsOfTargets();
    const PresetSchema::Blocks blocks = blocksNamed(words[1]);
    rack.resetRackBlock(blocksTitle(blocks), blocks);
}

void rerollRack(LiveSession& session, const Words& words, std::ostream&)
{
    needDevelop(session);
    const auto& names = Seeds::kSeedStreamTexts;
    const auto stream = std::ranges::find(names, textAt(words, 1));
    if (stream == names.end()) throw badLine(words);
    session.model().rack.rerollRack(static_cast<Seeds::SeedStream>(stream - names.begin()));
}

void applyToAll(LiveSession& session, const Words& words, std::ostream&)
{
    const auto& cursor = session.model().selection.cursor();
    if (!cursor || !session.project().frame(*cursor)->process)
        throw UsageError(
            T("cli.project.noProcess", {{"text", cursor ? session.project().label(*cursor) : ""}}));
    session.questions().applyChoice =
        wordAt<ApplyTo>(words, 1, {{"empty", ApplyTo::onlyEmpty}, {"every", ApplyTo::every}});
    session.model().spreading.applyToAll(*cursor);
}

// The selection.

void toggle(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.toggleSelection(session.frame(textAt(words, 1)));
}

void extendTo(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.extendSelection(session.frame(textAt(words, 1)));
}

void selectAll(LiveSession& session, const Words&, std::ostream&)
{
    session.model().selection.selectAllVisible();
}

void row(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.stepRow(countAt(words, 1), words.size() > 2 && words[2] == "extend");
}

void edge(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.moveCursorToEdge(wordAt<bool>(words, 1, {{"first", true}, {"last", false}}),
                                               words.size() > 2 && words[2] == "extend");
}

// The crop. Where its rectangle ends up is told after each.

CropAspectKind aspectAt(const Words& words, std::size_t at)
{
    const std::string& word = textAt(words, at);
    if (word == "free") return CropAspectKind::free();
    if (word == "format") return CropAspectKind::format();
    const auto colon = word.find(':');
    if (colon == std::string::npos) throw badLine(words);
    const double w = numberAt({words[0], word.substr(0, colon)}, 1);
    const double h = numberAt({words[0], word.substr(colon + 1)}, 1);
    if (!(w > 0 && h > 0)) throw badLine(words);
    return CropAspectKind::of(std::max(w, h) / std::min(w, h));
}

Cropping& openCrop(LiveSession& session)
{
    Cropping& cropping = session.model().cropping;
    if (!cropping.cropMode()) throw UsageError(T("cli.session.needsCrop"));
    return cropping;
}

void tellCrop(const Cropping& cropping, std::ostream& results)
{
    const CropDraft& draft = *cropping.draft();
    const RectPx& rect = draft.rect();
    for (const double side : {rect.x, rect.y, rect.w, rect.h}) results << Fmt::number(side, 1) << ' ';
    results << Fmt::number(draft.angle(), 2) << "  " << cropping.windowLabel() << '\n';
}

void cropAspect(LiveSession& session, const Words& words, std::ostream& results)
{
    Cropping& cropping = openCrop(session);
    const CropAspectKind kind = aspectAt(words, 1);
    if (!cropping.draft()->isEnabled(kind)) throw std::runtime_error(T("crop.customSize"));
    cropping.change([&](CropDraft& draft) { draft.setAspect(kind); });
    tellCrop(cropping, results);
}

void cropTilt(LiveSession& session, const Words& words, std::ostream& results)
{
    Cropping& cropping = openCrop(session);
    if (words.size() == 5) {
        const Pipeline::PointPx from{numberAt(words, 1), numberAt(words, 2)};
        const Pipeline::PointPx to{numberAt(words, 3), numberAt(words, 4)};
        cropping.change([&](CropDraft& draft) { draft.levelBy(from, to); });
    } else {
        const double degrees = numberAt(words, 1);
        cropping.change([&](CropDraft& draft) { draft.setAngle(degrees); });
    }
    tellCrop(cropping, results);
}

void cropMove(LiveSession& session, const Words& words, std::ostream& results)
{
    const std::map<std::string, Cropping::Change> known{
        {"swap", [](CropDraft& draft) { draft.swapAspect(); }},
        {"max", [](CropDraft& draft) { draft.expandToMax(); }},
        {"reset", [](CropDraft& draft) { draft.reset(); }},
        {"nudge", [&](CropDraft& draft) { draft.nudge(numberAt(words, 2), numberAt(words, 3)); }}};
    Cropping& cropping = openCrop(session);
    cropping.change(wordAt(words, 1, known));
    tellCrop(cropping, results);
}

void resetCrops(LiveSession& session, const Words&, std::ostream&)
{
    session.model().cropping.resetCropOfTargets();
}

// A look at another process, and the way back through the history.

void peek(LiveSession& session, const Words& words, std::ostream& results)
{
    constexpr std::int64_t kPeekLong = 1024;
    needDevelop(session);
    ProcessSettings settings = session.model().rack.rackSettings();
    processChange({words.begin() + 1, words.end()}, session.model().store())(settings);
    std::optional<KeyedRenderer::Outcome> seen;
    session.views().screen().peek(settings, kPeekLong,
                                  [&](KeyedRenderer::Outcome outcome) { seen = std::move(outcome); });
    session.waitUntil([&] { return seen.has_value(); });
    if (const auto* failure = std::get_if<KeyedRenderer::Failure>(&*seen))
        throw std::runtime_error(failure->text);
    const auto* output = std::get_if<KeyedRenderer::Output>(&*seen);
    if (!output) throw std::runtime_error(T("cli.session.noPicture"));
    results << output->image->width << 'x' << output->image->height << '\n';
}

void undoTo(LiveSession& session, const Words& words, std::ostream&)
{
    const int left = countAt(words, 1);
    if (left < 0) throw badLine(words);
    session.model().undoTo(static_cast<std::size_t>(left));
}

} // namespace

const SessionVerbs& editVerbs()
{
    static const SessionVerbs verbs{{"mark-targets", markTargets},
                                    {"turn-targets", turnTargets},
                                    {"remove-targets", removeTargets},
                                    {"copy-settings", copySettings},
                                    {"paste-settings", pasteSettings},
                                    {"reset-rack", resetRack},
                                    {"reroll-rack", rerollRack},
                                    {"apply-all", applyToAll},
                                    {"toggle", toggle},
                                    {"extend", extendTo},
                                    {"select-all", selectAll},
                                    {"row", row},
                                    {"edge", edge},
                                    {"crop-aspect", cropAspect},
                                    {"crop-tilt", cropTilt},
                                    {"crop-frame", cropMove},
                                    {"crop-reset", resetCrops},
                                    {"peek", peek},
                                    {"undo-to", undoTo}};
    return verbs;
}

} // namespace tamlo::cli
