// tamlo project sheet: the contact sheet of a roll, as a PDF, a picture of one page or an HTML page.

#include "app/export/export_report.h"
#include "app/export/photographs.h"
#include "cli/export_lines.h"
#include "cli/interrupted.h"
#include "cli/messages.h"
#include "cli/progress.h"
#include "cli/project.h"
#include "cli/roll_look.h"
#include "cli/usage_error.h"
#include "platform/console.h"

#include <nlohmann/json.hpp>

#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using nlohmann::ordered_json;

class SheetRun {
public:
    SheetRun(const ProjectSheetArguments& arguments, std::ostream& results)
        : arguments_(arguments),
          results_(results),
          target_(fs::absolute(arguments.output).lexically_normal()),
          progress_(1, !platform::errorIsTerminal())
    {}

    int run()
    {
        // No grid is looked at: tiles that stand are not read into memory, those that are missing are made.
        look_.views.tiles().setShowsGrid(false);
        look_.views.tiles().setShowsOriginals(arguments_.originals);
        look_.open(rollPath(arguments_.roll));
        look_.views.tiles().setShowsGrid(true);
        check();
        const Subscription hears =
            look_.model.subscribe({Concern::exporting}, [this](const ChangeSet&) { tellProgress(); });
        progress_.beginPicture(arguments_.output.string());
        std::optional<Sheets::End> end;
        look_.model.sheets.exportSheet(target_, {arguments_.cols, false, arguments_.page},
                                       [&](Sheets::End ended) { end = ended; });
        if (!look_.loop.runUntil([&] { return end.has_value(); })) throw Interrupted();
        progress_.clear();
        return finish(*end);
    }

private:
    using Clock = ExportLines::Clock;

    /// What can be found out before any work.
    void check() const
    {
        if (!SheetExporter::isSheetName(target_)) throw UsageError(T("cli.sheet.badName"));
        std::error_code problem;
        if (!fs::is_directory(target_.parent_path(), problem))
            throw UsageError(T("export.noFolder", {{"folder", target_.parent_path().string()}}));
        if (Photographs(look_.model.project().frames).contains(target_))
            throw UsageError(T("export.overPhotograph", {{"file", arguments_.output.string()}}));
        const std::size_t pages = plan().pages();
        if (pages == 0) throw UsageError(T("cli.sheet.empty"));
        if (arguments_.page && (*arguments_.page < 1 || *arguments_.page > pages))
            throw UsageError(T("cli.sheet.noPage", {{"page", *arguments_.page}, {"pages", pages}}));
    }

    SheetPlan plan() const { return look_.model.sheets.plan(arguments_.cols); }

    void tellProgress()
    {
        const Sheets& sheets = look_.model.sheets;
        if (!sheets.isBusy()) return;
        progress_.phase(sheets.isExportingSheet() ? sheets.exportProgress() : look_.model.status(),
                        sheets.fraction());
    }

    /// Names of frames whose cell had to stay empty.
    std::vector<std::string> empty() const
    {
        std::vector<std::string> names;
        for (const FrameID& id : look_.model.sheets.emptyCells())
            if (const FrameRef frame = look_.model.project().frame(id)) names.push_back(frame->fileName());
        return names;
    }

    int finish(Sheets::End end)
    {
        if (end == Sheets::End::cancelled) throw Interrupted();
        if (end == Sheets::End::failed) throw std::runtime_error(look_.model.status());
        const std::vector<std::string> missing = empty();
        if (arguments_.json)
            tellJson(missing);
        else
            results_ << arguments_.output.string() << std::endl;
        tell(look_.model.status());
        if (!missing.empty()) tellNote(T("cli.sheet.emptyCells", {{"files", firstNames(missing)}}));
        return missing.empty() ? 0 : 1;
    }

    void tellJson(const std::vector<std::string>& missing)
    {
        const SheetPlan whole = plan();
        const ordered_json line{{"event", "done"},
                                {"file", arguments_.output.string()},
                                {"frames", whole.cells.size()},
                                {"pages", arguments_.page ? 1 : whole.pages()},
                                {"empty", missing},
                                {"seconds", roundedSeconds(Clock::now() - start_)}};
        results_ << line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << std::endl;
    }

    const ProjectSheetArguments& arguments_;
    std::ostream& results_;
    fs::path target_;
    Progress progress_;
    RollLook look_{ProfileStore::shared()};
    Clock::time_point start_ = Clock::now();
};

} // namespace

int run(const ProjectSheetArguments& arguments, std::ostream& results)
{
    return SheetRun(arguments, results).run();
}

} // namespace tamlo::cli
