#include "app/shell/crop_source.h"

#include "app/shell/app_model.h"
#include "app/shell/live_views.h"

namespace tamlo {

CropSource::CropSource(const AppModel& model, LiveViews& views, std::function<void()> changed)
    : model_(model), views_(views), changed_(std::move(changed))
{}

void CropSource::refresh()
{
    const FrameRef frame = model_.selection.currentFrame();
    const bool isThere = frame && frame_ == frame->id && orient_ == frame->orient;
    if (isThere) return;
    frame_.reset();
    image_.reset();
    const auto source = frame ? views_.previews().frames.source(frame->id) : nullptr;
    if (!source) return changed_();
    frame_ = frame->id;
    orient_ = frame->orient;
    KeyedRenderer::Request request;
    request.image = source->proxy;
    request.gain = originalGain(source->stats);
    request.original = {std::nullopt, frame->orient.rot * 90, frame->orient.mirror};
    views_.previews().renderer.submit(
        "orig:crop", std::move(request),
        [this, id = frame->id, isAlive = std::weak_ptr(alive_)](KeyedRenderer::Outcome outcome) {
            if (isAlive.expired() || frame_ != id) return;
            if (const auto* output = std::get_if<KeyedRenderer::Output>(&outcome))
                image_ = output->image;
            else
                frame_.reset(); // superseded: asked for again
            changed_();
        });
}

} // namespace tamlo
