// tamlo project show, check.

#include "app/project/process_rules.h"
#include "app/shell/knob_changes.h"
#include "cli/columns.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/error_words.h"

#include <algorithm>
#include <ostream>

namespace tamlo::cli {
namespace {

constexpr std::string_view kMarks[] = {"none", "picked", "rejected"};
constexpr std::string_view kStates[] = {"ok", "moved", "offline", "missing", "changed", "unreadable"};

std::string_view textOf(Mark mark)
{
    return kMarks[static_cast<std::size_t>(mark)];
}
std::string_view textOf(FileState state)
{
    return kStates[static_cast<std::size_t>(state)];
}

std::string signOf(Mark mark)
{
    constexpr const char* kSigns[] = {" ", "○", "×"};
    return kSigns[static_cast<std::size_t>(mark)];
}

std::string stateText(FileState state)
{
    return state == FileState::ok ? std::string() : T("cli.project.state." + std::string(textOf(state)));
}

Json processJson(const ProcessSettings& process)
{
    Json out{{"film", process.stock}, {"lens", process.lens}, {"paper", process.paper}};
    Json changed = Json::object();
    const RenderOptions usual = ProcessSettings::fresh().options;
    for (const OptionRow& row : optionTable()) {
        Json value, before;
        row.write(process.options, value);
        row.write(usual, before);
        if (value != before) changed[row.key] = std::move(value);
    }
    out["options"] = std::move(changed);
    if (process.presetName) out["preset"] = *process.presetName;
    if (process.presetName) out["preset_changed"] = process.modified;
    return out;
}

Json frameJson(std::size_t place, const Frame& frame, FileState state)
{
    Json out{{"place", place + 1},
             {"id", frame.id.text()},
             {"file", frame.url},
             {"state", textOf(state)},
             {"mark", textOf(frame.mark)},
             {"turn", frame.orient.rot},
             {"mirror", frame.orient.mirror},
             {"seed", frame.effectiveSeed()}};
    out["process"] = frame.process ? processJson(*frame.process) : Json();
    if (frame.crop)
        out["crop"] = {frame.crop->x, frame.crop->y, frame.crop->w, frame.crop->h, frame.crop->angle};
    if (frame.exportedAt) out["exported"] = frame.exportedName.value_or("");
    if (frame.shot && !frame.shot->isEmpty()) out["shot"] = frame.shot->line();
    return out;
}

/// A name that stays on its line.
std::string onOneLine(std::string name)
{
    for (char& c : name)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return name;
}

std::string frameLine(std::size_t place, const Frame& frame, FileState state, std::size_t nameWidth,
                      const ProfileStore& store)
{
    std::string line = Project::label(place) + " " + signOf(frame.mark) + " " +
                       leftAligned(onOneLine(frame.fileName()), nameWidth) + "  " +
                       (frame.process ? summary(*frame.process, store) : T("cli.project.original"));
    const auto add = [&](const std::string& text) {
        if (!text.empty()) line += " · " + text;
    };
    if (frame.process && frame.process->presetName)
        add(*frame.process->presetName + (frame.process->modified ? "*" : ""));
    if (frame.exportedAt) add(T("cli.project.exported", {{"file", frame.exportedName.value_or("")}}));
    add(stateText(state));
    return line;
}

/// What stands in a frame's way: its source, the profiles that it names, values that no knob has.
std::vector<std::string> problemsOf(const Frame& frame, FileState state, const ProfileStore& store)
{
    std::vector<std::string> out;
    if (state != FileState::ok && state != FileState::moved) out.push_back(stateText(state));
    if (!frame.process) return out;
    const ProcessSettings& process = *frame.process;
    const auto need = [&](ProfileKind kind, const std::string& id) {
        const auto names = store.list(kind, true);
        if (std::ranges::find(names, id) == names.end())
            out.push_back(T("cli.noSuch." + std::string(rawText(kind)), {{"id", id}}));
    };
    need(ProfileKind::films, process.stock);
    need(ProfileKind::lenses, process.lens);
    if (!process.paper.empty()) need(ProfileKind::papers, process.paper);
    for (const OptText& filter :
         {process.options.filter, process.options.filterCut, process.options.filterDiffusion,
          process.options.filterRays, process.options.filterGrad})
        if (filter && !filter->empty()) need(ProfileKind::filters, *filter);
    try {
        checkOptions(process.options);
    } catch (const TamloError& error) {
        out.push_back(ErrorWords::of(error));
    }
    return out;
}

} // namespace

int run(RollSession& session, const ProjectShowArguments& arguments, std::ostream& results)
{
    const Project& project = session.project();
    const auto places = project.frames.places();
    const std::vector<FrameID> ids = session.frames(arguments.frames);
    if (arguments.json) {
        Json list = Json::array();
        for (const FrameID& id : ids) {
            const Frame& frame = project.frames[places.at(id)];
            list.push_back(frameJson(places.at(id), frame, session.stateOf(frame)));
        }
        results << prettyJson({{"file", session.roll().string()}, {"name", project.name}, {"frames", list}})
                << std::endl;
        return 0;
    }
    std::size_t nameWidth = 0;
    for (const FrameID& id : ids)
        nameWidth = std::max(nameWidth, columnsOf(project.frames[places.at(id)].fileName()));
    for (const FrameID& id : ids) {
        const Frame& frame = project.frames[places.at(id)];
        results << frameLine(places.at(id), frame, session.stateOf(frame), nameWidth, ProfileStore::shared())
                << "\n";
    }
    return 0;
}

int run(RollSession& session, const ProjectCheckArguments& arguments, std::ostream& results)
{
    const Project& project = session.project();
    bool isExamined = false;
    session.model().linker.examineAll([&] { isExamined = true; });
    session.waitUntil([&] { return isExamined; });
    Json list = Json::array();
    for (std::size_t i = 0; i < project.frames.size(); ++i) {
        const Frame& frame = project.frames[i];
        for (const std::string& text : problemsOf(frame, session.stateOf(frame), ProfileStore::shared()))
            list.push_back({{"place", i + 1}, {"file", frame.url}, {"problem", text}});
    }
    const int status = list.empty() ? 0 : 1;
    if (arguments.json) {
        results << prettyJson({{"file", session.roll().string()},
                               {"frames", project.frames.size()},
                               {"problems", std::move(list)}})
                << std::endl;
        return status;
    }
    for (const Json& problem : list)
        results << T("cli.project.problem",
                     {{"label", Project::label(problem["place"].get<std::size_t>() - 1)},
                      {"file", onOneLine(problem["file"].get<std::string>())},
                      {"text", problem["problem"].get<std::string>()}})
                << "\n";
    if (list.empty())
        results << T("cli.project.sound",
                     {{"file", session.roll().string()},
                      {"frames",
                       Loc::string("project.frames", static_cast<std::int64_t>(project.frames.size()))}})
                << std::endl;
    return status;
}

} // namespace tamlo::cli
