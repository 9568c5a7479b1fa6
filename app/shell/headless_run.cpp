#include "app/shell/headless_run.h"

#include "app/export/sheet_file.h"
#include "app/preview/program_build.h"
#include "app/project/process_rules.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_writer.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"

namespace tamlo {
namespace {

constexpr double kPollSeconds = 0.1;
constexpr int kMostTicks = 1800;
/// The window of a session that has none; it decides which tier comes between the proxy and the master.
constexpr Size kFit{1600, 1000};

/// It is not made: the path may be a mistake.
void needFolder(const std::filesystem::path& file)
{
    std::error_code problem;
    if (file.has_parent_path() && !std::filesystem::is_directory(file.parent_path(), problem))
        throw TamloError::io("no folder to write to");
}

} // namespace

HeadlessRun::HeadlessRun(Application& application, platform::MainLoop& loop, std::function<void(Result)> done)
    : application_(application), loop_(loop), done_(std::move(done))
{}

void HeadlessRun::runSmokeTest(const std::filesystem::path& input, const std::filesystem::path& output,
                               std::optional<std::filesystem::path> sheet)
{
    output_ = output;
    sheet_ = std::move(sheet);
    AppModel& model = application_.model();
    application_.views().screen().setFit(kFit, 1);
    model.importer.addFiles({input.string()}, [this, &model](std::optional<Importer::Outcome> outcome) {
        isImporting_ = false;
        if (outcome && !outcome->missing.empty())
            model.tellFailure(T("cli.noFile", {{"file", outcome->missing.front()}}));
        const auto visible = model.selection.visibleIDs();
        if (visible.empty()) return fail(); // refused, or nothing there
        model.selection.openFrame(visible.front());
    });
    timer_ = loop_.every(kPollSeconds, [this] { poll(); });
}

bool HeadlessRun::isReady()
{
    LiveViews& views = application_.views();
    return !isImporting_ && views.screen().image() && views.isSettled();
}

void HeadlessRun::poll()
{
    if (!done_) return;
    if (application_.model().lastActionFailed() || ++ticks_ > kMostTicks) return fail();
    if (isReady()) finish();
}

void HeadlessRun::finish()
{
    AppModel& model = application_.model();
    LiveViews& views = application_.views();
    const Roll& roll = model.project().frames;
    std::string outcome = "ok";
    try {
        needFolder(output_);
        ImageWriter::save(*views.screen().image(), output_.string(), 0, std::nullopt);
        if (sheet_) writeSheet();
    } catch (const TamloError&) {
        outcome = "failed";
    } catch (const platform::PlatformError&) {
        outcome = "failed"; // what draws the sheet
    }
    const std::string source = roll.empty() ? "" : views.loads().sourceInfo(roll[0].id);
    end({"smoke " + outcome + ": " + std::to_string(roll.size()) + " frame(s) · " + source + " · " +
             views.screen().info() + " · " + model.status(),
         outcome == "ok" ? 0 : 1});
}

void HeadlessRun::writeSheet()
{
    constexpr double kPixelsPerPoint = 2, kQuality = 0.92;
    constexpr std::size_t kFramesForMarks = 3;
    needFolder(*sheet_);
    AppModel& model = application_.model();
    Project shown = model.project();
    if (shown.frames.size() >= kFramesForMarks) {
        shown.frames.edit(0).mark = Mark::selected;
        shown.frames.edit(1).mark = Mark::rejected;
    }
    SheetPlan plan = SheetExporter::plan(shown, SheetExporter::kMostCols, false, loop_.date());
    const Shared<ProcessSettings>& process = shown.frames[0].process;
    plan.summary = summary(process ? *process : ProcessSettings::fresh(), model.store());
    const auto tileOf = [this](const Frame& frame) { return application_.views().tiles().tile(frame.id); };
    SheetExporter::write(SheetExporter::pageImage(plan, 1, kPixelsPerPoint, tileOf), *sheet_, kQuality,
                         OutputMetadata::softwareName(programBuild()));
}

void HeadlessRun::fail()
{
    end({"smoke failed: " + application_.model().status(), 1});
}

void HeadlessRun::end(Result result)
{
    timer_.cancel();
    if (const auto done = std::exchange(done_, nullptr)) done(std::move(result));
}

} // namespace tamlo
