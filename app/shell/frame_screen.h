// FrameScreen: the frame on the develop screen and how it gets better by itself. A change is answered from
// the proxy at once; then comes a picture as large as the screen, then everything there is. Every request
// bears the ticket of the change it belongs to, and nothing of an older one is ever shown.
#pragma once

#include "app/preview/tiers.h"
#include "app/shell/previews.h"
#include "app/shell/source_loads.h"
#include "app/shell/tier_log.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

/// A render that its executor gave up, for the screen to tell.
struct GPUFault {
    GPUAbort abort;
    FrameID frameID;
    std::string tier;
    std::int64_t width = 0, height = 0;
    std::string stock, lens;
};

class FrameScreen {
public:
    using Image = std::shared_ptr<const ReadyImage>;
    /// A whole print of a frame was shown: frame, the process that made it, the print; null where it failed.
    using Shown = std::function<void(const FrameID&, const std::optional<ProcessSettings>&, const Image&)>;

    FrameScreen(Previews& previews, SourceLoads& loads, Shown shown);

    void attach(AppModel& model) { model_ = &model; }

    // What is on screen.

    const Image& image() const { return image_; }
    const Image& original() const { return original_; }
    const Image& abImage() const { return abImage_; }
    bool isFine() const { return isFine_; }
    std::int64_t detailLong() const { return detailLong_; }
    bool detailPending() const { return detailPending_; }
    const std::string& info() const { return info_; }
    const std::optional<GPUFault>& fault() const { return fault_; }
    Tiers::Badge badge() const;
    /// How far the tier that is being made has come, by how long it took the last time; none when none is.
    std::optional<double> arc() const;
    /// Goes up with each picture that is shown.
    std::int64_t shownGen() const { return shownGen_; }

    // What the screen says.

    /// The size into which the whole picture fits, in points, and how many pixels a point has.
    void setFit(Size fit, double displayScale);
    void setZoom(double zoom);
    /// The untouched picture is looked at beside or instead of the print.
    void setShowsOriginal(bool shows);
    /// The process of side B; none outside A/B.
    void setSideB(std::optional<ProcessSettings> process);

    /// Whether the frames beside the current one are read ahead.
    void setReadsAhead(bool reads) { readsAhead_ = reads; }

    // Rendering.

    /// Renders the current frame anew; its larger tiers after a delay.
    void renderCurrent(double fineDelaySeconds);
    void sourceArrived(const FrameID& id);
    /// The frame is left: nothing that runs for it is wanted any more.
    void cancelPending();
    /// The same, and nothing is on screen.
    void clear();
    void forget(const FrameID& id) { estimates_.forget(id); }

    /// Long sides of the source: what the screen needs, everything there is (0 without a source), and what
    /// the film resolves of the cropped picture (0 for no limit).
    std::int64_t neededDetailLong() const;
    std::int64_t fullDetailLong() const;
    std::int64_t masterCapLong() const;
    /// Long side, in pixels of the source, of what the crop shows of it; that of the picture without a
    /// source, and 0 without either.
    double viewedLong() const;

    /// Something is still to come: a source, a proxy or a tier.
    bool isBusy() const;

    using Taken = std::function<void(KeyedRenderer::Outcome)>;
    /// The current frame under another process, for a look at it. A later peek takes its place. It ends stale
    /// without a source, and when the frame changes; nothing of it stays.
    void peek(const ProcessSettings& process, std::int64_t inputLong, Taken taken);
    /// Nobody looks any more: a peek under way ends stale.
    void endPeek();
    /// The same under several, in their order; cancelled together, after which each ends stale.
    void proof(const std::vector<ProcessSettings>& processes, std::int64_t inputLong,
               std::function<void(std::size_t, KeyedRenderer::Outcome)> taken);
    void cancelProof();

private:
    struct Situation; ///< the current frame, its source and its caps

    std::optional<Situation> situation() const;
    KeyedRenderer::Request request(const Situation& now, const std::optional<ProcessSettings>& process) const;
    void submitFrame(bool isFast);
    void submitBeside(const Situation& now);
    void frameEnded(std::int64_t ticket, bool isFast, KeyedRenderer::Outcome outcome);
    void scheduleDetail(double delaySeconds);
    void scheduleMaster(std::int64_t ticket, double delaySeconds);
    void renderFine(std::int64_t ticket, std::int64_t longSide);
    void submitFine(std::int64_t ticket, std::int64_t longSide, RGBImage image);
    void fineEnded(std::int64_t ticket, std::int64_t longSide, KeyedRenderer::Outcome outcome);
    bool isFullShown() const;
    void beginDetailCycle(DetailTier tier, std::int64_t longSide);
    void endDetailCycle(bool arrived);
    void show(const KeyedRenderer::Output& output, std::int64_t longSide, bool fine);
    void noteFault(const GPUAbort& abort, const std::string& tier, std::int64_t longSide);
    std::string tierLetter() const { return badge().letter; }
    void prefetch();

    Previews& previews_;
    SourceLoads& loads_;
    Shown shown_;
    AppModel* model_ = nullptr;
    TierLog log_;

    Image image_, original_, abImage_;
    std::optional<FrameID> imageOf_;
    bool isFine_ = false, detailPending_ = false, showsOriginal_ = false, frameIsDue_ = false;
    bool readsAhead_ = true;
    std::int64_t detailLong_ = 0, shownGen_ = 0;
    std::string info_;
    std::optional<GPUFault> fault_;
    std::optional<ProcessSettings> sideB_;
    std::optional<Size> fit_;
    double displayScale_ = 1, zoom_ = 1;

    std::int64_t ticket_ = 0, shownTicket_ = -1, masterRetryTicket_ = -1;
    std::int64_t peekGen_ = 0, proofGen_ = 0; ///< a look of an older one is over
    double lastProxySeconds_ = 0;
    platform::Timer fineWork_, masterWork_, restWork_;
    bool restIsDue_ = false;

    DetailEstimates estimates_;
    DetailTier cycleTier_ = DetailTier::working;
    std::int64_t cycleLong_ = 0;
    std::optional<FrameID> cycleFrame_;
    std::optional<double> arcStart_;
    double arcSeconds_ = 0;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tamlo
