#include "app/shell/frame_screen.h"

#include "app/shell/app_model.h"
#include "core/io/decode_rules.h"
#include "core/profiles/formats/profile_error.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tamlo {
namespace {

using Outcome = KeyedRenderer::Outcome;
using Output = KeyedRenderer::Output;
using Failure = KeyedRenderer::Failure;

/// While a knob is being turned and a proxy takes longer than this, a smaller picture answers, and the proxy
/// follows when the hand has rested.
constexpr double kSlowProxySeconds = 0.06, kRestSeconds = 0.12;
constexpr std::int64_t kFastLong = 1024;
/// A tier of many pixels waits a little longer for the next change.
constexpr std::int64_t kLargeTier = 4096;
constexpr double kLargeDelaySeconds = 0.6;
constexpr double kMasterDelaySeconds = 1.0;
constexpr double kArrivedDelaySeconds = 0.25;
constexpr double kZoomDelaySeconds = 0.3;

} // namespace

struct FrameScreen::Situation {
    FrameRef frame;
    FrameStore::SourceRef source;
    Tiers::Caps caps;
    double cropFactor = 1;
    std::int64_t full = 0;
};

FrameScreen::FrameScreen(Previews& previews, SourceLoads& loads, Shown shown)
    : previews_(previews), loads_(loads), shown_(std::move(shown))
{}

std::optional<FrameScreen::Situation> FrameScreen::situation() const
{
    const FrameRef frame = model_->selection.currentFrame();
    if (!frame || model_->selection.screen() != Screen::develop) return std::nullopt;
    Situation now{frame, previews_.frames.source(frame->id), {}, 1, 0};
    if (!now.source) return now;
    const Size full = now.source->fullSize();
    now.cropFactor = Tiers::cropDecodeFactor(frame->crop, full);
    if (frame->process) {
        try {
            const RenderChoices choices = choicesOf(
                renderProcess(*frame->process, *frame, now.source->stats, model_->project().cropGate),
                previews_.store);
            now.caps = Tiers::capsOf(choices.film, choices.paper, choices.options, full);
        } catch (const ProfileError&) {
        } catch (const TamloError&) {
            // The render tells of a profile that is not there; nothing is known of its limits.
        }
    }
    if (ImageLoader::rawDecodeMode() == ImageLoader::RawDecodeMode::full) now.caps.master = 0;
    now.full = Tiers::fullLong(full, now.caps, now.cropFactor);
    return now;
}

std::int64_t FrameScreen::neededDetailLong() const
{
    const auto now = situation();
    if (!now || !now->source) return ProxyFile::kProxyLong;
    if (!fit_) return kLargeTier;
    const double fitLong = static_cast<double>(std::max(fit_->width, fit_->height));
    return Tiers::neededLong(now->full, now->caps, now->cropFactor, fitLong * displayScale_ * zoom_);
}

std::int64_t FrameScreen::fullDetailLong() const
{
    const auto now = situation();
    return now && now->source ? now->full : 0;
}

std::int64_t FrameScreen::masterCapLong() const
{
    const auto now = situation();
    return now && now->source ? now->caps.master : 0;
}

double FrameScreen::viewedLong() const
{
    const auto now = situation();
    if (now && now->source) {
        const Size full = now->source->fullSize();
        return static_cast<double>(std::max(full.width, full.height)) / now->cropFactor;
    }
    return image_ ? static_cast<double>(std::max(image_->width, image_->height)) : 0;
}

Tiers::Badge FrameScreen::badge() const
{
    const auto now = situation();
    if (!image_ || !now || !now->source) return {};
    const std::int64_t cap = now->caps.master > 0 ? Tiers::scaled(now->caps.master, now->cropFactor) : 0;
    return Tiers::badge(detailLong_, now->full, cap, isFine_, detailPending_);
}

std::optional<double> FrameScreen::arc() const
{
    if (!detailPending_ || !arcStart_ || !(arcSeconds_ > 0)) return std::nullopt;
    return std::clamp((previews_.loop.now() - *arcStart_) / arcSeconds_, 0.0, 1.0);
}

bool FrameScreen::isBusy() const
{
    const auto now = situation();
    if (!now) return false;
    return loads_.isLoading(now->frame->id) || frameIsDue_ || restIsDue_ || detailPending_;
}

void FrameScreen::setFit(Size fit, double displayScale)
{
    const bool isFirst = !fit_;
    fit_ = fit;
    displayScale_ = displayScale > 0 ? displayScale : 1;
    if (isFirst || detailLong_ < neededDetailLong()) scheduleDetail(kZoomDelaySeconds);
}

void FrameScreen::setZoom(double zoom)
{
    if (zoom == zoom_) return;
    zoom_ = zoom;
    if (detailLong_ < neededDetailLong()) scheduleDetail(kZoomDelaySeconds);
}

