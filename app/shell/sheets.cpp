#include "app/shell/sheets.h"

#include "app/export/photographs.h"
#include "app/preview/program_build.h"
#include "app/shell/app_model.h"
#include "core/image/tamlo_error.h"
#include "core/io/output_metadata.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"
#include "platform/work_arena.h"

#include <utility>

namespace tamlo {
namespace {

constexpr const char *kLastCols = "lastSheetCols", *kReveal = "lastExportReveal";
constexpr double kRetrySeconds = 0.3;
/// Without a new tile, about a minute.
constexpr int kMostTries = 200;

} // namespace

Sheets::Sheets(AppModel& model) : model_(model), background_(model.seams().loop, "tamlo.sheet")
{}

Sheets::~Sheets()
{
    alive_.reset();
    *cancels_ = true;
}

Sheets::Panel Sheets::exportSheetPanel() const
{
    const platform::Preferences& preferences = model_.seams().preferences;
    const double stored = preferences.number(kLastCols).value_or(0);
    const int cols = stored >= 1 && stored < SheetExporter::kMostCols ? static_cast<int>(stored)
                                                                      : SheetExporter::kMostCols;
    return {SheetExporter::defaultName(model_.project()), cols, preferences.flag(kReveal).value_or(false)};
}

SheetPlan Sheets::plan(int cols) const
{
    return SheetExporter::plan(model_.project(), cols, model_.seams().views.showsOriginals(),
                               model_.seams().loop.date());
}

std::string Sheets::note(int cols) const
{
    return SheetExporter::note(model_.project().visibleFrames().size(), cols);
}

bool Sheets::exportSheet(const Path& url, const Choices& choices, Done done)
{
    if (isBusy()) return false;
    model_.beginAction();
    try {
        model_.seams().preferences.setNumber(kLastCols, choices.cols);
        model_.seams().preferences.setFlag(kReveal, choices.reveal);
    } catch (const platform::PlatformError&) {
        // The next dialogue begins as this one did.
    }
    cancels_ = std::make_shared<std::atomic<bool>>(false);
    task_ = Task{url, choices, std::move(done)};
    proceed();
    return true;
}

void Sheets::cancel()
{
    if (!task_) return;
    *cancels_ = true;
    if (task_->isDrawing) return; // told when the thread has ended
    model_.tell(T("sheet.cancelled"));
    end(End::cancelled);
}

std::size_t Sheets::missingTiles(const SheetPlan& plan, bool asks, Readers& readers) const
{
    using State = FrameViews::SheetTile::State;
    FrameViews& views = model_.seams().views;
    std::vector<FrameID> wanted;
    for (const SheetPlan::Cell& cell : plan.cells) {
        const FrameID& id = cell.frame->id;
        FrameViews::SheetTile tile = views.sheetTile(id);
        if (tile.state == State::ready)
            readers[id] = std::move(tile.read);
        else if (hasOriginal(model_.linker.state(id)) && (asks || tile.state == State::coming))
            wanted.push_back(id);
    }
    if (!asks || wanted.empty()) return wanted.size();
    views.renderThumbs(wanted);
    return missingTiles(plan, false, readers);
}

void Sheets::proceed()
{
    SheetPlan now = plan(task_->choices.cols);
    Readers readers;
    const bool asks = !std::exchange(task_->hasAsked, true);
    const std::size_t missing = missingTiles(now, asks, readers);
    task_->waited = missing < task_->missing ? 0 : task_->waited + 1;
    task_->missing = missing;
    if (missing == 0 || task_->waited > kMostTries) return draw(std::move(now), std::move(readers));
    model_.tell(T("export.sheet.tiles", {{"n", missing}}));
    model_.observers.note(Concern::exporting);
    retry_ = model_.seams().loop.after(kRetrySeconds, [this] { proceed(); });
}

void Sheets::draw(SheetPlan plan, Readers readers)
{
    const std::size_t pages = plan.pages();
    if (pages == 0) {
        model_.tellFailure(T("sheet.failed"));
        return end(End::failed);
    }
    task_->isDrawing = true;
    began(1, pages);
    SheetExporter::Order order{std::move(plan), task_->url, task_->choices.page,
                               OutputMetadata::softwareName(programBuild())};
    SheetExporter::Events events;
    events.cancelled = [cancels = cancels_] { return cancels->load(); };
    events.page = [this, &loop = model_.seams().loop,
                   alive = std::weak_ptr<bool>(alive_)](std::size_t page, std::size_t total) {
        loop.post([this, alive, page, total] {
            if (!alive.expired() && isExportingSheet()) began(page, total);
        });
    };
    background_.run(
        [order = std::move(order), events, readers = std::move(readers),
         roll = model_.project().frames]() -> Drawn {
            Drawn drawn;
            const auto tileOf = [&](const Frame& frame) {
                const auto found = readers.find(frame.id);
                const auto tile = found == readers.end() ? nullptr : found->second();
                if (!tile) drawn.empty.push_back(frame.id);
                return tile;
            };
            try {
                if (Photographs(roll).contains(order.url))
                    throw TamloError::io(T("export.overPhotograph", {{"file", order.url.string()}}));
                platform::runIn(platform::WorkArena::background, [&] {
                    drawn.end =
                        SheetExporter::writeSheet(order, tileOf, events) ? End::written : End::cancelled;
                });
            } catch (const TamloError& error) {
                drawn.problem = ErrorWords::of(error);
            } catch (const std::exception&) {
                // A library failed, or there is no memory.
            }
            return drawn;
        },
        [this, pages](const Drawn& drawn) { ended(drawn, pages); });
}

void Sheets::began(std::size_t page, std::size_t pages)
{
    progress_ = T("export.sheet.page", {{"n", page}, {"total", pages}});
    fraction_ = static_cast<double>(page - 1) / static_cast<double>(pages);
    model_.observers.note(Concern::exporting);
}

void Sheets::ended(const Drawn& drawn, std::size_t pages)
{
    const Path url = task_->url;
    empty_ = drawn.empty;
    if (drawn.end == End::written) {
        const std::size_t written = task_->choices.page ? 1 : pages;
        model_.tell(
            T("sheet.written", {{"file", url.filename().string()},
                                {"pages", Loc::string("sheet.pages", static_cast<std::int64_t>(written))},
                                {"cols", SheetExporter::layout(task_->choices.cols).cols}}));
        if (task_->choices.reveal && model_.seams().desktop) model_.seams().desktop->reveal({url});
    } else if (drawn.end == End::cancelled) {
        model_.tell(T("sheet.cancelled"));
    } else {
        model_.tellFailure(drawn.problem.empty() ? T("sheet.failed")
                                                 : T("sheet.writeFailed", {{"error", drawn.problem}}));
    }
    end(drawn.end);
}

void Sheets::end(End end)
{
    const Done done = std::move(task_->done);
    retry_.cancel();
    task_.reset();
    progress_.clear();
    fraction_ = 0;
    model_.observers.note(Concern::exporting);
    if (done) done(end);
}

} // namespace tamlo
