// tamlo project new, add, locate.

#include "cli/input_files.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/usage_error.h"

#include <map>
#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using FolderScan::PairChoice;

std::optional<PairChoice> pairChoice(const std::optional<std::string>& word)
{
    const std::map<std::string, PairChoice> choices{
        {"raw", PairChoice::raw}, {"jpeg", PairChoice::jpeg}, {"both", PairChoice::both}};
    return word ? std::optional(choices.at(*word)) : std::nullopt;
}

/// Runs the import. Errors: UsageError where a question has no answer.
Importer::Outcome imported(RollSession& session, const std::vector<fs::path>& inputs)
{
    std::vector<std::string> files;
    for (const fs::path& input : inputs) files.push_back(fs::absolute(input).string());
    std::optional<Importer::Outcome> outcome;
    bool ended = false;
    session.model().importer.addFiles(std::move(files), [&](std::optional<Importer::Outcome> what) {
        outcome = std::move(what);
        ended = true;
    });
    session.waitUntil([&] { return ended; });
    if (!outcome) throw UsageError(T("cli.project.needsPairs"));
    return *outcome;
}

/// Tells what could not be taken in. Returns the exit status.
int tellRefused(const Importer::Outcome& outcome)
{
    for (const std::string& file : outcome.missing) tell(T("cli.noFile", {{"file", file}}));
    for (const std::string& file : outcome.refused) tell(T("cli.project.noPicture", {{"file", file}}));
    return outcome.missing.empty() && outcome.refused.empty() ? 0 : 1;
}

int locateIn(RollSession& session, const fs::path& folder, std::ostream& results)
{
    bool ended = false;
    std::size_t found = 0;
    session.model().linker.findFolder(fs::absolute(folder), [&](std::size_t n) {
        found = n;
        ended = true;
    });
    session.waitUntil([&] { return ended; });
    if (found > 0) session.save();
    results << session.model().status() << std::endl;
    return session.model().linker.lostFrames().empty() ? 0 : 1;
}

int linkOne(RollSession& session, const ProjectLocateArguments& arguments, std::ostream& results)
{
    checkInput(*arguments.file);
    const FrameID id = session.frame(arguments.frames);
    if (arguments.force) session.questions().linkOther = true;
    std::optional<std::size_t> nearby;
    session.model().linker.linkFile(id, fs::absolute(*arguments.file), true,
                                    [&](std::size_t found) { nearby = found; });
    if (session.questions().cancelled > 0)
        throw std::runtime_error(T("cli.project.needsForce", {{"file", arguments.file->string()}}));
    session.waitUntil([&] { return nearby.has_value(); });
    session.save();
    results << T("link.linked", {{"n", 1}}) << std::endl;
    if (*nearby > 0)
        tellNote(T("cli.project.nearby",
                   {{"n", *nearby}, {"folder", fs::absolute(*arguments.file).parent_path().string()}}));
    return 0;
}

} // namespace

int run(RollSession& session, const ProjectAddArguments& arguments, std::ostream& results)
{
    session.questions().pairChoice = pairChoice(arguments.pairs);
    if (arguments.isNew) {
        Project project = Project::untitled();
        project.name = arguments.title.value_or(session.roll().stem().string());
        session.model().saver.adopt(std::move(project), session.roll());
    }
    Importer::Outcome outcome;
    if (!arguments.inputs.empty()) outcome = imported(session, arguments.inputs);
    const int status = tellRefused(outcome);
    if (arguments.isNew || outcome.report.added > 0) session.save();
    results << Intake::reportText(outcome.report) << std::endl;
    return status;
}

int run(RollSession& session, const ProjectLocateArguments& arguments, std::ostream& results)
{
    const bool isFolder = !arguments.file;
    std::error_code ignored;
    if (isFolder && !fs::is_directory(arguments.frames, ignored))
        throw UsageError(T("cli.project.noFolder", {{"file", arguments.frames}}));
    return isFolder ? locateIn(session, arguments.frames, results) : linkOne(session, arguments, results);
}

} // namespace tamlo::cli
