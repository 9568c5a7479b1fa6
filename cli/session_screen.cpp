#include "cli/session_screen.h"

#include "app/preview/program_build.h"
#include "app/shell/history_rows.h"
#include "cli/interrupted.h"
#include "cli/project_settings.h"
#include "cli/session_words.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <iomanip>
#include <map>
#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

using Words = SessionWords;
constexpr Size kUsualFit{1600, 1000};

bool isOnDevelop(LiveSession& session)
{
    return session.model().selection.screen() == Screen::develop;
}

void open(LiveSession& session, const Words& words, std::ostream&)
{
    if (words.size() != 2) throw badLine(words);
    if (session.roll().empty() || std::filesystem::path(words[1]).extension() == Project::kExtension)
        return session.openRoll(words[1]);
    session.model().selection.openFrame(session.frame(words[1]));
}

void wait(LiveSession& session, const Words& words, std::ostream& results)
{
    const std::string tier = words.size() == 2 ? words[1] : "";
    if (tier == "tiles") {
        session.waitUntil([&] { return session.views().isSettled(); });
        return;
    }
    if (tier != "proxy" && tier != "screen" && tier != "master") throw badLine(words);
    needDevelop(session);
    session.waitForTier(tier);
    const FrameScreen& screen = session.views().screen();
    results << screen.image()->width << 'x' << screen.image()->height << " " << screen.info() << '\n';
}

void undo(LiveSession& session, const Words& words, std::ostream& results)
{
    const bool isRedo = words[0] == "redo";
    for (int n = countAt(words, 1); n > 0; --n)
        if (!(isRedo ? session.model().redo() : session.model().undo())) {
            results << T(isRedo ? "cli.session.nothingToRedo" : "cli.session.nothingToUndo") << '\n';
            return;
        }
    results << session.model().status() << '\n';
}

void ab(LiveSession& session, const Words& words, std::ostream&)
{
    Sides& sides = session.model().sides;
    const std::string word = words.size() > 1 ? words[1] : "on";
    needDevelop(session);
    if (word == "on") return sides.enterAB();
    const std::map<std::string, std::function<void()>> known{
        {"a", [&] { sides.focusAB(Sides::ABSide::a); }},
        {"b", [&] { sides.focusAB(Sides::ABSide::b); }},
        {"keep-a", [&] { sides.exitAB(Sides::ABSide::a); }},
        {"keep-b", [&] { sides.exitAB(Sides::ABSide::b); }}};
    wordAt(words, 1, known)();
}

void knob(LiveSession& session, const Words& words, std::ostream&)
{
    needDevelop(session);
    Rack& rack = session.model().rack;
    ProcessSettings settings = rack.rackSettings();
    processChange({words.begin() + 1, words.end()}, session.model().store())(settings);
    rack.setRackSettings(settings);
}

void endGesture(LiveSession& session, const Words&, std::ostream&)
{
    session.model().endGesture();
}

void crop(LiveSession& session, const Words& words, std::ostream& results)
{
    Cropping& cropping = session.model().cropping;
    if (words[0] == "crop-begin") {
        needDevelop(session);
        if (!cropping.enterCropMode()) throw std::runtime_error(T("cli.session.noCrop"));
    } else if (words[0] == "crop-drag") {
        const std::map<std::string, CropHandle> handles{
            {"body", CropHandle::body},     {"top-left", CropHandle::topLeft},
            {"top", CropHandle::top},       {"top-right", CropHandle::topRight},
            {"right", CropHandle::right},   {"bottom-right", CropHandle::bottomRight},
            {"bottom", CropHandle::bottom}, {"bottom-left", CropHandle::bottomLeft},
            {"left", CropHandle::left}};
        if (!cropping.cropMode()) throw UsageError(T("cli.session.needsCrop"));
        const CropHandle handle = wordAt(words, 1, handles);
        const double dx = numberAt(words, 2), dy = numberAt(words, 3);
        const bool fromCentre = words.size() > 4 && words[4] == "centre";
        cropping.change([&](CropDraft& draft) { draft.drag(handle, dx, dy, {.fromCentre = fromCentre}); });
        const RectPx& rect = cropping.draft()->rect();
        results << Fmt::number(rect.x, 1) << ' ' << Fmt::number(rect.y, 1) << ' ' << Fmt::number(rect.w, 1)
                << ' ' << Fmt::number(rect.h, 1) << '\n';
    } else {
        words.size() > 1 && words[1] == "cancel" ? cropping.leaveCropMode() : cropping.applyCropAndExit();
    }
}

