// SourceLoads: the sources of frames on their way into memory, how many there are, and what went wrong with
// those that could not be read.
#pragma once

#include "app/shell/previews.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

namespace tamlo {

class AppModel;

class SourceLoads {
public:
    /// ended: told of each frame whose source has arrived, or can't be had.
    SourceLoads(Previews& previews, std::function<void(const FrameID&)> ended);

    void attach(AppModel& model) { model_ = &model; }

    /// Finds the frame's file and reads it, or what the cache has of it where the file is away. What is under
    /// way already is not begun twice.
    void load(const FrameID& id);
    /// Loads again a RAW source that was developed for another white balance. Returns whether it does.
    bool redecodeIfNeeded(const FrameID& id);
    void forget(const FrameID& id);
    void clear();

    std::size_t loadingCount() const { return requests_.size(); }
    bool isLoading(const FrameID& id) const { return requests_.contains(id); }
    /// "6000×4000 · RAW", as cut and turned now; empty where it is not known.
    std::string sourceInfo(const FrameID& id) const;
    std::optional<SourceShape> shape(const FrameID& id) const;
    std::size_t failureCount() const { return failureCount_; }
    const std::string& failureText() const { return failureText_; }

private:
    void finish(const FrameID& id, const FrameStore::Loaded& loaded, bool hadOriginal);
    void noteFailure(const FrameID& id, const std::string& problem);

    Previews& previews_;
    AppModel* model_ = nullptr;
    std::function<void(const FrameID&)> ended_;
    std::unordered_map<FrameID, int> requests_; ///< how many of a frame
    std::unordered_map<FrameID, SourceShape> shapes_;
    std::size_t failureCount_ = 0;
    std::string failureText_; ///< of the first
    bool isOpening_ = true;   ///< the project's first loads tell when they are through
    std::int64_t generation_ = 0;
};

} // namespace tamlo
