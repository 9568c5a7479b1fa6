#include "app/shell/exporter.h"

#include "app/export/export_folders.h"
#include "app/preview/program_build.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"
#include "platform/work_arena.h"

#include <array>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace tamlo {

/// What the run and the session share: whether it is to end, and the answer that it waits for.
struct Exporter::Shared {
    std::atomic<bool> stops{false}, cancels{false};
    std::mutex mutex;
    std::condition_variable answered;
    std::optional<ExportClashReply> reply;

    void answer(ExportClashReply given)
    {
        const std::lock_guard lock(mutex);
        reply = given;
        answered.notify_all();
    }
    ExportClashReply waitForAnswer()
    {
        std::unique_lock lock(mutex);
        answered.wait(lock, [&] { return reply.has_value(); });
        return *std::exchange(reply, std::nullopt);
    }
};

namespace {

std::string secondsText(double seconds)
{
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.1f", seconds);
    return text.data();
}

} // namespace

Exporter::Exporter(AppModel& model)
    : model_(model), shared_(std::make_shared<Shared>()), background_(model.seams().loop, "tamlo.export")
{}

Exporter::~Exporter()
{
    alive_.reset();
    shared_->cancels = true;
    shared_->answer({}); // the run may wait for one
}

ExportDraft Exporter::exportDraft(const std::optional<FrameID>& single) const
{
    const auto& selected = model_.selection.selected();
    return ExportDraft::of(model_.project(), model_.seams().preferences, single,
                           FrameIDs(selected.begin(), selected.end()));
}

void Exporter::exportSheetNext(const ExportDraft& draft)
{
    try {
        draft.store(model_.seams().preferences);
    } catch (const platform::PlatformError&) {
        // The next draft begins as this one did.
    }
    if (!draft.single && draft.setIndex != ExportDraft::kPickedIndex)
        model_.amendProject(
            [&](Project& project) { project.lastExportSet = static_cast<ExportSet>(draft.setIndex); });
}

bool Exporter::startExport(const ExportDraft& draft, const Path& folder, Done done)
{
    platform::Preferences& preferences = model_.seams().preferences;
    try {
        ExportFolders::store(
            ExportFolders::push(ExportFolder::at(folder.string()), ExportFolders::load(preferences)),
            preferences);
    } catch (const platform::PlatformError&) {
        // It is not offered next time.
    }
    return run(draft, folder, std::move(done));
}

bool Exporter::run(const ExportDraft& draft, const Path& folder, Done done)
{
    if (isExporting()) return false;
    ExportReport report;
    std::vector<ExportJob> jobs;
    const Project& project = model_.project();
    for (ExportJob& job : ExportPlan::jobs(project, draft, draft.frames(project), folder)) {
        const FileState state = model_.linker.state(job.frame->id);
        if (state == FileState::changed) report.changed.push_back(job.frame->fileName());
        if (hasOriginal(state))
            jobs.push_back(std::move(job));
        else
            report.skipped.push_back(job.frame->fileName());
    }
    if (draft.single) report.singleLabel = project.label(*draft.single);
    if (jobs.empty()) {
        model_.tell(
            Loc::string("export.nothingNoOriginal", static_cast<std::int64_t>(report.skipped.size())));
        return false;
    }
    task_.emplace();
    task_->total = jobs.size();
    task_->startedAt = model_.seams().loop.now();
    model_.observers.note(Concern::exporting);
    shared_ = std::make_shared<Shared>();
    ExportSettings settings;
    settings.scale = draft.scale;
    settings.social = draft.social;
    settings.socialPx = draft.socialPx;
    settings.cropGate = project.cropGate;
    settings.frames = project.frames;
    settings.signature.software = OutputMetadata::softwareName(programBuild());
    background_.run(
        [jobs = std::move(jobs), settings, report, roll = project.frames, events = events(),
         &store = model_.store()] {
            ExportReport ended = report;
            platform::runIn(platform::WorkArena::background, [&] {
                const Photographs photographs(roll);
                ended.outcome = ExportRun(store, settings, photographs, events).run(jobs);
            });
            return ended;
        },
        [this, done = std::move(done)](ExportReport last) { ended(std::move(last), done); });
    return true;
}