void FrameScreen::setShowsOriginal(bool shows)
{
    if (shows == showsOriginal_) return;
    showsOriginal_ = shows;
    original_.reset();
    if (const auto now = situation(); now && now->source && shows) submitBeside(*now);
}

void FrameScreen::setSideB(std::optional<ProcessSettings> process)
{
    sideB_ = std::move(process);
    if (!sideB_) {
        abImage_.reset();
        previews_.renderer.cancel("ab");
    } else if (const auto now = situation(); now && now->source) {
        submitBeside(*now);
    }
}

KeyedRenderer::Request FrameScreen::request(const Situation& now,
                                            const std::optional<ProcessSettings>& process) const
{
    KeyedRenderer::Request request;
    request.image = now.source->proxy;
    request.lights = now.source->lights;
    request.ticket = ticket_;
    if (process)
        request.process = renderProcess(*process, *now.frame, now.source->stats, model_->project().cropGate,
                                        &model_->project().frames);
    request.gain = originalGain(now.source->stats);
    request.original = {now.frame->crop, now.frame->orient.rot * 90, now.frame->orient.mirror};
    return request;
}

void FrameScreen::renderCurrent(double fineDelaySeconds)
{
    cancelPending();
    const auto now = situation();
    if (!now) return;
    if (imageOf_ != now->frame->id) {
        image_.reset();
        original_.reset();
        abImage_.reset();
        detailLong_ = 0;
        isFine_ = false;
        info_.clear();
        fault_.reset();
        imageOf_ = now->frame->id;
        lastProxySeconds_ = 0;
    }
    prefetch();
    if (!now->source) {
        if (!loads_.isLoading(now->frame->id)) loads_.load(now->frame->id);
        return;
    }
    model_->zoom.setDetailLong(viewedLong());
    if (loads_.redecodeIfNeeded(now->frame->id)) return;
    submitFrame(model_->history().gestureIsOpen() && lastProxySeconds_ > kSlowProxySeconds);
    submitBeside(*now);
    scheduleDetail(fineDelaySeconds);
}

void FrameScreen::sourceArrived(const FrameID& id)
{
    const auto now = situation();
    if (now && now->frame->id == id) renderCurrent(kArrivedDelaySeconds);
}

void FrameScreen::cancelPending()
{
    fineWork_.cancel();
    masterWork_.cancel();
    restWork_.cancel();
    restIsDue_ = frameIsDue_ = false;
    endDetailCycle(false);
    previews_.renderer.setTicket(++ticket_);
}

void FrameScreen::clear()
{
    cancelPending();
    endPeek();
    cancelProof();
    for (const char* key : {"frame", "orig", "ab", "fine"}) previews_.renderer.cancel(key);
    previews_.frames.cancelDetail();
    image_.reset();
    original_.reset();
    abImage_.reset();
    sideB_.reset();
    imageOf_.reset();
    fault_.reset();
    info_.clear();
    detailLong_ = 0;
    isFine_ = false;
}

void FrameScreen::prefetch()
{
    if (!readsAhead_) return;
    const auto visible = model_->selection.visibleIDs();
    const auto at = std::ranges::find(visible, *imageOf_);
    if (at == visible.end()) return;
    std::vector<FrameID> neighbours;
    if (at + 1 != visible.end()) neighbours.push_back(*(at + 1));
    if (at != visible.begin()) neighbours.push_back(*(at - 1));
    for (const FrameID& id : neighbours)
        if (!previews_.frames.source(id) && !loads_.isLoading(id) &&
            model_->linker.state(id) != FileState::unreadable)
            loads_.load(id);
}

void FrameScreen::submitFrame(bool isFast)
{
    const auto now = situation();
    if (!now || !now->source) return;
    KeyedRenderer::Request request =
        this->request(*now, now->frame->process ? std::optional(*now->frame->process) : std::nullopt);
    if (isFast) request.inputLong = kFastLong;
    frameIsDue_ = true;
    previews_.renderer.submit("frame", std::move(request), [this, ticket = ticket_, isFast](Outcome outcome) {
        frameEnded(ticket, isFast, std::move(outcome));
    });
}

void FrameScreen::submitBeside(const Situation& now)
{
    const auto take = [this, ticket = ticket_](Image FrameScreen::*into) {
        return [this, ticket, into](const Outcome& outcome) {
            const auto* output = std::get_if<Output>(&outcome);
            if (!output || ticket != ticket_) return;
            this->*into = output->image;
            ++shownGen_;
            model_->observers.note(Concern::frameView);
        };
    };
    if (showsOriginal_)
        previews_.renderer.submit("orig", request(now, std::nullopt), take(&FrameScreen::original_));
    if (sideB_) previews_.renderer.submit("ab", request(now, sideB_), take(&FrameScreen::abImage_));
}

