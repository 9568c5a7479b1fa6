#include "cli/develop.h"

#include "cli/develop_choices.h"
#include "cli/develop_jobs.h"
#include "cli/input_files.h"
#include "cli/messages.h"
#include "cli/output_metadata.h"
#include "cli/progress.h"
#include "core/film/source_light.h"
#include "core/image/random.h"
#include "core/image/render_profiler.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/output_plan.h"
#include "platform/console.h"

#include <chrono>
#include <iostream>
#include <new>

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
    fs::path folder = fs::absolute(job.output).parent_path();
    while (folder.has_relative_path() && !fs::exists(folder, problem)) folder = folder.parent_path();
    if (fs::exists(folder, problem) && !fs::is_directory(folder, problem))
        throw TamloError::io(
            T("cli.notFolder", {{"file", job.output.string()}, {"folder", folder.string()}}));
}

class Run {
public:
    Run(const DevelopArguments& arguments, const DevelopChoices& choices, Progress& progress)
        : arguments_(arguments), choices_(choices), progress_(progress)
    {
        backend_.hooks.shouldCancel = platform::stopRequested;
        backend_.hooks.onProgress = [this](const char* phase, double fraction) {
            if (fraction < 1) tellPhase(phase, kRenderFrom + fraction * (kRenderTo - kRenderFrom));
        };
    }

    void developOne(const DevelopJob& job) const
    {
        checkFiles(job);
        RenderChoices render = choices_.render;
        if (!choices_.seedIsGiven) render.options.seed = FrameSeed::crc32(job.input.filename().string());

        tellPhase("reading", 0);
        RGBImage image = RenderProfiler::cpu("decoding", 0, [&] {
            return ImageLoader::loadLinear(job.input, ImageLoader::decodeWBMode(render.options.wbMode),
                                           SourceExposure::fromKey(render.options.srcExposure),
                                           arguments_.longPx.value_or(0));
        });
        stopIfAsked();
        image = backend_.process(withinLongSide(std::move(image)), render);
        image = withinLongSide(Pipeline::exportDownscale(std::move(image), arguments_.scale));
        stopIfAsked();
        tellPhase("writing", kRenderTo);
        RenderProfiler::cpu("writing", image.pixelCount(), [&] {
            ImageWriter::save(image, job.output.string(), arguments_.quality,
                              outputMetadata(job.input, render));
        });
    }

private:
    void tellPhase(const std::string& phase, double fraction) const
    {
        progress_.phase(T("cli.phase." + phase), fraction);
    }

    void stopIfAsked() const
    {
        if (platform::stopRequested()) throw TamloError::cancelled();
    }

    /// --long goes over the source, since every length of the simulation is physical and the picture is the
    /// same one at any size; and over the result, which a border or a mount makes larger.
    RGBImage withinLongSide(RGBImage image) const
    {
        return arguments_.longPx ? resized(std::move(image), *arguments_.longPx) : image;
    }

    const DevelopArguments& arguments_;
    const DevelopChoices& choices_;
    Progress& progress_;
    CPUBackend backend_;
};

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

} // namespace

int develop(const DevelopArguments& arguments, std::ostream& results)
{
    const std::vector<DevelopJob> jobs = planJobs(arguments);
    const DevelopChoices choices = resolveChoices(arguments, ProfileStore::shared());
    for (const std::string& note : choices.notes) tellNote(note);
    if (const auto pending = Film::pendingStage(choices.render.film, choices.render.paper))
        tellNote(T("cli.stagePending", {{"stage", *pending}}));
    platform::catchStopSignals();

    Progress progress(jobs.size());
    const Run run(arguments, choices, progress);
    std::vector<std::string> failures;
    for (const DevelopJob& job : jobs) {
        progress.beginPicture(job.input.filename().string());
        try {
            profiled(job, [&] { run.developOne(job); });
            progress.clear();
            results << job.output.string() << std::endl;
        } catch (const TamloError& error) {
            if (error.kind() == TamloError::Kind::cancelled) {
                progress.clear();
                tell(T("cli.stopped", {{"file", job.input.string()}}));
                return kStoppedStatus;
            }
            failures.push_back(failureText(job, error.what()));
        } catch (const std::bad_alloc&) {
            failures.push_back(failureText(job, T("cli.noMemory")));
        } catch (const fs::filesystem_error& error) {
            failures.push_back(failureText(job, error.what()));
        }
    }
    progress.clear();
    if (jobs.size() > 1 && !failures.empty())
        tell(T("cli.someFailed", {{"failed", failures.size()}, {"total", jobs.size()}}));
    for (const std::string& failure : failures) tell(failure);
    return failures.empty() ? 0 : 1;
}

} // namespace tamlo::cli
