#include "app/shell/linker.h"

#include "app/project/file_resolver.h"
#include "app/project/file_search.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

namespace {

/// As many names as a status line holds.
constexpr std::size_t kNamesTold = 3;

} // namespace

Linker::Linker(AppModel& model)
    : model_(model), background_(model.seams().loop, "tamlo.files", platform::Niceness::utility)
{}

FileState Linker::state(const FrameID& id) const
{
    const auto found = states_.find(id);
    return found == states_.end() ? FileState::ok : found->second;
}

void Linker::setFileState(const FrameID& id, FileState state)
{
    const auto [entry, isNew] = states_.emplace(id, state);
    if (!isNew && entry->second == state) return;
    entry->second = state;
    ++fileStateGen_;
}

void Linker::clear()
{
    states_.clear();
    ++fileStateGen_;
}

Linker::FrameIDs Linker::framesOf(const std::function<bool(FileState)>& passes) const
{
    FrameIDs out;
    for (const Frame& frame : model_.project().frames)
        if (passes(state(frame.id))) out.push_back(frame.id);
    return out;
}

Linker::FrameIDs Linker::lostFrames() const
{
    return framesOf(canRelink);
}

Linker::Path Linker::projectFolder() const
{
    return model_.projectURL() ? model_.projectURL()->parent_path() : Path();
}

void Linker::prepare(const FrameID& id)
{
    const auto place = model_.project().frames.find(id);
    if (!place) return;
    const Frame& frame = model_.project().frames[*place];
    const auto found = FileResolver::resolve(frame, projectFolder(), model_.seams().volumes);
    setFileState(id, found.state);
    if (found.url == frame.url && !found.renewed) return;
    model_.amendProject([&](Project& project) {
        Frame& changed = project.frames.edit(*place);
        changed.url = found.url;
        if (found.renewed) changed.fingerprint = found.renewed;
    });
}

void Linker::prepareAll()
{
    FrameIDs ids;
    for (const Frame& frame : model_.project().frames) ids.push_back(frame.id);
    for (const FrameID& id : ids) prepare(id);
}

void Linker::recheckLostFrames()
{
    for (const FrameID& id : framesOf(needsAttention)) {
        prepare(id);
        model_.seams().views.load(id);
    }
}

void Linker::fillMissingFileFields(std::function<void()> done)
{
    std::vector<FrameRef> present;
    for (const FrameRef& frame : model_.project().frames.refs())
        if (hasOriginal(state(frame->id))) present.push_back(frame);
    background_.run(
        [present, folder = projectFolder()] {
            Files out;
            for (const FrameRef& frame : present)
                if (auto fields = missingFileFields(*frame, folder)) out.emplace_back(frame->id, *fields);
            return out;
        },
        [this, done = std::move(done)](Files files) {
            model_.amendProject([&](Project& project) {
                const auto places = project.frames.places();
                for (const auto& [id, fields] : files)
                    if (const auto place = places.find(id); place != places.end())
                        fillFileFields(project.frames.edit(place->second), fields);
            });
            if (done) done();
        });
}

void Linker::linkFile(const FrameID& id, const Path& file, bool confirm)
{
    const FrameRef frame = model_.project().frame(id);
    if (!frame) return;
    const FileFields fields = FileFields::read(file, projectFolder());
    const bool isOther =
        frame->fingerprint && !(fields.fingerprint && fields.fingerprint->sameContent(*frame->fingerprint));
    if (!confirm || !isOther) return linkNow({{id, fields}});
    const QuestionText text{T("link.otherFileTitle"),
                            T("link.otherFileNote", {{"label", model_.project().label(id)}})};
    model_.seams().questions.otherFile(text, Answer<bool>([this, id, fields](std::optional<bool> yes) {
                                           if (yes.value_or(false)) linkNow({{id, fields}});
                                       }));
}

void Linker::linkNow(const Files& files)
{
    std::unordered_map<FrameID, const FileFields*> fieldsOf;
    FrameIDs ids;
    for (const auto& [id, fields] : files) {
        fieldsOf[id] = &fields;
        ids.push_back(id);
    }
    History::Change step{T("undo.linkFile")};
    step.linksFiles = true;
    model_.editFrames(std::move(step), ids, [&](Frame& frame) { link(frame, *fieldsOf.at(frame.id)); });
    for (const FrameID& id : ids) {
        model_.seams().views.evict(id);
        setFileState(id, FileState::ok);
        model_.seams().views.load(id);
    }
}

void Linker::findFolder(const Path& folder, std::function<void(std::size_t)> done)
{
    std::vector<FrameRef> lost;
    for (const FrameID& id : lostFrames()) lost.push_back(model_.project().frame(id));
    model_.tell(T("link.searching", {{"folder", folder.filename().string()}}));
    background_.run(
        [folder, lost, roll = model_.project().frames, base = projectFolder()] {
            Files out;
            for (const auto& [id, file] : FileSearch::matches(folder, lost, roll))
                out.emplace_back(id, FileFields::read(file, base));
            return out;
        },
        [this, done = std::move(done)](Files files) {
            if (!files.empty()) linkNow(files);
            std::vector<std::string> missing;
            for (const FrameID& id : lostFrames()) missing.push_back(model_.project().frame(id)->fileName());
            tellFound(files.size(), missing);
            if (done) done(files.size());
        });
}

void Linker::tellFound(std::size_t found, const std::vector<std::string>& missing)
{
    if (found == 0) return model_.tell(T("link.nothingHere"));
    std::string text = T("link.found", {{"n", found}});
    if (!missing.empty()) {
        std::string names;
        for (std::size_t i = 0; i < std::min(missing.size(), kNamesTold); ++i)
            names += (i ? ", " : "") + missing[i];
        text += T("link.missing", {{"n", missing.size()}}) + T("link.missingNames", {{"names", names}});
    }
    model_.tell(text);
}

void Linker::removeLostFrames()
{
    model_.removal.remove(lostFrames(), false);
}

void Linker::removeUnreadableFrames()
{
    model_.removal.remove(framesOf([](FileState state) { return state == FileState::unreadable; }), false);
}

} // namespace tamlo