void FrameScreen::show(const Output& output, std::int64_t longSide, bool fine)
{
    fault_.reset();
    image_ = output.image;
    isFine_ = fine;
    detailLong_ = longSide;
    ++shownGen_;
    model_->observers.note(Concern::frameView);
    char text[96];
    std::snprintf(text, sizeof text, "cpu · %lld×%lld · %.0f ms", static_cast<long long>(image_->width),
                  static_cast<long long>(image_->height), output.seconds * 1000);
    info_ = text;
    log_.dump(*image_, tierLetter());
}

void FrameScreen::noteFault(const GPUAbort& abort, const std::string& tier, std::int64_t longSide)
{
    const auto now = situation();
    if (!now || !now->source) return;
    const ProcessSettings process = model_->selection.currentProcess();
    const Size size = resizedSize(now->source->fullSize(), longSide);
    fault_ = GPUFault{abort, now->frame->id, tier, size.width, size.height, process.stock, process.lens};
}

void FrameScreen::frameEnded(std::int64_t ticket, bool isFast, Outcome outcome)
{
    if (ticket != ticket_ || (isFine_ && shownTicket_ == ticket)) return;
    frameIsDue_ = false;
    const auto now = situation();
    if (!now || !now->source) return;
    if (const auto* failure = std::get_if<Failure>(&outcome)) {
        shown_(now->frame->id, std::nullopt, nullptr);
        if (failure->abort) return noteFault(*failure->abort, "P", ProxyFile::kProxyLong);
        return model_->tellFailure(failure->text);
    }
    const auto* output = std::get_if<Output>(&outcome);
    if (!output) return;
    const std::int64_t proxy = Tiers::proxyLong(now->source->fullSize());
    show(*output, isFast ? std::min(kFastLong, proxy) : proxy, false);
    if (isFast) {
        restIsDue_ = true;
        restWork_ = previews_.loop.after(kRestSeconds, [this] {
            restIsDue_ = false;
            submitFrame(false);
        });
        return;
    }
    shownTicket_ = ticket;
    lastProxySeconds_ = output->seconds;
    shown_(now->frame->id, now->frame->process ? std::optional(*now->frame->process) : std::nullopt,
           output->image);
    log_.event("arrived", {tierLetter(), proxy, detailLong_, now->full});
}

void FrameScreen::beginDetailCycle(DetailTier tier, std::int64_t longSide)
{
    const FrameRef frame = model_->selection.currentFrame();
    if (!frame) return;
    cycleTier_ = tier;
    cycleLong_ = longSide;
    cycleFrame_ = frame->id;
    arcSeconds_ = estimates_.estimate(frame->id, tier, longSide);
    arcStart_ = previews_.loop.now();
    detailPending_ = true;
}

void FrameScreen::endDetailCycle(bool arrived)
{
    if (arrived && arcStart_ && cycleFrame_)
        estimates_.note(*cycleFrame_, cycleTier_, cycleLong_, previews_.loop.now() - *arcStart_);
    arcStart_.reset();
    detailPending_ = false;
}

void FrameScreen::scheduleDetail(double delaySeconds)
{
    fineWork_.cancel();
    const auto now = situation();
    if (!fit_ || !now || !now->source) return; // setFit and the source's arrival plan it
    const std::int64_t needed = neededDetailLong();
    beginDetailCycle(DetailTier::working, needed);
    const double delay = needed > kLargeTier ? std::max(delaySeconds, kLargeDelaySeconds) : delaySeconds;
    fineWork_ = previews_.loop.after(delay, [this, ticket = ticket_] { renderFine(ticket, 0); });
}

bool FrameScreen::isFullShown() const
{
    const auto now = situation();
    if (!now || !now->source) return true;
    if (Tiers::proxyLong(now->source->fullSize()) >= now->full) return true; // the proxy is all there is
    return shownTicket_ == ticket_ && detailLong_ >= now->full;
}

void FrameScreen::scheduleMaster(std::int64_t ticket, double delaySeconds)
{
    const auto now = situation();
    if (ticket != ticket_ || !now) return;
    masterWork_.cancel();
    if (isFullShown()) {
        log_.event("master not needed", {tierLetter(), detailLong_, detailLong_, now->full});
        return endDetailCycle(false);
    }
    beginDetailCycle(DetailTier::master, now->full);
    masterWork_ =
        previews_.loop.after(delaySeconds, [this, ticket, full = now->full] { renderFine(ticket, full); });
}