void zoom(LiveSession& session, const Words& words, std::ostream& results)
{
    needDevelop(session);
    Zoom& zoom = session.model().zoom;
    const std::string word = words.size() > 1 ? words[1] : "";
    if (word == "in" || word == "out")
        zoom.stepZoom(word == "in" ? 1 : -1);
    else if (word == "fit")
        zoom.reset();
    else if (word == "1:1")
        zoom.setZoomPercent(100);
    else
        zoom.setZoomPercent(numberAt(words, 1));
    results << zoom.zoomLabel() << '\n';
}

void pan(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().zoom.setPan({numberAt(words, 1), numberAt(words, 2)});
}

void select(LiveSession& session, const Words& words, std::ostream&)
{
    if (words.size() != 2) throw badLine(words);
    session.model().selection.select(session.frames(words[1]));
}

void step(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.step(countAt(words, 1));
}

void grid(LiveSession& session, const Words&, std::ostream&)
{
    session.model().selection.backToGrid();
}

void filter(LiveSession& session, const Words& words, std::ostream&)
{
    session.model().selection.setFilter(wordAt<GridFilter>(words, 1,
                                                           {{"all", GridFilter::all},
                                                            {"hide-rejected", GridFilter::hideRejected},
                                                            {"picked", GridFilter::selected}}));
}

void history(LiveSession& session, const Words&, std::ostream& results)
{
    for (const HistoryRow& row : historyRows(session.model())) {
        const auto moment = static_cast<std::time_t>(row.date);
        std::tm parts{};
        localtime_r(&moment, &parts);
        results << std::put_time(&parts, "%H:%M:%S") << (row.isUndone ? " - " : "   ") << row.name;
        for (const std::string& frame : row.frames) results << ' ' << frame;
        results << '\n';
    }
}

void saveNow(LiveSession& session, const Words&, std::ostream&)
{
    session.saveNow();
}

void stats(LiveSession& session, const Words&, std::ostream& results)
{
    const AppModel& model = session.model();
    const FrameScreen& screen = session.views().screen();
    Json out{{"frames", model.project().frames.size()},
             {"visible", model.selection.visibleIDs().size()},
             {"selected", model.selection.selected().size()},
             {"screen", isOnDevelop(session) ? "develop" : "grid"},
             {"undo", model.history().undoStack().size()},
             {"redo", model.history().redoStack().size()},
             {"ab", model.sides.abEnabled()},
             {"crop", model.cropping.cropMode()},
             {"zoom", model.zoom.zoomLabel()},
             {"picture_px", screen.detailLong()},
             {"tiles", session.views().tiles().shownGen()},
             {"tiles_pending", session.views().tiles().pendingCount()},
             {"loading", session.views().loads().loadingCount()},
             {"unread", session.views().loads().failureCount()},
             {"source_bytes", session.views().previews().frames.sourceBytes()},
             {"unsaved", model.saver.hasChanges()},
             {"status", model.status()}};
    if (const auto& cursor = model.selection.cursor()) out["frame"] = model.project().label(*cursor);
    results << out.dump() << '\n';
}

const SessionVerbs kVerbs{{"open", open},       {"wait", wait},     {"undo", undo},      {"redo", undo},
                          {"ab", ab},           {"knob", knob},     {"end", endGesture}, {"crop-begin", crop},
                          {"crop-drag", crop},  {"crop-end", crop}, {"zoom", zoom},      {"pan", pan},
                          {"select", select},   {"step", step},     {"grid", grid},      {"filter", filter},
                          {"history", history}, {"save", saveNow},  {"stats", stats}};

} // namespace

