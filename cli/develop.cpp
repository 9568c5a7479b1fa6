#include "cli/develop.h"

#include "app/export/finished_print.h"
#include "app/preview/source_decode.h"
#include "cli/develop_choices.h"
#include "cli/develop_jobs.h"
#include "cli/input_files.h"
#include "cli/messages.h"
#include "cli/output_metadata.h"
#include "cli/picture_choices.h"
#include "cli/progress.h"
#include "cli/run_report.h"
#include "cli/usage_error.h"
#include "core/image/cancellation.h"
#include "core/image/random.h"
#include "core/image/render_profiler.h"
#include "core/image/source_exposure.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/pipeline/auto_print.h"
#include "core/pipeline/output_plan.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/console.h"

#include <chrono>
#include <fstream>
#include <iostream>
#include <new>
#include <set>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

constexpr int kStoppedStatus = 130;

// Shares of a picture's time, roughly, so that the bar moves evenly.
constexpr double kRenderFrom = 0.15;
constexpr double kRenderTo = 0.9;

/// Failures that are plain from the file system, told before any work is done.
void checkFiles(const DevelopJob& job)
{
    checkInput(job.input);
    std::error_code problem;
    fs::path folder = job.output.parent_path();
    while (!folder.empty() && !fs::exists(folder, problem)) folder = folder.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, problem))
        throw TamloError::io(
            T("cli.notFolder", {{"file", job.output.string()}, {"folder", folder.string()}}));
}

class Run {
public:
    Run(const DevelopArguments& arguments, const DevelopChoices& choices, Progress& progress)
        : arguments_(arguments), choices_(choices), progress_(progress)
    {
        backend_.hooks.onProgress = [this](const char* phase, double fraction) {
            if (fraction < 1) tellPhase(phase, kRenderFrom + fraction * (kRenderTo - kRenderFrom));
        };
    }

    void note(const std::string& text)
    {
        if (arguments_.quiet || !told_.insert(text).second) return;
        progress_.clear();
        tellNote(text);
    }

    void developOne(const DevelopJob& job)
    {
        const CancellationScope cancellation(platform::stopRequested);
        checkFiles(job);
        PictureChoices one = choosePicture(choices_, arguments_, job.input);
        for (const std::string& text : one.notes) note(text);
        RenderChoices& render = one.render;
        if (!choices_.seedIsGiven) render.options.seed = FrameSeed::crc32(job.input.filename().string());

        tellPhase("reading", 0);
        RGBImage image = RenderProfiler::cpu("decoding", 0, [&] {
            return ImageLoader::loadLinear(job.input, ImageLoader::decodeWBMode(render.options.wbMode),
                                           SourceExposure::fromKey(render.options.srcExposure),
                                           one.sourceLong, reading());
        });
        cancellationPoint();
        // Of the whole source, whatever --long says: a light of few pixels is lost in a reduced one.
        if (render.options.srcLights > 0.0) {
            const DisplayLights::Map lights = SourceDecode::lights(image);
            image = DisplayLights::restore(std::move(image), lights, render.options.srcLights);
        }
        // Every length of the simulation is physical: a reduced source makes the same picture.
        if (one.sourceLong > 0) image = resized(std::move(image), one.sourceLong);
        if (arguments_.autoPrint) exposePrint(image, job, render);
        const Pipeline::OutputPlan plan =
            Pipeline::outputPlan(image.size(), render.film, render.paper, render.options, 1.0);
        image = backend_.process(std::move(image), render);
        image = Pipeline::exportDownscale(std::move(image), arguments_.scale);
        // A border or a mount has made it larger.
        if (arguments_.longPx) image = resized(std::move(image), *arguments_.longPx);
        cancellationPoint();
        tellPhase("writing", kRenderTo);
        RenderProfiler::cpu("writing", image.pixelCount(), [&] {
            const double reduced = static_cast<double>(plan.width) / static_cast<double>(image.width);
            const Finished finished{job.input, render, plan.printPxUm * reduced};
            const OutputMetadata metadata = outputMetadata(finished, choices_, arguments_);
            FinishedPrint::save(std::move(image), {render, plan.picture}, job.output.string(),
                                arguments_.quality, metadata);
        });
    }

private:
    /// Settles print_ev and grade for a frame and says to what; those that were given by hand stay.
    void exposePrint(const RGBImage& frame, const DevelopJob& job, RenderChoices& render)
    {
        const std::string file = job.input.filename().string();
        const Pipeline::AutoPrint print =
            Pipeline::autoPrint(frame, render, choices_.asked, {platform::stopRequested, {}});
        render.options.printEv = print.printEv;
        render.options.grade = print.grade;
        if (print.reasonKey)
            return note(T("cli.autoPrintNot", {{"file", file}, {"reason", Pipeline::whyNot(print, render)}}));
        note(T("cli.autoPrint", {{"file", file},
                                 {"ev", Fmt::number(print.printEv, 2)},
                                 {"grade", Fmt::number(print.grade, 2)},
                                 {"white", Fmt::number(print.after.white, 0)},
                                 {"before", Fmt::number(print.before.white, 0)}}));
    }

