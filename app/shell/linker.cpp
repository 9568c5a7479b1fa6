#include "app/shell/linker.h"

#include "app/project/file_search.h"
#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

namespace {

/// As many names as a status line holds.
constexpr std::size_t kNamesTold = 3;

/// A look at both clocks is taken this often.
constexpr double kAwakeSeconds = 60;

} // namespace

Linker::Linker(AppModel& model)
    : model_(model),
      background_(model.seams().loop, "tamlo.files", platform::Niceness::utility),
      reading_(model.seams().loop, "tamlo.samples", platform::Niceness::utility)
{}

Linker::~Linker()
{
    ++*epoch_; // what is being read needs not be waited for
}

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
    model_.observers.note(Concern::fileStates);
}

void Linker::clear()
{
    ++*epoch_;
    states_.clear();
    ++fileStateGen_;
    model_.observers.note(Concern::fileStates);
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

std::vector<FrameRef> Linker::framesAt(const FrameIDs& ids) const
{
    std::vector<FrameRef> out;
    for (const FrameID& id : ids) out.push_back(model_.project().frame(id));
    return out;
}

std::function<bool()> Linker::stillWanted() const
{
    return [epoch = epoch_, mine = epoch_->load()] { return *epoch == mine; };
}

void Linker::prepare(const FrameID& id, FileResolver::Look look)
{
    const auto place = model_.project().frames.find(id);
    if (!place) return;
    take(*place, FileResolver::resolve(model_.project().frames[*place], projectFolder(),
                                       model_.seams().volumes, look));
}

void Linker::take(std::size_t place, const FileResolver::Resolution& found)
{
    const Frame& frame = model_.project().frames[place];
    setFileState(frame.id, found.state);
    if (found.url == frame.url && !found.renewed) return;
    model_.amendProject([&](Project& project) {
        Frame& changed = project.frames.edit(place);
        changed.url = found.url;
        if (found.renewed) changed.fingerprint = found.renewed;
    });
}

void Linker::begin()
{
    clear();
    // A session that keeps watch shows its list first and reads afterwards.
    const auto look = keepsWatch_ ? FileResolver::Look::glance : FileResolver::Look::quick;
    for (std::size_t place = 0; place < model_.project().frames.size(); ++place)
        take(place, FileResolver::resolve(model_.project().frames[place], projectFolder(),
                                          model_.seams().volumes, look));
    if (!keepsWatch_) return;
    fillMissingFileFields();
    examineAll();
}

void Linker::keepWatch()
{
    keepsWatch_ = true;
    platform::MainLoop& loop = model_.seams().loop;
    volumeWatch_ = model_.seams().volumes.watch(loop, [this] { recheckLostFrames(); });
    awakeNow_ = loop.now();
    awakeDate_ = loop.date();
    sleepTimer_ = loop.every(kAwakeSeconds, [this] { recheckAfterSleep(); });
}

/// While the machine sleeps the wall clock runs on and the other one stands.
void Linker::recheckAfterSleep()
{
    const double now = model_.seams().loop.now(), date = model_.seams().loop.date();
    const double slept = (date - awakeDate_) - (now - awakeNow_);
    awakeNow_ = now;
    awakeDate_ = date;
    if (slept > kAwakeSeconds / 2) recheckLostFrames();
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
    reading_.run(
        [present = framesAt(framesOf(hasOriginal)), folder = projectFolder(), wanted = stillWanted()] {
            Files out;
            for (const FrameRef& frame : present)
                if (auto fields = wanted() ? missingFileFields(*frame, folder) : std::nullopt)
                    out.emplace_back(frame->id, *fields);
            return out;
        },
        [this, wanted = stillWanted(), done = std::move(done)](Files files) {
            if (!wanted()) return;
            model_.amendProject([&](Project& project) {
                const auto places = project.frames.places();
                for (const auto& [id, fields] : files)
                    if (const auto place = places.find(id); place != places.end())
                        fillFileFields(project.frames.edit(place->second), fields);
            });
            if (done) done();
        });
}

void Linker::examineAll(std::function<void()> done)
{
    using Found = std::vector<std::pair<FrameRef, FileResolver::Resolution>>;
    reading_.run(
        [present = framesAt(framesOf([](FileState state) { return state != FileState::unreadable; })),
         folder = projectFolder(), &volumes = model_.seams().volumes, wanted = stillWanted()] {
            Found out;
            for (const FrameRef& frame : present)
                if (wanted() && frame->fingerprint)
                    out.emplace_back(
                        frame, FileResolver::resolve(*frame, folder, volumes, FileResolver::Look::thorough));
            return out;
        },
        [this, wanted = stillWanted(), done = std::move(done)](Found found) {
            if (!wanted()) return;
            const auto places = model_.project().frames.places();
            for (const auto& [frame, resolution] : found) {
                const auto place = places.find(frame->id);
                if (place == places.end()) continue;
                const Frame& present = model_.project().frames[place->second];
                const bool isTheSame = present.url == frame->url && present.fingerprint == frame->fingerprint;
                if (isTheSame) take(place->second, resolution); // else linked or found meanwhile
            }
            if (done) done();
        });
}

void Linker::linkFile(const FrameID& id, const Path& file, bool confirm,
                      std::function<void(std::size_t)> done)
{
    const FrameRef frame = model_.project().frame(id);
    if (!frame) return;
    const FileFields fields = FileFields::read(file, projectFolder());
    const auto linkIt = [this, id, fields, done = std::move(done)] {
        linkNow({{id, fields}});
        offerNearby(Path(fields.url).parent_path(), done);
    };
    const bool isOther =
        frame->fingerprint && !(fields.fingerprint && fields.fingerprint->sameContent(*frame->fingerprint));
    if (!confirm || !isOther) return linkIt();
    const QuestionText text{T("link.otherFileTitle"),
                            T("link.otherFileNote", {{"label", model_.project().label(id)}})};
    model_.seams().questions.otherFile(text, Answer<bool>([linkIt](std::optional<bool> yes) {
                                           if (yes.value_or(false)) linkIt();
                                       }));
}

void Linker::offerNearby(const Path& folder, std::function<void(std::size_t)> done)
{
    matchesIn(folder, [this, done = std::move(done)](const Files& files) {
        if (!files.empty()) {
            const QuestionText text{T("link.foundNearby", {{"n", files.size()}}), {}};
            model_.seams().questions.linkNearby(text, Answer<bool>([this, files](std::optional<bool> yes) {
                                                    if (yes.value_or(false)) linkNow(files);
                                                }));
        }
        if (done) done(files.size());
    });
}

void Linker::linkNow(const Files& files)
{
    std::unordered_map<FrameID, const FileFields*> fieldsOf;
    FrameIDs ids;
    for (const auto& [id, fields] : files) {
        if (!model_.project().frame(id)) continue; // removed meanwhile
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
    model_.tell(T("link.linked", {{"n", ids.size()}}));
}

void Linker::matchesIn(const Path& folder, std::function<void(Files)> take)
{
    background_.run(
        [folder, lost = framesAt(lostFrames()), roll = model_.project().frames, base = projectFolder()] {
            Files out;
            for (const auto& [id, file] : FileSearch::matches(folder, lost, roll))
                out.emplace_back(id, FileFields::read(file, base));
            return out;
        },
        [wanted = stillWanted(), take = std::move(take)](Files files) {
            if (wanted()) take(std::move(files));
        });
}

void Linker::findFolder(const Path& folder, std::function<void(std::size_t)> done)
{
    model_.tell(T("link.searching", {{"folder", folder.filename().string()}}));
    matchesIn(folder, [this, done = std::move(done)](const Files& files) {
        if (!files.empty()) linkNow(files);
        std::vector<std::string> missing;
        for (const FrameRef& frame : framesAt(lostFrames())) missing.push_back(frame->fileName());
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