ExportRun::Events Exporter::events()
{
    // On the run's thread; what touches the session is posted, and dropped where that has gone.
    const auto post = [&loop = model_.seams().loop, alive = std::weak_ptr<bool>(alive_)](auto work) {
        loop.post([alive, work = std::move(work)] {
            if (!alive.expired()) work();
        });
    };
    ExportRun::Events events;
    events.stats = stats_;
    events.stops = [shared = shared_] { return shared->stops.load(); };
    events.cancels = [shared = shared_] { return shared->cancels.load(); };
    events.begins = [this, post](const ExportJob& job, std::size_t n) {
        post([this, n, name = job.frame->fileName()] {
            task_->currentName = name;
            task_->frameFraction = 0;
            progress_ = T("export.progressFrame", {{"n", n}, {"total", task_->total}, {"name", name}});
            model_.observers.note(Concern::exporting);
        });
    };
    events.fraction = [this, post](const char*, double fraction) {
        post([this, fraction] {
            task_->frameFraction = fraction;
            model_.observers.note(Concern::exporting);
        });
    };
    events.exists = [this, post, shared = shared_](const ExportClash& clash) {
        post([this, clash] { askExportExists(clash); });
        return shared->waitForAnswer();
    };
    events.finished = [this, post](const ExportedFrame& one, std::size_t n) {
        post([this, one, n] { took(one, n); });
    };
    return events;
}

void Exporter::askExportExists(const ExportClash& clash)
{
    task_->waiting = true;
    model_.observers.note(Concern::exporting);
    const QuestionText text{T("export.exists.title", {{"name", clash.target.filename().string()}}),
                            T("export.exists.info", {{"dir", clash.target.parent_path().string()},
                                                     {"free", clash.free.filename().string()}})};
    model_.seams().questions.exportExists(
        text, !clash.isPhotograph,
        Answer<ExportClashReply>([this, shared = shared_, alive = std::weak_ptr<bool>(alive_)](
                                     std::optional<ExportClashReply> reply) {
            if (!alive.expired() && task_) task_->waiting = false;
            shared->answer(reply.value_or(ExportClashReply()));
        }));
}

void Exporter::took(const ExportedFrame& one, std::size_t n)
{
    model_.amendProject([&](Project& project) {
        const auto place = project.frames.find(one.frame->id);
        if (!place) return;
        const Frame& now = project.frames[*place];
        if (!(now.process == one.frame->process) || now.crop != one.frame->crop ||
            now.orient != one.frame->orient)
            return; // it has been changed meanwhile
        Frame& frame = project.frames.edit(*place);
        frame.exportedAt = Date::since1970(model_.seams().loop.date());
        frame.exportedName = one.file.filename().string();
    });
    ++task_->done;
    task_->frameFraction = 0;
    task_->frameTimes.push_back(one.seconds);
    progress_ = T(one.frame->process ? "export.doneFrame" : "export.doneOriginal",
                  {{"n", n},
                   {"total", task_->total},
                   {"name", one.file.filename().string()},
                   {"sec", secondsText(one.seconds)}});
}

void Exporter::stop()
{
    if (!task_) return;
    task_->cancelling = true;
    model_.observers.note(Concern::exporting);
    shared_->stops = true;
}

void Exporter::ended(ExportReport report, const Done& done)
{
    task_.reset();
    progress_.clear();
    model_.observers.note(Concern::exporting);
    const bool failed = report.outcome.targetFault.has_value() || !report.outcome.failed.empty();
    failed ? model_.tellFailure(report.text()) : model_.tell(report.text());
    model_.saver.autosave();
    if (done) done(report);
}

} // namespace tamlo