    void tellPhase(const std::string& phase, double fraction) const
    {
        progress_.phase(T("cli.phase." + phase), fraction);
    }

    ImageLoader::Reading reading()
    {
        return {arguments_.tolerant ? ImageLoader::Damage::tolerated : ImageLoader::Damage::refused,
                [this](const std::string& text) { note(text); }};
    }

    const DevelopArguments& arguments_;
    const DevelopChoices& choices_;
    Progress& progress_;
    CPUBackend backend_;
    std::set<std::string> told_; ///< each note once a run
};

/// Hands a finished file on to standard output and takes it away.
void passOn(const fs::path& file, std::ostream& results)
{
    {
        const std::ifstream picture(file, std::ios::binary);
        results << picture.rdbuf() << std::flush;
    }
    fs::remove(file);
}

/// Runs a picture's work; with TAMLO_PROFILE set, its stages go to standard error as a table.
template <class Work>
void profiled(const DevelopJob& job, Work&& work)
{
    constexpr std::size_t kRows = 40;
    if (!RenderProfiler::enabled()) return work();
    RenderProfiler::reset();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> total = std::chrono::steady_clock::now() - start;
    std::cerr << RenderProfiler::report(job.input.filename().string(), total.count(), kRows) << std::flush;
}

/// The reason in one sentence that names the picture or the file it would have been.
std::string failureText(const DevelopJob& job, const std::string& reason)
{
    const bool named = reason.find(job.output.filename().string()) != std::string::npos;
    return named ? reason : namingInput(job.input, reason);
}

/// Develops one picture. Returns why it failed; nothing when it stands.
std::optional<std::string> tryOne(Run& run, const DevelopJob& job)
{
    try {
        profiled(job, [&] { run.developOne(job); });
        return std::nullopt;
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) throw;
        return failureText(job, ErrorWords::of(error));
    } catch (const std::bad_alloc&) {
        return failureText(job, T("cli.noMemory"));
    } catch (const fs::filesystem_error& error) {
        return failureText(job, ErrorWords::of(error));
    }
}

void tellFailures(const std::vector<std::string>& failures, std::size_t total)
{
    if (total > 1 && !failures.empty())
        tell(T("cli.someFailed", {{"failed", failures.size()}, {"total", total}}));
    for (const std::string& failure : failures) tell(failure);
}

} // namespace

int develop(const DevelopArguments& arguments, std::ostream& results)
{
    if (arguments.json && arguments.output == kStandardOutput) throw UsageError(T("cli.jsonAndPicture"));
    const DevelopChoices choices = resolveChoices(arguments, ProfileStore::shared());
    const std::vector<DevelopJob> jobs = planJobs(arguments, choices);
    platform::catchStopSignals();

    Progress progress(jobs.size(), arguments.quiet);
    Run run(arguments, choices, progress);
    RunReport report(results, jobs.size(), arguments.json);
    for (const std::string& note : choices.notes) run.note(note);
    std::vector<std::string> failures;
    for (const DevelopJob& job : jobs) {
        report.begin();
        if (arguments.skipExisting && fs::exists(job.output)) {
            run.note(T("cli.skipped", {{"file", job.output.string()}, {"input", job.input.string()}}));
            report.skipped(job);
            continue;
        }
        progress.beginPicture(job.input.filename().string());
        try {
            const auto failure = tryOne(run, job);
            progress.clear();
            if (!failure && job.toStandardOutput) passOn(job.output, results);
            failure ? report.failed(job, *failure) : report.finished(job);
            if (failure) failures.push_back(*failure);
        } catch (const TamloError&) { // stopped by the user
            progress.clear();
            report.done(true);
            tell(T("cli.stopped", {{"file", job.input.string()}}));
            return kStoppedStatus;
        }
    }
    progress.clear();
    report.done(false);
    tellFailures(failures, jobs.size());
    return failures.empty() ? 0 : 1;
}

} // namespace tamlo::cli
