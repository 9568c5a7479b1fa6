#include "app/preview/keyed_renderer.h"

#include "app/preview/calibration_cache.h"
#include "core/image/cancellation.h"
#include "core/image/orient.h"
#include "core/pipeline/crop_geometry.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/work_arena.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

namespace tamlo {
namespace {

constexpr std::string_view kKinds[] = {"frame", "orig", "ab", "peek", "fine", "proof:", "thumb:"};

ReadyImage originalPicture(RGBImage image, const KeyedRenderer::Request& request)
{
    image = Pipeline::rotateCropInput(std::move(image), request.original.crop);
    image = Orientation::orientImage(std::move(image), static_cast<int>(request.original.rotate),
                                     request.original.mirror);
    return ImageWriter::readyImage(SourceExposure::apply(request.gain, std::move(image)));
}

} // namespace

int KeyedRenderer::rank(const std::string& key)
{
    const auto found =
        std::ranges::find_if(kKinds, [&](std::string_view kind) { return key.starts_with(kind); });
    return static_cast<int>(found - std::begin(kKinds));
}

KeyedRenderer::KeyedRenderer(platform::MainLoop& loop, Render render)
    : loop_(loop), render_(std::move(render)), queue_("tamlo.render")
{}

KeyedRenderer::~KeyedRenderer()
{
    alive_.reset();
    const std::lock_guard lock(mutex_);
    pending_.clear();
    if (running_) *running_ = true;
}

void KeyedRenderer::submit(const std::string& key, Request request, Completion completion)
{
    Completion replaced;
    {
        const std::lock_guard lock(mutex_);
        if (running_ && runningKey_ == key) *running_ = true;
        const auto same = std::ranges::find_if(pending_, [&](const Job& job) { return job.key == key; });
        if (same != pending_.end()) {
            replaced = std::move(same->completion);
            same->request = std::move(request);
            same->completion = std::move(completion);
        } else {
            pending_.push_back({key, std::move(request), std::move(completion)});
            queue_.submit([this] { drainOne(); });
        }
    }
    if (replaced) answer(std::move(replaced), Stale());
}

void KeyedRenderer::cancel(const std::string& prefix)
{
    std::list<Job> dropped;
    {
        const std::lock_guard lock(mutex_);
        for (auto job = pending_.begin(); job != pending_.end();) {
            const auto next = std::next(job);
            if (job->key.starts_with(prefix)) dropped.splice(dropped.end(), pending_, job);
            job = next;
        }
        if (running_ && runningKey_.starts_with(prefix)) *running_ = true;
    }
    for (Job& job : dropped) answer(std::move(job.completion), Stale());
}

bool KeyedRenderer::isStale(const std::string& key) const
{
    const std::lock_guard lock(mutex_);
    return std::ranges::any_of(pending_, [&](const Job& job) { return job.key == key; });
}

bool KeyedRenderer::isIdle() const
{
    const std::lock_guard lock(mutex_);
    return pending_.empty() && !running_;
}

void KeyedRenderer::drainOne()
{
    std::list<Job> taken;
    {
        const std::lock_guard lock(mutex_);
        const auto first =
            std::ranges::min_element(pending_, {}, [](const Job& job) { return rank(job.key); });
        if (first == pending_.end()) return; // it was cancelled
        taken.splice(taken.end(), pending_, first);
        runningKey_ = taken.front().key;
        running_ = taken.front().superseded;
    }
    Job& job = taken.front();
    Outcome outcome = outcomeOf(job);
    Completion completion = std::move(job.completion);
    {
        const std::lock_guard lock(mutex_);
        if (*running_) outcome = Stale();
        running_.reset();
    }
    answer(std::move(completion), std::move(outcome));
}

KeyedRenderer::Outcome KeyedRenderer::outcomeOf(Job& job)
{
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const std::function<bool()> shouldCancel = [superseded = job.superseded, current = ticket_,
                                                ticket = job.request.ticket] {
        return superseded->load() || (ticket && *ticket < current->load());
    };
    if (shouldCancel()) return Stale();
    try {
        auto image =
            std::make_shared<const ReadyImage>(render_(job.key, std::move(job.request), shouldCancel));
        return Output{std::move(image), std::chrono::duration<double>(Clock::now() - begin).count()};
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) return Stale();
        const bool aborted = error.kind() == TamloError::Kind::gpuAborted;
        return Failure{error.what(), aborted ? std::optional(error.abort()) : std::nullopt};
    } catch (const std::exception& error) {
        return Failure{error.what(), std::nullopt}; // of a profile, or of memory that ran out
    }
}

void KeyedRenderer::answer(Completion completion, Outcome outcome)
{
    if (!completion) return;
    loop_.post([alive = isAlive_, completion = std::move(completion),
                outcome = std::make_shared<Outcome>(std::move(outcome))] {
        if (!alive.expired()) completion(std::move(*outcome));
    });
}

namespace {

ReadyImage print(RGBImage image, const ProcessSettings& process, const ProfileStore& store,
                 CalibrationCache* calibrations, const std::function<bool()>& shouldCancel)
{
    CPUBackend backend;
    backend.hooks.shouldCancel = shouldCancel;
    const RenderChoices choices = choicesOf(process, store);
    if (!calibrations) return backend.processReady(std::move(image), choices);
    ReadyImage out;
    calibrations->during(store.data(ProfileKind::films, process.stock),
                         [&] { out = backend.processReady(std::move(image), choices); });
    return out;
}

} // namespace

KeyedRenderer::Render viewRender(const ProfileStore& store, CalibrationCache* calibrations)
{
    return [&store, calibrations](const std::string& key, KeyedRenderer::Request request,
                                  const std::function<bool()>& shouldCancel) {
        ReadyImage out;
        const bool isTile = key.starts_with("thumb:");
        platform::runIn(isTile ? platform::WorkArena::background : platform::WorkArena::view, [&] {
            const CancellationScope cancellation(shouldCancel);
            RGBImage image = request.source ? request.source() : std::move(request.image);
            request.image = {};
            // Ahead of the reduction, in which a light of few pixels is lost.
            if (request.process)
                image = DisplayLights::restore(std::move(image), request.lights,
                                               request.process->options.srcLights);
            if (request.inputLong) image = resized(std::move(image), *request.inputLong);
            if (!request.process) {
                out = originalPicture(std::move(image), request);
                return;
            }
            out = print(std::move(image), *request.process, store, calibrations, shouldCancel);
        });
        return out;
    };
}

} // namespace tamlo
