#include "app/shell/printers_eye.h"

#include "app/preview/render_process.h"
#include "app/preview/source_decode.h"
#include "app/shell/app_model.h"
#include "core/image/cancellation.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/work_arena.h"

#include <unordered_map>

namespace tamlo {

/// A copy of all that a look needs.
struct PrintersEye::Job {
    FrameRef frame;
    ProcessSettings process; ///< as renderProcess gives it, but for what is known of the source
    bool hasFile = false;
    std::string why; ///< it is not looked at
};

namespace {

using SourceRef = PrintersEye::SourceRef;
using Seen = PrintersEye::Seen;

SourceRef decoded(const FrameRef& frame, bool hasFile)
{
    if (!hasFile) return nullptr;
    return std::make_shared<const FrameSource>(SourceDecode::proxy(frame->url, ProxyFile::wbOf(*frame)));
}

/// The print of a proxy, exposed and graded for it.
Pipeline::AutoPrint look(const FrameSource& source, ProcessSettings process, const ProfileStore& store,
                         const std::function<bool()>& stops, std::string& why)
{
    RenderOptions& options = process.options;
    if (source.stats)
        options.sourceGain =
            SourceExposure::gain(*source.stats, SourceExposure::fromKey(options.srcExposure));
    const RenderChoices choices = choicesOf(process, store);
    const RGBImage lit = DisplayLights::restore(source.proxy, source.lights, options.srcLights);
    Pipeline::AutoPrint print = Pipeline::autoPrint(lit, choices, {}, {stops, {}});
    why = Pipeline::whyNot(print, choices);
    return print;
}

} // namespace

PrintersEye::PrintersEye(AppModel& model)
    : model_(model), source_(decoded), background_(model.seams().loop, "tamlo.eye")
{}

PrintersEye::~PrintersEye()
{
    alive_.reset();
    stop();
}

void PrintersEye::stop()
{
    if (stops_) *stops_ = true;
}

bool PrintersEye::autoPrint()
{
    return autoPrint(model_.selection.actionTargets());
}

std::vector<PrintersEye::Job> PrintersEye::jobsOf(const FrameIDs& ids) const
{
    const Project& project = model_.project();
    std::vector<Job> jobs;
    for (const FrameID& id : ids) {
        const FrameRef frame = project.frame(id);
        if (!frame) continue;
        Job job{frame, {}, hasOriginal(model_.linker.state(id)), {}};
        if (frame->process)
            job.process =
                renderProcess(*frame->process, *frame, std::nullopt, project.cropGate, &project.frames);
        else
            job.why = T("autoprint.original");
        jobs.push_back(std::move(job));
    }
    return jobs;
}

bool PrintersEye::autoPrint(const FrameIDs& ids, Done done)
{
    std::vector<Job> jobs = jobsOf(ids);
    if (isLooking() || jobs.empty()) return false;
    stops_ = std::make_shared<std::atomic<bool>>(false);
    lookedAt_ = 0;
    total_ = jobs.size();
    const auto looked = [this, &loop = model_.seams().loop, alive = std::weak_ptr(alive_)](std::size_t n) {
        loop.post([this, alive, n] {
            if (!alive.expired()) noteLooked(n);
        });
    };
    const auto stops = [flag = stops_] { return flag->load(); };
    const auto shared = std::make_shared<const std::vector<Job>>(std::move(jobs));
    background_.run(
        [shared, looked, stops, source = source_, &store = model_.store()] {
            std::vector<Seen> seen;
            for (const Job& job : *shared) {
                Seen one{job.frame->id, {}, job.why, false};
                const auto attempt = [&] {
                    const CancellationScope cancellation(stops);
                    const SourceRef proxy = source(job.frame, job.hasFile);
                    if (!proxy)
                        one.why = T("autoprint.noSource"), one.failed = true;
                    else
                        one.print = look(*proxy, job.process, store, stops, one.why);
                };
                try {
                    if (one.why.empty() && !stops())
                        platform::runIn(platform::WorkArena::background, attempt);
                } catch (const std::exception& error) { // of a source, a profile, or memory that ran out
                    one.why = ErrorWords::of(error);
                    one.failed = true;
                }
                seen.push_back(std::move(one));
                looked(seen.size());
            }
            return seen;
        },
        [this, shared, done = std::move(done)](std::vector<Seen> seen) {
            ended(*shared, std::move(seen), done);
        });
    return true;
}

void PrintersEye::noteLooked(std::size_t n)
{
    if (!isLooking()) return;
    lookedAt_ = n;
    model_.tell(T("status.looking", {{"n", n}, {"total", total_}}));
}

void PrintersEye::ended(const std::vector<Job>& jobs, std::vector<Seen> seen, const Done& done)
{
    Report report{std::move(seen), 0, stops_->load()};
    stops_.reset();
    FrameIDs ids;
    std::unordered_map<FrameID, const Seen*> found;
    for (std::size_t i = 0; i < jobs.size() && !report.stopped; ++i) {
        Seen& one = report.seen[i];
        if (!one.why.empty()) continue;
        const FrameRef now = model_.project().frame(one.id);
        if (!now || !(now->process == jobs[i].frame->process) || now->crop != jobs[i].frame->crop ||
            now->orient != jobs[i].frame->orient) {
            one.why = T("autoprint.changed");
            continue;
        }
        const RenderOptions& options = now->process->options;
        if (options.printEv == one.print.printEv && options.grade == one.print.grade) continue;
        ids.push_back(one.id);
        found.emplace(one.id, &one);
    }
    model_.endGesture();
    std::string name = T("undo.autoPrint");
    if (ids.size() > 1) name = T("undo.markMany", {{"name", name}, {"n", ids.size()}});
    report.changed = model_
                         .editFrames({name}, ids,
                                     [&](Frame& frame) {
                                         ProcessSettings settings = *frame.process;
                                         const Pipeline::AutoPrint& print = found.at(frame.id)->print;
                                         settings.options.printEv = print.printEv;
                                         settings.options.grade = print.grade;
                                         settings.modified = settings.modified || settings.presetName;
                                         model_.rack.give(frame, std::move(settings));
                                     })
                         .size();
    model_.tell(Loc::string("status.autoPrinted", static_cast<std::int64_t>(report.changed)));
    if (done) done(report);
}

} // namespace tamlo
