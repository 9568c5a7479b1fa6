// tamlo project set, preset, autoprint, mark, turn, reset, remove.

#include "cli/catalogue.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/project_settings.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/user_files.h"

#include <map>
#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
/// Saves what an edit has changed and tells how much that was.
int concluded(RollSession& session, std::size_t changed, std::ostream& results)
{
    if (changed > 0) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(changed)) << std::endl;
    return 0;
}

/// How many frames of a roll differ from what they were.
std::size_t changedSince(const Project& before, const Project& after)
{
    std::size_t changed = 0;
    for (std::size_t i = 0; i < std::min(before.frames.size(), after.frames.size()); ++i)
        changed += before.frames.ref(i) != after.frames.ref(i);
    return changed;
}

/// The preset of an id or a file, its profiles all in the catalogue: a roll can't carry any.
PresetDocument presetNamed(const std::string& idOrFile, const ProfileStore& store)
{
    const fs::path path(idOrFile);
    std::error_code ignored;
    const bool isFile = path.extension() == ".tpreset" || path.extension() == ".json" ||
                        path.has_parent_path() || fs::is_regular_file(path, ignored);
    const std::string id = isFile ? "" : profileNamed(store, ProfileKind::presets, idOrFile);
    try {
        if (!isFile) return store.presetDocument(id);
        return PresetDocument::validate(PresetDocument::decode(UserFiles::read(path)), store, false);
    } catch (const PresetError& error) {
        throw UsageError(idOrFile + ": " + error.what());
    }
}

} // namespace

int run(RollSession& session, const ProjectSetArguments& arguments, std::ostream& results)
{
    const auto change = processChange(arguments.settings, ProfileStore::shared());
    const auto ids = session.frames(arguments.frames);
    return concluded(session, session.model().rack.change(ids, change), results);
}

int run(RollSession& session, const ProjectPresetArguments& arguments, std::ostream& results)
{
    const PresetDocument document = presetNamed(arguments.preset, ProfileStore::shared());
    const auto blocks = arguments.blocks ? blocksNamed(*arguments.blocks) : document.blocks();
    const auto ids = session.frames(arguments.frames);
    for (const std::string& note : document.warnings) tellNote(note);
    return concluded(session, session.model().presets.apply(ids, document.typed(blocks), document.id()),
                     results);
}

int run(RollSession& session, const ProjectAutoPrintArguments& arguments, std::ostream& results)
{
    PrintersEye& eye = session.model().printersEye;
    std::optional<PrintersEye::Report> report;
    if (!eye.autoPrint(session.frames(arguments.frames),
                       [&](const PrintersEye::Report& last) { report = last; }))
        throw UsageError(T("cli.project.looking"));
    session.waitUntil([&] { return report.has_value(); });
    bool failed = false;
    for (const PrintersEye::Seen& one : report->seen) {
        const std::string label = session.project().label(one.id);
        failed = failed || one.failed;
        if (!one.why.empty())
            tellNote(T("cli.autoPrintNot", {{"file", label}, {"reason", one.why}}));
        else
            results << T("cli.project.autoPrinted", {{"label", label},
                                                     {"ev", Fmt::number(one.print.printEv, 2)},
                                                     {"grade", Fmt::number(one.print.grade, 2)},
                                                     {"white", Fmt::number(one.print.after.white, 0)},
                                                     {"before", Fmt::number(one.print.before.white, 0)}})
                    << std::endl;
    }
    concluded(session, report->changed, results);
    return failed ? 1 : 0;
}

int run(RollSession& session, const ProjectMarkArguments& arguments, std::ostream& results)
{
    const std::map<std::string, Mark> marks{
        {"pick", Mark::selected}, {"reject", Mark::rejected}, {"none", Mark::none}};
    const auto ids = session.frames(arguments.frames);
    const Project before = session.project();
    session.model().marks.assign(ids, marks.at(arguments.mark));
    return concluded(session, changedSince(before, session.project()), results);
}

int run(RollSession& session, const ProjectTurnArguments& arguments, std::ostream& results)
{
    const std::map<std::string, OrientAction> actions{{"right", OrientAction::right},
                                                      {"left", OrientAction::left},
                                                      {"flip-h", OrientAction::flipH},
                                                      {"flip-v", OrientAction::flipV},
                                                      {"reset", OrientAction::reset}};
    const auto ids = session.frames(arguments.frames);
    const Project before = session.project();
    session.model().turns.orient(ids, actions.at(arguments.turn));
    return concluded(session, changedSince(before, session.project()), results);
}

int run(RollSession& session, const ProjectResetArguments& arguments, std::ostream& results)
{
    const auto blocks = arguments.block ? blocksNamed(*arguments.block) : PresetSchema::Blocks();
    const auto ids = session.frames(arguments.frames);
    Rack& rack = session.model().rack;
    const std::size_t changed =
        blocks.empty() ? rack.resetSettings(ids) : rack.resetBlock(ids, blocksTitle(blocks), blocks);
    return concluded(session, changed, results);
}

int run(RollSession& session, const ProjectRemoveArguments& arguments, std::ostream& results)
{
    const auto ids = session.frames(arguments.frames);
    const std::size_t before = session.project().frames.size();
    session.model().removal.remove(ids, false); // naming the frames is the answer
    const std::size_t removed = before - session.project().frames.size();
    if (removed > 0) session.save();
    results << Loc::string("cli.project.removed", static_cast<std::int64_t>(removed)) << std::endl;
    return 0;
}

} // namespace tamlo::cli