void FrameScreen::renderFine(std::int64_t ticket, std::int64_t longSide)
{
    const auto now = situation();
    if (ticket != ticket_ || !now || !now->source) return;
    const bool isMaster = longSide >= 1;
    const std::int64_t needed = neededDetailLong();
    if (isMaster && isFullShown()) return endDetailCycle(false);
    if (!isMaster && (needed <= ProxyFile::kProxyLong || (shownTicket_ == ticket && detailLong_ >= needed))) {
        endDetailCycle(false); // what is there is enough for the screen
        return scheduleMaster(ticket, kMasterDelaySeconds);
    }
    if (!hasOriginal(model_->linker.state(now->frame->id))) return endDetailCycle(false);
    const std::int64_t wanted = isMaster ? longSide : needed;
    const std::int64_t cap = now->caps.master > 0 ? Tiers::scaled(now->caps.master, now->cropFactor) : 0;
    previews_.frames.loadDetail(now->frame, {wanted, cap, wanted >= now->full, now->source->wb},
                                [this, ticket, wanted](std::optional<RGBImage> image) {
                                    if (ticket != ticket_) return;
                                    image ? submitFine(ticket, wanted, std::move(*image))
                                          : endDetailCycle(false);
                                });
}

void FrameScreen::submitFine(std::int64_t ticket, std::int64_t longSide, RGBImage image)
{
    const auto now = situation();
    if (!now || !now->source) return endDetailCycle(false);
    KeyedRenderer::Request request =
        this->request(*now, now->frame->process ? std::optional(*now->frame->process) : std::nullopt);
    request.image = std::move(image);
    request.inputLong = longSide;
    previews_.renderer.submit("fine", std::move(request), [this, ticket, longSide](Outcome outcome) {
        if (ticket == ticket_) fineEnded(ticket, longSide, std::move(outcome));
    });
}

void FrameScreen::fineEnded(std::int64_t ticket, std::int64_t longSide, Outcome outcome)
{
    const std::int64_t full = fullDetailLong();
    const std::string letter = longSide >= full ? "F" : "S";
    if (const auto* output = std::get_if<Output>(&outcome)) {
        show(*output, longSide, true);
        shownTicket_ = ticket;
        endDetailCycle(true);
        log_.event("arrived", {letter, longSide, detailLong_, full});
        return scheduleMaster(ticket, kMasterDelaySeconds);
    }
    endDetailCycle(false);
    if (const auto* failure = std::get_if<Failure>(&outcome)) {
        log_.event("FAILED: " + failure->text, {letter, longSide, detailLong_, full});
        if (failure->abort)
            noteFault(*failure->abort, letter, longSide);
        else
            info_ = T("develop.tierFailed", {{"px", longSide}});
        if (longSide < full) scheduleMaster(ticket, kMasterDelaySeconds);
        return;
    }
    log_.event("stale", {letter, longSide, detailLong_, full});
    if (masterRetryTicket_ == ticket) return;
    masterRetryTicket_ = ticket;
    scheduleMaster(ticket, kMasterDelaySeconds);
}

void FrameScreen::peek(const ProcessSettings& process, std::int64_t inputLong, Taken taken)
{
    const auto now = situation();
    ++peekGen_;
    if (!now || !now->source) return taken(KeyedRenderer::Stale());
    KeyedRenderer::Request request = this->request(*now, process);
    request.inputLong = inputLong;
    previews_.renderer.submit(
        "peek", std::move(request),
        [this, gen = peekGen_, ticket = ticket_, taken = std::move(taken)](Outcome outcome) {
            const bool isWanted = gen == peekGen_ && ticket == ticket_;
            taken(isWanted ? std::move(outcome) : KeyedRenderer::Stale());
        });
}

void FrameScreen::endPeek()
{
    ++peekGen_;
    previews_.renderer.cancel("peek");
}

void FrameScreen::proof(const std::vector<ProcessSettings>& processes, std::int64_t inputLong,
                        std::function<void(std::size_t, Outcome)> taken)
{
    cancelProof();
    const auto now = situation();
    for (std::size_t i = 0; i < processes.size(); ++i) {
        if (!now || !now->source) {
            taken(i, KeyedRenderer::Stale());
            continue;
        }
        KeyedRenderer::Request request = this->request(*now, processes[i]);
        request.inputLong = inputLong;
        request.ticket.reset(); // a sheet of proofs outlives a turn of a knob
        previews_.renderer.submit("proof:" + std::to_string(i), std::move(request),
                                  [this, gen = proofGen_, taken, i](Outcome outcome) {
                                      taken(i,
                                            gen == proofGen_ ? std::move(outcome) : KeyedRenderer::Stale());
                                  });
    }
}

void FrameScreen::cancelProof()
{
    ++proofGen_;
    previews_.renderer.cancel("proof:");
}

} // namespace tamlo