LiveSession::LiveSession()
    : application_(Application::Mode::user, {loop_, ProfileStore::shared(), questions_, clipboard_},
                   programBuild())
{
    application_.start(false);
    FrameScreen& screen = views().screen();
    screen.setFit(kUsualFit, 1);
    model().zoom.setFit({static_cast<double>(kUsualFit.width), static_cast<double>(kUsualFit.height)},
                        {static_cast<double>(kUsualFit.width), static_cast<double>(kUsualFit.height)}, 1);
}

LiveSession::~LiveSession()
{
    application_.end();
}

void LiveSession::waitUntil(const std::function<bool()>& done)
{
    if (!loop_.runUntil(done)) throw Interrupted();
}

void LiveSession::turn()
{
    bool isOver = false;
    loop_.post([&] { isOver = true; });
    waitUntil([&] { return isOver; });
}

void LiveSession::openRoll(const Path& named)
{
    const Path path = rollPath(named);
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        throw UsageError(T("cli.noFile", {{"file", named.string()}}));
    if (!roll_.empty()) saveNow();
    if (!model().saver.open(path)) throw std::runtime_error(model().status());
    roll_ = path;
}

void LiveSession::saveNow()
{
    if (roll_.empty() || !model().saver.hasChanges()) return;
    bool ended = false;
    std::optional<std::string> problem;
    model().saver.saveProject(roll_, [&](std::optional<std::string> why) {
        problem = std::move(why);
        ended = true;
    });
    waitUntil([&] { return ended; });
    if (problem) throw std::runtime_error(*problem);
}

bool LiveSession::waitForTier(const std::string& tier)
{
    const FrameScreen& screen = views().screen();
    const auto isThere = [&] {
        if (!screen.image()) return false;
        if (tier == "proxy") return true;
        return screen.detailLong() >=
               (tier == "screen" ? screen.neededDetailLong() : screen.fullDetailLong());
    };
    waitUntil([&] { return isThere() || !screen.isBusy(); });
    if (!screen.image()) throw std::runtime_error(T("cli.session.noPicture"));
    return isThere();
}

void LiveSession::setFit(const std::string& text)
{
    constexpr int kLongest = 65'536;
    const auto cross = text.find('x');
    const auto side = [&](const std::string& digits) {
        const bool isNumber =
            !digits.empty() && digits.size() < 6 && digits.find_first_not_of("0123456789") == digits.npos;
        const int n = isNumber ? std::stoi(digits) : 0;
        if (n < 1 || n > kLongest) throw UsageError(T("cli.project.badFit", {{"text", text}}));
        return n;
    };
    const int width = side(text.substr(0, cross));
    const int height = side(cross == text.npos ? "" : text.substr(cross + 1));
    views().screen().setFit({width, height}, 1);
    const ScreenSize room{static_cast<double>(width), static_cast<double>(height)};
    model().zoom.setFit(room, room, 1);
}

void LiveSession::newRoll(const Path& named, const std::function<void()>& begin)
{
    const Path path = rollPath(named);
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, ignored)))
        throw UsageError(T("cli.project.exists", {{"file", named.string()}}));
    if (!roll_.empty()) saveNow();
    const Path before = std::exchange(roll_, path);
    try {
        begin();
    } catch (...) {
        if (model().projectURL() != std::optional(path)) roll_ = before; // it never began
        throw;
    }
    saveNow();
}

bool runScreenVerb(LiveSession& session, const Words& words, std::ostream& results)
{
    for (const SessionVerbs* verbs : {&kVerbs, &editVerbs(), &catalogueVerbs()}) {
        const auto verb = verbs->find(words[0]);
        if (verb == verbs->end()) continue;
        verb->second(session, words, results);
        return true;
    }
    return false;
}

std::vector<std::string> screenVerbs()
{
    std::vector<std::string> out;
    for (const SessionVerbs* verbs : {&kVerbs, &editVerbs(), &catalogueVerbs()})
        for (const auto& [name, verb] : *verbs) out.push_back(name);
    std::ranges::sort(out);
    return out;
}

} // namespace tamlo::cli
