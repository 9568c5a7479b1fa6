// Sheets: contact sheets of the visible frames. Tiles that are still being made are waited for, without
// holding anything up; then the pages are drawn on a thread of their own from a copy of all they need.
//
// A dialogue begins with exportSheetPanel(), tells note(cols) beside the choice, and calls exportSheet();
// what is under way is told as Concern::exporting. A preview of a page is SheetExporter::pageImage of
// plan(cols) with whatever tiles are there, on any thread.
#pragma once

#include "app/export/sheet_file.h"
#include "app/shell/background.h"
#include "app/shell/frame_views.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tamlo {

class AppModel;

class Sheets {
public:
    using Path = std::filesystem::path;

    enum class End { written, cancelled, failed };
    using Done = std::function<void(End)>;

    /// What a dialogue begins with.
    struct Panel {
        std::string fileName; ///< "Berlin_contact.pdf"
        int cols = SheetExporter::kMostCols;
        bool reveal = false; ///< the file is shown afterwards
    };
    /// What a user may ask for beside a PDF of everything.
    struct Choices {
        int cols = SheetExporter::kMostCols;
        bool reveal = false;
        std::optional<std::size_t> page; ///< only this one, from 1
    };

    explicit Sheets(AppModel& model);
    ~Sheets();

    Panel exportSheetPanel() const;
    /// The sheet as it would be now.
    SheetPlan plan(int cols) const;
    /// "198 frames · 42 per page · 5 pages".
    std::string note(int cols) const;

    /// Writes the sheet of the visible frames: a PDF, or by its extension a picture of one page or an HTML
    /// page. Returns false, and does nothing, while another is under way.
    bool exportSheet(const Path& url, const Choices& choices, Done done = {});
    void cancel();
    /// The project is left: what was waited for does not come any more.
    void leave()
    {
        if (!isExportingSheet()) cancel();
    }

    /// Waiting for tiles, or drawing.
    bool isBusy() const { return task_.has_value(); }
    /// Drawing.
    bool isExportingSheet() const { return task_ && task_->isDrawing; }
    /// The page in hand; empty while tiles are waited for, of which the status line tells.
    const std::string& exportProgress() const { return progress_; }
    /// Of the pages, 0 to 1.
    double fraction() const { return fraction_; }
    /// Frames of the last sheet for which there was no tile.
    const std::vector<FrameID>& emptyCells() const { return empty_; }

private:
    struct Task {
        Path url;
        Choices choices;
        Done done;
        bool hasAsked = false;   ///< for the tiles that are missing
        int waited = 0;          ///< tries since the last new tile
        std::size_t missing = 0; ///< tiles, at the last try
        bool isDrawing = false;
    };
    using Readers = std::unordered_map<FrameID, FrameViews::SheetTile::Read>;
    struct Drawn {
        End end = End::failed;
        std::string problem; ///< what kept it from being written
        std::vector<FrameID> empty;
    };

    void proceed();
    /// Tiles that are still to come, and can; all others' readers go into `readers`.
    std::size_t missingTiles(const SheetPlan& plan, bool asks, Readers& readers) const;
    void draw(SheetPlan plan, Readers readers);
    void began(std::size_t page, std::size_t pages);
    void ended(const Drawn& drawn, std::size_t pages);
    void end(End end);

    AppModel& model_;
    std::optional<Task> task_;
    std::string progress_;
    double fraction_ = 0;
    std::vector<FrameID> empty_;
    platform::Timer retry_;
    std::shared_ptr<std::atomic<bool>> cancels_ = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    Background background_; // last: joined before the rest goes
};

} // namespace tamlo
