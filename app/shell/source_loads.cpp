#include "app/shell/source_loads.h"

#include "app/shell/app_model.h"
#include "core/text/loc.h"

namespace tamlo {

SourceLoads::SourceLoads(Previews& previews, std::function<void(const FrameID&)> ended)
    : previews_(previews), ended_(std::move(ended))
{}

void SourceLoads::load(const FrameID& id)
{
    if (!model_->project().frame(id)) return;
    model_->linker.prepare(id);
    const FrameRef frame = model_->project().frame(id);
    const bool hasFile = hasOriginal(model_->linker.state(id));
    ++requests_[id];
    const auto completion = [this, id, hasFile, generation = generation_](FrameStore::Loaded loaded) {
        if (generation == generation_) finish(id, loaded, hasFile);
    };
    const WBMode wb = ProxyFile::wbOf(*frame);
    hasFile ? previews_.frames.load(frame, wb, completion)
            : previews_.frames.loadCachedProxy(frame, wb, completion);
}

bool SourceLoads::redecodeIfNeeded(const FrameID& id)
{
    const FrameRef frame = model_->project().frame(id);
    const FrameStore::SourceRef source = previews_.frames.source(id);
    if (!frame || !source || !source->isRAW || source->wb == ProxyFile::wbOf(*frame)) return false;
    if (!hasOriginal(model_->linker.state(id))) return false; // what there is has to do
    load(id);
    return true;
}

void SourceLoads::finish(const FrameID& id, const FrameStore::Loaded& loaded, bool hadOriginal)
{
    const auto request = requests_.find(id);
    if (request == requests_.end()) return;
    if (--request->second == 0) requests_.erase(request);
    const FrameRef frame = model_->project().frame(id);
    if (!frame) return;
    if (loaded.source) {
        shapes_[id] = shapeOf(*loaded.source);
        if (isOpening_ && requests_.empty() && failureCount_ == 0) {
            isOpening_ = false;
            const auto frames = static_cast<std::int64_t>(model_->project().frames.size());
            model_->tell(T("project.opened", {{"frames", Loc::string("project.frames", frames)}}));
        }
    } else if (loaded.problem && hadOriginal) {
        noteFailure(id, *loaded.problem);
    }
    ended_(id);
}

void SourceLoads::noteFailure(const FrameID& id, const std::string& problem)
{
    model_->linker.prepare(id);
    if (!hasOriginal(model_->linker.state(id))) return; // it went away meanwhile
    model_->linker.setFileState(id, FileState::unreadable);
    if (++failureCount_ == 1) failureText_ = problem;
    model_->tellFailure(problem);
}

std::string SourceLoads::sourceInfo(const FrameID& id) const
{
    const FrameRef frame = model_->project().frame(id);
    const auto found = shapes_.find(id);
    return frame && found != shapes_.end() ? found->second.info(frame->orient.rot, frame->crop) : "";
}

std::optional<SourceShape> SourceLoads::shape(const FrameID& id) const
{
    const auto found = shapes_.find(id);
    return found == shapes_.end() ? std::nullopt : std::optional(found->second);
}

void SourceLoads::forget(const FrameID& id)
{
    requests_.erase(id);
    shapes_.erase(id);
}

void SourceLoads::clear()
{
    ++generation_;
    requests_.clear();
    shapes_.clear();
    failureCount_ = 0;
    failureText_.clear();
    isOpening_ = true;
}

} // namespace tamlo
