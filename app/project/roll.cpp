#include "app/project/roll.h"

#include <algorithm>

namespace tamlo {

void Roll::append(Frame frame)
{
    frames_.push_back(std::make_shared<const Frame>(std::move(frame)));
}

Frame& Roll::edit(std::size_t i)
{
    auto own = std::make_shared<Frame>(*frames_[i]);
    Frame& frame = *own;
    frames_[i] = std::move(own);
    return frame;
}

void Roll::arrange(const std::vector<std::size_t>& places)
{
    std::vector<FrameRef> ordered;
    ordered.reserve(places.size());
    for (const std::size_t place : places) ordered.push_back(frames_[place]);
    frames_ = std::move(ordered);
}

std::optional<std::size_t> Roll::find(const FrameID& id) const
{
    const auto found =
        std::find_if(frames_.begin(), frames_.end(), [&](const FrameRef& frame) { return frame->id == id; });
    if (found == frames_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - frames_.begin());
}

std::unordered_map<FrameID, std::size_t> Roll::places() const
{
    std::unordered_map<FrameID, std::size_t> out;
    out.reserve(frames_.size());
    for (std::size_t i = 0; i < frames_.size(); ++i) out.emplace(frames_[i]->id, i);
    return out;
}

bool operator==(const Roll& a, const Roll& b)
{
    return std::equal(a.frames_.begin(), a.frames_.end(), b.frames_.begin(), b.frames_.end(),
                      [](const FrameRef& x, const FrameRef& y) { return x == y || *x == *y; });
}

} // namespace tamlo
