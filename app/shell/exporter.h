// Exporter: frames leave as files while the session goes on. The run works on copies, on a thread of its own;
// what it has to tell, to ask and to note comes back to the main thread.
#pragma once

#include "app/export/export_report.h"
#include "app/export/export_task.h"
#include "app/shell/background.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

class Exporter {
public:
    using Path = std::filesystem::path;
    using FrameIDs = std::vector<FrameID>;
    using Done = std::function<void(const ExportReport&)>;
    using Stats = std::function<std::optional<SourceExposure::Stats>(const Frame&, WBMode, const RGBImage&)>;

    using Lights = std::function<DisplayLights::Map(const Frame&, const RGBImage&)>;

    explicit Exporter(AppModel& model);
    ~Exporter();

    /// What frames were measured at for their previews; from any thread. Set before the first run.
    void setMeasured(Stats stats, Lights lights)
    {
        stats_ = std::move(stats);
        lights_ = std::move(lights);
    }

    /// From the preferences: for one frame, or for a batch.
    ExportDraft exportDraft(const std::optional<FrameID>& single) const;
    /// Keeps the draft as the next one's beginning.
    void exportSheetNext(const ExportDraft& draft);
    /// Runs a draft; the folder becomes the first of those that are remembered. Returns whether it began.
    bool startExport(const ExportDraft& draft, const Path& folder, Done done = {});
    /// Ends the run after the file in hand.
    void stop();

    /// Pixels of a frame's file and of its copy for sharing, for a dialogue; absent where they can't be told.
    std::optional<Size> outputSize(double scale, const Frame& frame) const;
    std::optional<Size> socialSize(std::int64_t px, const Frame& frame) const;

    bool isExporting() const { return task_.has_value(); }
    const std::optional<ExportTask>& task() const { return task_; }
    /// The line of the frame in hand, or of the one that was written last.
    const std::string& exportProgress() const { return progress_; }

private:
    struct Shared;

    /// What the desktop is told of the end.
    struct Farewell {
        Path folder;
        bool reveals = false, isSingle = false;
    };

    bool run(const ExportDraft& draft, const Path& folder, Done done);
    ExportRun::Events events();
    void askExportExists(const ExportClash& clash);
    void took(const ExportedFrame& one, std::size_t n);
    void ended(ExportReport report, const Farewell& farewell, const Done& done);
    /// Whoever shows the run: what is under way has changed.
    void changed();
    void updateDockProgress() const;
    void notifyExportFinished(const ExportReport& report, const Farewell& farewell) const;

    AppModel& model_;
    Stats stats_;
    Lights lights_;
    std::optional<ExportTask> task_;
    std::string progress_;
    std::shared_ptr<Shared> shared_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    Background background_; // last: joined before the rest goes
};

} // namespace tamlo
