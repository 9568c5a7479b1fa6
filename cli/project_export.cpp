// tamlo project export: frames of a roll as finished files. The roll is read without its lock, so that others
// may edit it meanwhile, and several machines may print it together; the lock is taken for the moments in
// which is noted what was written.

#include "app/export/export_report.h"
#include "app/export/photographs.h"
#include "cli/export_lines.h"
#include "cli/export_record.h"
#include "cli/interrupted.h"
#include "cli/messages.h"
#include "cli/progress.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/console.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using Clock = ExportLines::Clock;
using nlohmann::ordered_json;

struct Shard {
    std::size_t k = 1, count = 1;
};

/// "2/5".
Shard shardOf(const std::string& text)
{
    const std::size_t slash = text.find('/');
    const auto number = [&](std::string_view digits) -> std::size_t {
        const bool isNumber =
            !digits.empty() && digits.size() < 10 && digits.find_first_not_of("0123456789") == digits.npos;
        return isNumber ? std::stoul(std::string(digits)) : 0;
    };
    Shard shard;
    if (slash != text.npos)
        shard = {number(std::string_view(text).substr(0, slash)),
                 number(std::string_view(text).substr(slash + 1))};
    if (slash == text.npos || shard.k < 1 || shard.k > shard.count)
        throw UsageError(T("cli.export.badShard", {{"text", text}}));
    return shard;
}

void checkArguments(const ProjectExportArguments& arguments)
{
    if (!arguments.frames.empty() && arguments.set) throw UsageError(T("cli.export.framesAndSet"));
    if (arguments.shard && arguments.onConflict == "copy") throw UsageError(T("cli.export.shardCopy"));
    if (arguments.shard && arguments.resume) throw UsageError(T("cli.export.shardResume"));
    if (arguments.naming == "custom" && !arguments.text) throw UsageError(T("cli.export.needsText"));
}

/// The folder to write to, made where its parent is there.
fs::path targetFolder(const fs::path& named, bool makes)
{
    std::error_code problem;
    fs::path folder = fs::absolute(named).lexically_normal();
    if (!folder.has_filename()) folder = folder.parent_path();
    if (fs::is_directory(folder, problem)) return folder;
    if (fs::exists(fs::symlink_status(folder, problem)))
        throw UsageError(T("cli.export.notFolder", {{"folder", named.string()}}));
    if (!fs::is_directory(folder.parent_path(), problem))
        throw UsageError(
            T("cli.noParent", {{"folder", named.string()}, {"parent", folder.parent_path().string()}}));
    if (makes) fs::create_directory(folder);
    return folder;
}

ExportDraft draftOf(const ProjectExportArguments& arguments, const Project& project)
{
    ExportDraft draft;
    draft.naming = *ExportNaming::fromText(arguments.naming);
    draft.customText = draft.nameText = arguments.text.value_or("");
    draft.type = *ExportDraft::typeOf(arguments.type);
    draft.setIndex = static_cast<int>(project.lastExportSet);
    if (arguments.set)
        draft.setIndex = static_cast<int>(*arguments.set == "all"            ? ExportSet::all
                                          : *arguments.set == "not-rejected" ? ExportSet::notRejected
                                                                             : ExportSet::selected);
    return draft;
}

ExportSettings settingsOf(const ProjectExportArguments& arguments, const Project& project)
{
    ExportSettings settings;
    settings.scale = arguments.scale == "0.5" ? 0.5 : arguments.scale == "0.25" ? 0.25 : 1.0;
    settings.social = arguments.social.has_value();
    if (arguments.social && *arguments.social == "2048") settings.socialPx = 2048;
    settings.quality = arguments.quality;
    settings.skipsExisting = arguments.skipExisting;
    settings.cropGate = project.cropGate;
    settings.frames = project.frames;
    settings.signature.software = OutputMetadata::softwareName(TAMLO_VERSION);
    return settings;
}

class Export {
public:
    Export(const ProjectExportArguments& arguments, std::ostream& results)
        : arguments_(arguments),
          session_(ProjectSession::open(arguments.roll, ProjectSession::Access::read)),
          project_(session_->model().project()),
          draft_(draftOf(arguments, project_)),
          folder_(targetFolder(arguments.to, !arguments.dryRun)),
          set_(lookedAt(arguments.frames.empty() ? draft_.frames(project_)
                                                 : session_->frames(arguments.frames))),
          photographs_(project_.frames),
          lines_(results, set_.size(), arguments.json),
          results_(results)
    {}

    int run()
    {
        planJobs();
        if (arguments_.dryRun) return tellPlan();
        refuseUndecided();
        Progress progress(jobs_.size(), arguments_.json && !platform::errorIsTerminal());
        ExportRecord recorder(rollPath(arguments_.roll),
                              !arguments_.noRecord && (!arguments_.shard || arguments_.record));
        ExportRun run(ProfileStore::shared(), settingsOf(arguments_, project_), photographs_,
                      events(progress, recorder));
        report_.outcome = run.run(jobs_);
        progress.clear();
        recorder.flush();
        return finish(recorder.problem());
    }

private:
    /// Files of the same name may be others now, and those that have moved are found.
    std::vector<FrameID> lookedAt(std::vector<FrameID> set)
    {
        for (const FrameID& id : set) session_->model().linker.prepare(id);
        return set;
    }

