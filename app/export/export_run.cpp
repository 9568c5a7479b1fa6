#include "app/export/export_run.h"

#include "app/export/decode_ahead.h"
#include "app/export/export_size.h"
#include "app/export/finished_print.h"
#include "app/preview/render_process.h"
#include "app/preview/source_decode.h"
#include "core/film/light/display_lights.h"
#include "core/image/cancellation.h"
#include "core/image/orient.h"
#include "core/io/image_loader.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/output_plan.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

#include <chrono>
#include <new>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kAhead = 1;
constexpr int kSocialQuality = 98;

/// What is wrong with the place that is written to.
struct TargetFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Runs what writes a file. A picture that its format can't hold is the frame's own fault.
template <typename Write>
void writing(const Write& write)
{
    try {
        write();
    } catch (const TamloError& error) {
        if (error.kind() != TamloError::Kind::io) throw;
        throw TargetFault(ErrorWords::of(error));
    }
}

} // namespace

ExportRun::ExportRun(const ProfileStore& store, ExportSettings settings, const Photographs& photographs,
                     Events events)
    : store_(store), settings_(std::move(settings)), photographs_(photographs), events_(std::move(events))
{}

ExportOutcome ExportRun::run(const std::vector<ExportJob>& jobs)
{
    for (const ExportJob& job : jobs)
        for (const Path& file : {job.target, ExportNaming::socialPath(job.target)})
            planned_.insert(ExportNaming::key(file));
    DecodeAhead<RGBImage> ahead(jobs.size(), kAhead, [&](std::size_t i) { return decoded(jobs[i]); });
    try {
        for (std::size_t i = 0; i < jobs.size(); ++i) {
            if (cancelled() || (events_.stops && events_.stops())) throw Stop();
            bool isTaken = false;
            const auto take = [&] {
                isTaken = true;
                return ahead.take();
            };
            oneFrame(jobs[i], i + 1, take);
            if (!isTaken && i + 1 < jobs.size()) ahead.skip();
        }
    } catch (const Stop&) {
        outcome_.stopped = true;
    } catch (const TargetFault& fault) {
        outcome_.targetFault = fault.what();
    }
    ended_ = true;
    ahead.finish();
    outcome_.peakAhead = ahead.peakAhead();
    return std::move(outcome_);
}

RGBImage ExportRun::decoded(const ExportJob& job) const
{
    const CancellationScope cancellation([this] { return ended_ || cancelled(); });
    const Frame& frame = *job.frame;
    const std::int64_t cap = ExportSize::decodeCap(frame, {store_, settings_.cropGate, settings_.frames});
    return SourceDecode::full(frame.url, cap, ProxyFile::wbOf(frame));
}

void ExportRun::oneFrame(const ExportJob& job, std::size_t n, const std::function<RGBImage()>& take)
{
    const auto begin = Clock::now();
    if (events_.begins) events_.begins(job, n);
    const auto fail = [&](const std::string& why) {
        outcome_.failed.push_back({job.frame, why});
        if (events_.failed) events_.failed(outcome_.failed.back(), n);
    };
    try {
        const CancellationScope cancellation([this] { return cancelled(); });
        Path target = job.target;
        if (turnOf(target) == Turn::passOver) {
            outcome_.passedOver.push_back(job.frame);
            if (events_.passedOver) events_.passedOver(job, n);
            return;
        }
        RGBImage image = take();
        job.frame->process ? print(*job.frame, std::move(image), target)
                           : printOriginal(*job.frame, std::move(image), target);
        const std::chrono::duration<double> passed = Clock::now() - begin;
        outcome_.written.push_back({job.frame, target, passed.count()});
        if (events_.finished) events_.finished(outcome_.written.back(), n);
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) throw Stop();
        if (error.kind() == TamloError::Kind::gpuAborted) {
            if (!outcome_.gpuFault) outcome_.gpuFault = error.abort();
            outcome_.gpuFrames.push_back(job.frame);
        }
        fail(ErrorWords::of(error));
    } catch (const std::bad_alloc&) {
        fail(T("export.noMemory"));
    } catch (const TargetFault&) {
        throw;
    } catch (const std::exception& error) {
        fail(ErrorWords::of(error)); // of a profile, or of a name
    }
}

bool ExportRun::isPhotograph(const Path& target) const
{
    return photographs_.contains(target) ||
           (settings_.social && photographs_.contains(ExportNaming::socialPath(target)));
}

ExportRun::Path ExportRun::freeTarget(const Path& target) const
{
    return ExportNaming::freeName(target, [&](const Path& name) {
        return ExportNaming::isTaken(name, taken_, ExportNaming::defaultExists) ||
               planned_.contains(ExportNaming::key(name)) || isPhotograph(name);
    });
}

