#include "app/shell/importer.h"

#include "app/project/roll_order.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

Importer::Importer(AppModel& model)
    : model_(model), background_(model.seams().loop, "tamlo.import", platform::Niceness::utility)
{}

void Importer::addFiles(std::vector<std::string> files, Done done)
{
    model_.tell(T(files.size() == 1 ? "import.scanningOne" : "import.scanningMany"));
    background_.run(
        [files = std::move(files)] { return Intake::gather(files); },
        [this, done = std::move(done)](Intake::Gathered gathered) {
            const std::size_t pairs = FolderScan::pairCount(gathered.files);
            if (pairs == 0) return ingest(std::move(gathered), std::nullopt, done);
            const QuestionText text{T("import.pairsTitle", {{"n", pairs}}), T("import.pairsNote")};
            model_.seams().questions.pairs(
                text, Answer<FolderScan::PairChoice>(
                          [this, gathered, done](std::optional<FolderScan::PairChoice> choice) {
                              if (choice)
                                  ingest(gathered, choice, done);
                              else if (done)
                                  done(std::nullopt);
                          }));
        });
}

void Importer::ingest(Intake::Gathered gathered, std::optional<FolderScan::PairChoice> choice, Done done)
{
    Outcome outcome;
    if (choice) {
        outcome.report.pairs = FolderScan::pairCount(gathered.files);
        outcome.report.choice = *choice;
        gathered.files = FolderScan::resolve(std::move(gathered.files), *choice);
    }
    outcome.report.refused = gathered.refusedCount();
    outcome.report.limitHit = gathered.limitHit;
    outcome.refused = std::move(gathered.refused);
    outcome.missing = std::move(gathered.missing);
    model_.tell(T("import.fingerprints", {{"n", gathered.files.size()}}));
    background_.run(
        [files = std::move(gathered.files), roll = model_.project().frames,
         folder = model_.projectURL() ? model_.projectURL()->parent_path() : std::filesystem::path(),
         count = filesRead_] {
            auto ingested = Intake::ingest(files, roll, folder, [&](std::size_t n) { *count = n; });
            *count = 0;
            return ingested;
        },
        [this, outcome = std::move(outcome), done = std::move(done)](Intake::Ingested ingested) mutable {
            outcome.report.added = ingested.frames.size();
            outcome.report.already = ingested.already;
            append(std::move(ingested.frames));
            model_.tell(Intake::reportText(outcome.report));
            if (done) done(std::move(outcome));
        });
}

void Importer::append(std::vector<Frame> frames)
{
    if (frames.empty()) return;
    const std::string count = Loc::string("project.frames", static_cast<std::int64_t>(frames.size()));
    std::vector<FrameID> ids;
    for (const Frame& frame : frames) ids.push_back(frame.id);
    model_.editProject({T("undo.import", {{"frames", count}})}, [&](Project& project) {
        for (Frame& frame : frames) project.frames.append(std::move(frame));
        project.frames.arrange(orderedPlaces(project.frames, project.sortMode));
    });
    for (const FrameID& id : ids) model_.linker.setFileState(id, FileState::ok);
    model_.selection.normalize();
    model_.seams().views.renderThumbs(ids);
}

} // namespace tamlo
