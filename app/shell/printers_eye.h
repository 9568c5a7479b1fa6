// PrintersEye: frames are looked at as a minilab's operator does, each print exposed and graded for its own
// frame. Prints are looked at small, off the proxies, on a thread of their own; then print_ev and grade are
// written into all frames as plain values, in one undo step.
#pragma once

#include "app/preview/proxy_file.h"
#include "app/project/roll.h"
#include "app/shell/background.h"
#include "core/pipeline/auto_print.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class PrintersEye {
public:
    using FrameIDs = std::vector<FrameID>;
    using SourceRef = std::shared_ptr<const FrameSource>;
    /// The proxy of a frame; hasFile: its file is at hand. From any thread. Errors: those of its decode.
    using Source = std::function<SourceRef(const FrameRef& frame, bool hasFile)>;

    /// What has become of a frame.
    struct Seen {
        FrameID id;
        Pipeline::AutoPrint print;
        /// Why nothing was written, in the user's language; empty where something was, or is so already.
        std::string why;
        bool failed = false; ///< its source stood in the way
    };
    struct Report {
        std::vector<Seen> seen; ///< in the order that was asked for
        std::size_t changed = 0;
        bool stopped = false;
    };
    using Done = std::function<void(const Report&)>;

    explicit PrintersEye(AppModel& model);
    ~PrintersEye();

    /// Where proxies come from; without it they are decoded. Set before the first look.
    void setSource(Source source) { source_ = std::move(source); }

    /// Looks at frames and then writes. Returns whether it began: one look at a time. A frame that is changed
    /// while it is looked at is left alone. `done` is called on the main thread.
    bool autoPrint(const FrameIDs& ids, Done done = {});
    /// The same for the targets of an action: what a button calls.
    bool autoPrint();
    /// Nothing is written then.
    void stop();

    bool isLooking() const { return stops_ != nullptr; }
    /// Frames that have been looked at, of how many.
    std::size_t lookedAt() const { return lookedAt_; }
    std::size_t total() const { return total_; }

private:
    struct Job;

    std::vector<Job> jobsOf(const FrameIDs& ids) const;
    void noteLooked(std::size_t n);
    void ended(const std::vector<Job>& jobs, std::vector<Seen> seen, const Done& done);

    AppModel& model_;
    Source source_;
    std::shared_ptr<std::atomic<bool>> stops_; ///< of the look under way
    std::size_t lookedAt_ = 0, total_ = 0;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    Background background_; // last: joined before the rest goes
};

} // namespace tamlo
