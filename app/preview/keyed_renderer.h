// KeyedRenderer: one render after the other, in the order in which the user misses them. Every request has a
// key, and a newer one of the same key takes the older one's place, running or not: what nobody looks at any
// more is never finished. Requests are made on the main thread and answered there, each exactly once; pixels
// are worked on by a thread of their own.
#pragma once

#include "app/preview/render_process.h"
#include "core/io/ready_image.h"
#include "platform/job_queue.h"
#include "platform/main_loop.h"

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace tamlo {

class KeyedRenderer {
public:
    /// A picture that was not developed: cut and turned.
    struct OriginalView {
        std::optional<Crop> crop;
        std::int64_t rotate = 0; ///< degrees clockwise
        bool mirror = false;
    };

    struct Request {
        RGBImage image;                         ///< the input
        std::optional<ProcessSettings> process; ///< as renderProcess gives it; absent for an original
        DisplayLights::Map lights;              ///< of the source, for the process's src_lights
        double gain = 1.0;                      ///< of the original
        OriginalView original;
        std::optional<std::int64_t> ticket;    ///< below the one in force: nobody waits for it
        std::optional<std::int64_t> inputLong; ///< what the input is reduced to first
        /// A larger input, fetched on the render's thread in place of `image`.
        std::function<RGBImage()> source;
    };

    struct Output {
        std::shared_ptr<const ReadyImage> image;
        double seconds = 0.0;
    };
    struct Failure {
        std::string text;
        std::optional<GPUAbort> abort;
    };
    struct Stale {};
    using Outcome = std::variant<Output, Failure, Stale>;
    using Completion = std::function<void(Outcome)>;

    /// Makes a picture of a request; ends with cancelled soon after the question answers yes, which may be
    /// asked from several threads at once. Errors: all that a render throws.
    using Render = std::function<ReadyImage(const std::string& key, Request request,
                                            const std::function<bool()>& shouldCancel)>;

    KeyedRenderer(platform::MainLoop& loop, Render render);
    ~KeyedRenderer();
    KeyedRenderer(const KeyedRenderer&) = delete;
    KeyedRenderer& operator=(const KeyedRenderer&) = delete;

    void submit(const std::string& key, Request request, Completion completion);
    /// Drops the requests whose key begins so; they end stale.
    void cancel(const std::string& prefix);
    /// Requests with a lower ticket end stale from now on.
    void setTicket(std::int64_t ticket) { ticket_->store(ticket); }
    /// A newer request of this key waits.
    bool isStale(const std::string& key) const;
    bool isIdle() const;

    /// The place of a kind of key in the order: frame, orig, ab, peek, fine, proof, thumb.
    static int rank(const std::string& key);

private:
    struct Job {
        std::string key;
        Request request;
        Completion completion;
        std::shared_ptr<std::atomic<bool>> superseded = std::make_shared<std::atomic<bool>>(false);
    };

    void drainOne();
    Outcome outcomeOf(Job& job);
    void answer(Completion completion, Outcome outcome);

    platform::MainLoop& loop_;
    Render render_;
    std::shared_ptr<std::atomic<std::int64_t>> ticket_ = std::make_shared<std::atomic<std::int64_t>>(0);
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); ///< completions are dropped with us
    const std::weak_ptr<bool> isAlive_ = alive_; ///< the same for other threads, which never see it change
    mutable std::mutex mutex_;
    std::list<Job> pending_; ///< in order of arrival; a replaced one keeps its place
    std::string runningKey_;
    std::shared_ptr<std::atomic<bool>> running_; ///< of the running one; null for none
    platform::SerialQueue queue_;                ///< last: joined before the rest goes
};

class CalibrationCache;

/// The real renders: on the CPU, the view's in the arena that goes first, tiles behind it. calibrations: null
/// for none that outlive the process.
KeyedRenderer::Render viewRender(const ProfileStore& store, CalibrationCache* calibrations = nullptr);

} // namespace tamlo
