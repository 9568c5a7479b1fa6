// tamlo session: the verbs of `tamlo project` that say which roll is open, and those that show and write
// pictures of it as it is now, saved or not.

#include "app/project/project_backups.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/session_words.h"
#include "core/io/image_writer.h"
#include "core/profiles/formats/json_codec.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

int run(LiveSession& session, const ProjectRestoreArguments& arguments, std::ostream& results)
{
    const auto items = ProjectBackups::list(ProjectBackups::dir(session.roll()), false);
    const auto item = std::ranges::find(
        items, arguments.stamp, [](const ProjectBackups::Item& one) { return one.url.stem().string(); });
    if (item == items.end())
        throw UsageError(
            T("cli.project.noStamp", {{"stamp", arguments.stamp}, {"file", session.roll().string()}}));
    session.newRoll(arguments.output, [&] {
        if (!session.model().saver.restore(*item)) throw std::runtime_error(session.model().status());
    });
    results << session.model().status() << '\n';
    return 0;
}

int run(LiveSession& session, const ProjectRecentArguments& arguments, std::ostream& results)
{
    Recents& recents = session.model().recents;
    if (arguments.clear) {
        recents.clearRecentProjects();
        results << T("cli.project.recentCleared") << '\n';
        return 0;
    }
    Json list = Json::array();
    for (const auto& item : recents.menu()) {
        list.push_back({{"title", item.title}, {"file", item.url}});
        if (!arguments.json) results << item.title << "  " << item.url << '\n';
    }
    if (arguments.json) results << prettyJson(list) << '\n';
    return 0;
}

int run(LiveSession& session, const ProjectPreviewArguments& arguments, std::ostream& results)
{
    if (arguments.output.extension() != ".png") throw UsageError(T("cli.project.needsPng"));
    if (arguments.fit) session.setFit(*arguments.fit);
    const FrameID id = session.frame(arguments.frames);
    session.model().selection.openFrame(id);
    const bool isWhole = session.waitForTier(arguments.tier);
    const FrameScreen& screen = session.views().screen();
    ImageWriter::save(*screen.image(), arguments.output.string(), 0, std::nullopt);
    results << arguments.output.string() << " · " << session.views().loads().sourceInfo(id) << " · "
            << screen.info() << " · " << screen.badge().letter << '\n';
    if (isWhole) return 0;
    tellNote(T("cli.project.lesserTier", {{"help", screen.badge().help}}));
    return 1;
}

ExportDraft draftOf(LiveSession& session, const ProjectExportArguments& arguments)
{
    ExportDraft draft = session.model().exporter.exportDraft(std::nullopt);
    const std::map<std::string, ExportSet> sets{
        {"all", ExportSet::all}, {"not-rejected", ExportSet::notRejected}, {"selected", ExportSet::selected}};
    if (arguments.set) draft.setIndex = static_cast<int>(sets.at(*arguments.set));
    if (!arguments.frames.empty()) {
        draft.picked = session.frames(arguments.frames);
        draft.setIndex = ExportDraft::kPickedIndex;
    }
    draft.naming = *ExportNaming::fromText(arguments.naming);
    draft.customText = draft.nameText = arguments.text.value_or("");
    draft.type = *ExportDraft::typeOf(arguments.type);
    draft.scale = arguments.scale == "0.5" ? 0.5 : arguments.scale == "0.25" ? 0.25 : 1.0;
    draft.social = arguments.social.has_value();
    if (arguments.social && *arguments.social == "2048") draft.socialPx = 2048;
    return draft;
}

/// Options of the batch on the command line that no dialogue has.
bool isForTheBatch(const ProjectExportArguments& arguments)
{
    constexpr int kUsualQuality = 95;
    return arguments.shard || arguments.record || arguments.noRecord || arguments.dryRun ||
           arguments.resume || arguments.skipExisting || arguments.quality != kUsualQuality;
}

int run(LiveSession& session, const ProjectExportArguments& arguments, std::ostream& results)
{
    if (isForTheBatch(arguments)) throw UsageError(T("cli.session.plainExport"));
    session.questions().exportReply.reset();
    if (arguments.onConflict == "replace")
        session.questions().exportReply = ExportClashReply{ExportExistsAnswer::overwrite, true};
    if (arguments.onConflict == "copy")
        session.questions().exportReply = ExportClashReply{ExportExistsAnswer::keepBoth, true};
    std::optional<ExportReport> report;
    const bool begins =
        session.model().exporter.startExport(draftOf(session, arguments), fs::absolute(arguments.to),
                                             [&](const ExportReport& one) { report = one; });
    if (!begins) throw std::runtime_error(session.model().status());
    session.waitUntil([&] { return report.has_value(); });
    for (const ExportedFrame& one : report->outcome.written) results << one.file.string() << '\n';
    tell(report->text());
    const ExportOutcome& outcome = report->outcome;
    const bool isWhole =
        outcome.failed.empty() && !outcome.targetFault && !outcome.stopped && report->skipped.empty();
    return isWhole ? 0 : 1;
}

int run(LiveSession&, const ProjectBackupsArguments& arguments, std::ostream& results)
{
    return cli::run(arguments, results);
}

/// A new roll begins where the old one is left, saved.
int begin(LiveSession& session, const ProjectAddArguments& arguments, std::ostream& results)
{
    int status = 0;
    session.newRoll(arguments.roll, [&] { status = cli::run(session, arguments, results); });
    return status;
}

} // namespace

std::optional<int> runInSession(LiveSession& session, const ProjectCommand& command, std::ostream& results)
{
    return std::visit(
        [&]<typename Arguments>(const Arguments& arguments) -> std::optional<int> {
            if constexpr (std::is_same_v<Arguments, ProjectAddArguments>)
                return arguments.isNew ? std::optional(begin(session, arguments, results)) : std::nullopt;
            else if constexpr (
                requires { run(session, arguments, results); } &&
                !requires(RollSession & plain) { cli::run(plain, arguments, results); })
                return run(session, arguments, results);
            else
                return std::nullopt;
        },
        command);
}

} // namespace tamlo::cli
