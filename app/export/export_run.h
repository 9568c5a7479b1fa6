// ExportRun: a list of frames becomes files, one after the other, while the source of the next is decoded. It
// reads nothing of the project: each job has a copy. What is wrong with one frame is noted and the run goes
// on; what is wrong with the place that is written to ends it. Called on a thread of its own, and so are the
// callbacks.
#pragma once

#include "app/export/export_plan.h"
#include "app/export/photographs.h"
#include "app/export/print_metadata.h"
#include "app/preview/proxy_file.h"
#include "core/image/source_exposure.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/options/render_options.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tamlo {

class ProfileStore;

enum class ExportExistsAnswer { overwrite, keepBoth, cancel };

struct ExportSettings {
    double scale = 1;
    bool social = false;
    std::int64_t socialPx = 1080; ///< 2048: of the long side, else of the width
    int quality = 95;
    bool skipsExisting = false;          ///< a target that stands is passed over
    std::optional<std::string> cropGate; ///< the project's rule
    Roll frames;                         ///< of the project: a frame's place in it may be printed on its edge
    PrintMetadata::Signature signature;
};

/// The question when a target stands.
struct ExportClash {
    std::filesystem::path target;
    std::filesystem::path free; ///< what "keep both" writes
    bool isPhotograph = false;  ///< a source of the roll stands there, which is never replaced
};
struct ExportClashReply {
    ExportExistsAnswer answer = ExportExistsAnswer::cancel;
    bool forAll = false;
};

struct ExportedFrame {
    FrameRef frame; ///< as it was exported
    std::filesystem::path file;
    double seconds = 0;
};
struct FailedFrame {
    FrameRef frame;
    std::string why;
};

struct ExportOutcome {
    std::vector<ExportedFrame> written;
    std::vector<FrameRef> passedOver;
    std::vector<FailedFrame> failed;
    std::optional<std::string> targetFault; ///< what ended the run
    bool stopped = false;
    std::optional<GPUAbort> gpuFault;   ///< the first
    std::vector<FrameRef> gpuFrames;    ///< not written for one
    std::optional<std::string> besides; ///< folder that could not take the social copies
    std::size_t peakAhead = 0;          ///< sources decoded in advance
};

class ExportRun {
public:
    struct Events {
        std::function<void(const ExportJob&, std::size_t n)> begins;
        /// Of the frame in hand, 0 to 1.
        std::function<void(const char* phase, double fraction)> fraction;
        std::function<ExportClashReply(const ExportClash&)> exists;
        std::function<void(const ExportedFrame&, std::size_t n)> finished;
        std::function<void(const ExportJob&, std::size_t n)> passedOver;
        std::function<void(const FailedFrame&, std::size_t n)> failed;
        /// To stop after the frame in hand, and at the next cancellation point; from any thread.
        std::function<bool()> stops, cancels;
        /// What a RAW frame was measured at for its preview; absent: of the decoded picture.
        std::function<std::optional<SourceExposure::Stats>(const Frame&, WBMode, const RGBImage&)> stats;
        /// What the lights of any other lacked there; absent: of the decoded picture.
        std::function<DisplayLights::Map(const Frame&, const RGBImage&)> lights;
    };

    ExportRun(const ProfileStore& store, ExportSettings settings, const Photographs& photographs,
              Events events);

    ExportOutcome run(const std::vector<ExportJob>& jobs);

private:
    using Path = std::filesystem::path;
    struct Stop {};
    enum class Turn { write, passOver };

    bool cancelled() const { return events_.cancels && events_.cancels(); }
    RGBImage decoded(const ExportJob& job) const;
    void oneFrame(const ExportJob& job, std::size_t n, const std::function<RGBImage()>& take);
    Turn turnOf(Path& target);
    bool isPhotograph(const Path& target) const;
    Path freeTarget(const Path& target) const;
    void print(const Frame& frame, RGBImage image, const Path& target);
    void printOriginal(const Frame& frame, RGBImage image, const Path& target);
    std::optional<SourceExposure::Stats> statsOf(const Frame& frame, const RGBImage& image) const;
    RGBImage lit(const Frame& frame, RGBImage image, double amount) const;
    void writeSocial(RGBImage print, const RenderOptions& options, const Path& target,
                     const OutputMetadata& metadata);
    void noteWritten(const Path& file);

    const ProfileStore& store_;
    ExportSettings settings_;
    const Photographs& photographs_;
    Events events_;
    ExportNaming::Keys planned_, taken_;
    std::set<platform::FileID> writtenFiles_;
    std::atomic<bool> ended_{false}; ///< what is being decoded is not wanted any more
    std::optional<ExportExistsAnswer> forAll_;
    ExportOutcome outcome_;
};

} // namespace tamlo