/// Whether the frame's file is to be written, and under which name.
ExportRun::Turn ExportRun::turnOf(Path& target)
{
    std::error_code problem;
    if (!fs::is_directory(target.parent_path(), problem))
        throw TargetFault(T("export.noFolder", {{"folder", target.parent_path().string()}}));
    // A disk that ignores case has two names of one run in one file.
    const auto standing = platform::fileInfo(target);
    const bool photograph = isPhotograph(target);
    if (standing && writtenFiles_.contains(standing->id)) {
        target = freeTarget(target);
    } else if (settings_.skipsExisting && !photograph && ExportNaming::defaultExists(target)) {
        return Turn::passOver;
    } else if (photograph || ExportNaming::isTaken(target, taken_, ExportNaming::defaultExists)) {
        const ExportClash clash{target, freeTarget(target), photograph};
        ExportClashReply reply{forAll_.value_or(ExportExistsAnswer::cancel), false};
        if (!forAll_ && events_.exists) reply = events_.exists(clash);
        if (reply.forAll) forAll_ = reply.answer;
        if (reply.answer == ExportExistsAnswer::cancel) throw Stop();
        if (reply.answer == ExportExistsAnswer::keepBoth)
            target = clash.free;
        else if (photograph)
            throw TamloError::invalidArgument(T("export.overPhotograph", {{"file", target.string()}}));
    }
    return Turn::write;
}

std::optional<SourceExposure::Stats> ExportRun::statsOf(const Frame& frame, const RGBImage& image) const
{
    if (!ImageLoader::isRAW(frame.url)) return std::nullopt;
    if (events_.stats) return events_.stats(frame, ProxyFile::wbOf(frame), image);
    return SourceExposure::stats(SourceExposure::luminance(image));
}

/// A display picture with the light that its lights are given back.
RGBImage ExportRun::lit(const Frame& frame, RGBImage image, double amount) const
{
    if (ImageLoader::isRAW(frame.url) || !(amount > 0.0)) return image;
    const DisplayLights::Map lights =
        events_.lights ? events_.lights(frame, image) : SourceDecode::lights(image);
    return DisplayLights::restore(std::move(image), lights, amount);
}

void ExportRun::printOriginal(const Frame& frame, RGBImage image, const Path& target)
{
    const double gain = originalGain(statsOf(frame, image));
    image = Pipeline::rotateCropInput(SourceExposure::apply(gain, std::move(image)), frame.crop);
    image = Orientation::orientImage(std::move(image), static_cast<int>(frame.orient.rot * 90),
                                     frame.orient.mirror);
    image = Pipeline::exportDownscale(std::move(image), settings_.scale);
    const OutputMetadata metadata = PrintMetadata::ofOriginal(frame.url, settings_.signature);
    writing([&] { ImageWriter::save(image, target.string(), settings_.quality, metadata); });
    noteWritten(target);
}

void ExportRun::print(const Frame& frame, RGBImage image, const Path& target)
{
    const ProcessSettings process =
        renderProcess(*frame.process, frame, statsOf(frame, image), settings_.cropGate, &settings_.frames);
    RenderChoices choices = choicesOf(process, store_);
    const Pipeline::OutputPlan plan =
        Pipeline::outputPlan(image.size(), choices.film, choices.paper, choices.options, 1.0);
    image = lit(frame, std::move(image), process.options.srcLights);
    CPUBackend backend;
    if (events_.fraction) backend.hooks.onProgress = events_.fraction;
    backend.hooks.shouldCancel = [this] { return cancelled(); };
    image = backend.process(std::move(image), choices);
    const FinishedPrint::Made made{choices, plan.picture};
    RGBImage master = Pipeline::exportDownscale(settings_.social ? image : std::move(image), settings_.scale);
    cancellationPoint();
    const double reduced = static_cast<double>(plan.width) / static_cast<double>(master.width);
    const OutputMetadata metadata =
        PrintMetadata::of(frame.url, choices, plan.printPxUm * reduced, settings_.signature);
    writing(
        [&] { FinishedPrint::save(std::move(master), made, target.string(), settings_.quality, metadata); });
    noteWritten(target);
    if (!settings_.social) return;
    ExportSize::askSocial(choices.options, settings_.socialPx);
    writeSocial(FinishedPrint::opaque(std::move(image), made), choices.options, target,
                PrintMetadata::of(frame.url, choices, 0, settings_.signature));
}

void ExportRun::writeSocial(RGBImage print, const RenderOptions& options, const Path& target,
                            const OutputMetadata& metadata)
{
    const RGBImage copy = Pipeline::socialVariant(std::move(print), options);
    const auto freeName = [this](const std::string& beside) { return freeTarget(beside).string(); };
    writing([&] {
        const ImageWriter::SocialCopy written =
            ImageWriter::saveSocial(copy, target.string(), kSocialQuality, metadata, freeName);
        if (written.fellBack) outcome_.besides = (target.parent_path() / "social").string();
        noteWritten(written.path);
    });
}

void ExportRun::noteWritten(const Path& file)
{
    taken_.insert(ExportNaming::key(file));
    if (const auto info = platform::fileInfo(file)) writtenFiles_.insert(info->id);
}

} // namespace tamlo
