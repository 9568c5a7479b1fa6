#include "app/shell/saver.h"

#include "app/project/file_fields.h"
#include "app/project/file_resolver.h"
#include "app/project/whole_file.h"
#include "app/shell/app_model.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/decode_error.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"

namespace tamlo {

namespace {

constexpr double kAutosaveSeconds = 60;

std::string framesText(const Project& project)
{
    return Loc::string("project.frames", static_cast<std::int64_t>(project.frames.size()));
}

} // namespace

Saver::Saver(AppModel& model) : model_(model), background_(model.seams().loop, "tamlo.save")
{}

bool Saver::open(const Path& url, Access access)
{
    model_.beginAction();
    // A project that is opened again is held already, and stays held if that fails.
    const bool isHeld = file_ && file_->url() == FileResolver::standardised(url);
    std::shared_ptr<ProjectFile> file;
    std::optional<Project> project;
    try {
        if (access == Access::write) file = isHeld ? file_ : std::make_shared<ProjectFile>(url);
        project = Project::decode(file ? file->read() : readWhole(url), model_.store());
    } catch (const TamloError& error) {
        model_.tellFailure(T("project.openFailed", {{"error", ErrorWords::of(error)}}));
    } catch (const DecodeError& error) {
        model_.tellFailure(T("project.openFailed", {{"error", url.string() + ": " + error.what()}}));
    }
    if (!project) {
        changedOnDisk_ = changedOnDisk_ || isHeld;
        return false;
    }
    adopt(std::move(*project), url);
    file_ = std::move(file);
    saved_ = model_.project();
    if (file_) model_.recents.registerOpenedProject();
    model_.tell(T("project.opened", {{"frames", framesText(model_.project())}}));
    return true;
}

void Saver::adopt(Project project, std::optional<Path> url)
{
    model_.recents.registerClosedProject();
    file_.reset();
    saved_.reset();
    changedOnDisk_ = false;
    model_.adopt(std::move(project), std::move(url));
}

bool Saver::restore(const ProjectBackups::Item& item)
{
    std::optional<Project> project;
    try {
        project = ProjectBackups::restored(item, model_.store());
    } catch (const TamloError& error) {
        model_.tellFailure(ErrorWords::of(error));
        return false;
    }
    adopt(std::move(*project));
    model_.tell(T("project.backupOpened", {{"name", model_.project().name}}));
    return true;
}

bool Saver::hasChanges() const
{
    return !saved_ || !(*saved_ == model_.project());
}

std::shared_ptr<ProjectFile> Saver::fileFor(const Path& to) const
{
    return file_ && model_.projectURL() == to ? file_ : nullptr;
}

Saver::Ended Saver::written(Project project, std::shared_ptr<ProjectFile> file, const Path& to, Over over,
                            double date)
{
    Ended ended{std::move(project), std::move(file), false, std::nullopt};
    try {
        if (!ended.file) ended.file = std::make_shared<ProjectFile>(to);
        ended.changedOnDisk =
            ended.file->write(ended.project.encoded(), date, over) == ProjectFile::Written::changedOnDisk;
        if (ended.changedOnDisk) ended.problem = T("project.changedOnDisk");
    } catch (const TamloError& error) {
        ended.problem = T("project.saveFailed", {{"error", ErrorWords::of(error)}});
    }
    return ended;
}

void Saver::saveProject(const Path& to, Done done, Over over)
{
    model_.beginAction();
    enqueue({to, std::move(done), over});
}

void Saver::enqueue(Waiting save)
{
    waiting_.push_back(std::move(save));
    if (waiting_.size() == 1) beginNext();
}

void Saver::beginNext()
{
    const Path to = waiting_.front().to;
    Project project = model_.project();
    const bool isMoved = !model_.projectURL() || model_.projectURL()->parent_path() != to.parent_path();
    if (isMoved) renewRelPaths(project.frames, to.parent_path());
    background_.run([project = std::move(project), file = fileFor(to), to, over = waiting_.front().over,
                     date = model_.seams().loop.date()] { return written(project, file, to, over, date); },
                    [this](Ended ended) { finish(std::move(ended)); });
}

void Saver::finish(Ended ended)
{
    const Waiting save = std::move(waiting_.front());
    waiting_.pop_front();
    const bool isOpenOne = model_.projectURL() == save.to;
    if (ended.problem) {
        changedOnDisk_ = changedOnDisk_ || (isOpenOne && ended.changedOnDisk);
        model_.tellFailure(*ended.problem);
    } else {
        changedOnDisk_ = false;
        const bool isNew = !isOpenOne || !file_;
        file_ = std::move(ended.file);
        saved_ = std::move(ended.project);
        if (!isOpenOne)
            model_.amendProject(
                [&](Project& project) { renewRelPaths(project.frames, save.to.parent_path()); });
        model_.setProjectURL(save.to);
        isNew ? model_.recents.registerOpenedProject() : model_.recents.update();
    }
    if (!waiting_.empty()) beginNext();
    if (save.done) save.done(ended.problem);
}

void Saver::autosave()
{
    if (model_.projectURL() && waiting_.empty() && !changedOnDisk_ && hasChanges())
        enqueue({*model_.projectURL(), {}, Over::expected});
}

void Saver::startAutosave()
{
    autosaveTimer_ = model_.seams().loop.every(kAutosaveSeconds, [this] { autosave(); });
}

} // namespace tamlo