    void planJobs()
    {
        if (set_.empty()) throw UsageError(T("cli.export.emptySet"));
        if (draft_.naming == ExportNaming::Mode::name && set_.size() != 1)
            throw UsageError(T("cli.export.singleOnly"));
        AppModel& model = session_->model();
        std::vector<ExportJob> all = ExportPlan::jobs(model.project(), draft_, set_, folder_);
        if (arguments_.shard) {
            const Shard shard = shardOf(*arguments_.shard);
            all = ExportPlan::shard(all, shard.k, shard.count);
        }
        for (ExportJob& job : all) {
            const FileState state = model.linker.state(job.frame->id);
            if (!hasOriginal(state)) {
                report_.skipped.push_back(job.frame->fileName());
                if (!arguments_.dryRun) lines_.skipped(job.target.string(), job.place, "no original");
            } else if (isDone(job)) {
                if (!arguments_.dryRun) lines_.skipped(job.target.string(), job.place, "exists");
            } else {
                if (state == FileState::changed) report_.changed.push_back(job.frame->fileName());
                jobs_.push_back(std::move(job));
            }
        }
        if (jobs_.size() == 1 && set_.size() == 1) report_.singleLabel = project_.label(set_.front());
    }

    /// It stands already, and the options say that this is enough.
    bool isDone(const ExportJob& job) const
    {
        if (!arguments_.skipExisting && !arguments_.resume) return false;
        if (!ExportNaming::defaultExists(job.target) || photographs_.contains(job.target)) return false;
        return arguments_.skipExisting || job.frame->exportedAt.has_value();
    }

    bool clashes(const ExportJob& job) const
    {
        return photographs_.contains(job.target) ||
               ExportNaming::isTaken(job.target, {}, ExportNaming::defaultExists);
    }

    int tellPlan()
    {
        for (const ExportJob& job : jobs_) {
            const bool clash = clashes(job);
            if (!arguments_.json) {
                results_ << job.frame->url << " -> " << job.target.string()
                         << (clash ? " (" + T("cli.export.stands") + ")" : "") << "\n";
                continue;
            }
            const ordered_json line{{"event", "frame"},
                                    {"n", job.place},
                                    {"total", set_.size()},
                                    {"input", job.frame->url},
                                    {"file", job.target.string()},
                                    {"exists", clash}};
            results_ << line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << "\n";
        }
        results_ << std::flush;
        if (!report_.skipped.empty())
            tellNote(T("cli.export.noOriginal", {{"files", firstNames(report_.skipped)}}));
        return report_.skipped.empty() ? 0 : 1;
    }

    /// No question is asked: what would raise one is told before any work.
    void refuseUndecided() const
    {
        if (arguments_.onConflict) return;
        for (const ExportJob& job : jobs_)
            if (clashes(job)) throw UsageError(T("cli.export.exists", {{"file", job.target.string()}}));
    }

    ExportRun::Events events(Progress& progress, ExportRecord& recorder)
    {
        ExportRun::Events events;
        events.cancels = platform::stopRequested;
        events.begins = [&](const ExportJob& job, std::size_t) {
            progress.beginPicture(job.frame->fileName());
        };
        events.fraction = [&](const char* phase, double fraction) {
            progress.phase(T(std::string("cli.phase.") + phase), fraction);
        };
        events.exists = [this](const ExportClash& clash) {
            if (arguments_.onConflict == "replace")
                return ExportClashReply{ExportExistsAnswer::overwrite, false};
            if (arguments_.onConflict == "copy") return ExportClashReply{ExportExistsAnswer::keepBoth, false};
            clash_ = clash.target;
            return ExportClashReply{};
        };
        events.finished = [&](const ExportedFrame& one, std::size_t n) {
            progress.clear();
            lines_.frame(one, jobs_[n - 1].place);
            recorder.add(one);
        };
        events.passedOver = [&](const ExportJob& job, std::size_t) {
            lines_.skipped(job.target.string(), job.place, "exists");
        };
        events.failed = [&](const FailedFrame& one, std::size_t n) {
            progress.clear();
            lines_.failed(jobs_[n - 1].target.string(), jobs_[n - 1].place, one.why);
        };
        return events;
    }

    int finish(const std::string& recordProblem)
    {
        const ExportOutcome& outcome = report_.outcome;
        const bool interrupted = platform::stopRequested();
        lines_.done(outcome, outcome.stopped, start_);
        const bool nothing = outcome.written.empty() && jobs_.empty() && !report_.skipped.empty();
        tell(nothing
                 ? Loc::string("export.nothingNoOriginal", static_cast<std::int64_t>(report_.skipped.size()))
                 : report_.text());
        if (clash_) tell(T("cli.export.exists", {{"file", clash_->string()}}));
        if (!recordProblem.empty()) tellNote(T("cli.export.notRecorded", {{"error", recordProblem}}));
        if (interrupted) return Interrupted::kStatus;
        const bool whole = outcome.failed.empty() && !outcome.targetFault && !outcome.stopped &&
                           report_.skipped.empty() && recordProblem.empty();
        return whole ? 0 : 1;
    }

    const ProjectExportArguments& arguments_;
    std::unique_ptr<ProjectSession> session_;
    const Project& project_;
    ExportDraft draft_;
    fs::path folder_;
    std::vector<FrameID> set_;
    Photographs photographs_;
    ExportLines lines_;
    std::ostream& results_;
    std::vector<ExportJob> jobs_;
    ExportReport report_;
    std::optional<fs::path> clash_;
    Clock::time_point start_ = Clock::now();
};

} // namespace

int run(const ProjectExportArguments& arguments, std::ostream& results)
{
    checkArguments(arguments);
    if (arguments.shard) shardOf(*arguments.shard);
    return Export(arguments, results).run();
}

} // namespace tamlo::cli
