// Observers: how a screen learns what has changed. Every room notes the concern that it may have changed;
// once a turn of the loop what is noted is held against what was told last, and whoever has subscribed is
// told what really differs. A value that came back to what it was is no change. Main thread only.
#pragma once

#include "app/project/project.h"
#include "app/shell/row_changes.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo {

class AppModel;

enum class Concern {
    document, ///< name, file, and what undo and redo would take back
    roll,     ///< which frames there are, in which order, and what they hold; filter and sorting
    selection,
    frameView, ///< the picture of the develop screen, zoom and pan
    tiles,
    status,
    fileStates,
    exporting, ///< told as often as it is noted
    lists,
    crop,
    ab,
};

class ConcernSet {
public:
    constexpr ConcernSet() = default;
    constexpr ConcernSet(std::initializer_list<Concern> concerns)
    {
        for (const Concern concern : concerns) add(concern);
    }
    static constexpr ConcernSet all()
    {
        ConcernSet out;
        out.bits_ = ~std::uint32_t{0};
        return out;
    }

    constexpr void add(Concern concern) { bits_ |= bit(concern); }
    constexpr bool has(Concern concern) const { return (bits_ & bit(concern)) != 0; }
    constexpr bool empty() const { return bits_ == 0; }
    constexpr ConcernSet operator&(ConcernSet other) const
    {
        other.bits_ &= bits_;
        return other;
    }
    bool operator==(const ConcernSet&) const = default;

private:
    static constexpr std::uint32_t bit(Concern concern)
    {
        return std::uint32_t{1} << static_cast<unsigned>(concern);
    }
    std::uint32_t bits_ = 0;
};

/// What has changed since the last one.
struct ChangeSet {
    ConcernSet concerns;
    std::vector<FrameID> frames; ///< that hold something else now, in the order of the roll
    std::vector<FrameID> tiles;  ///< whose tile is another
    std::vector<RowChange> rows; ///< how the visible frames became what they are now
};

/// Ends with its life.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;

private:
    friend class Observers;
    explicit Subscription(std::shared_ptr<void> hold) : hold_(std::move(hold)) {}
    std::shared_ptr<void> hold_;
};

class Observers {
public:
    using Tell = std::function<void(const ChangeSet&)>;

    explicit Observers(AppModel& model) : model_(model) {}

    /// `tell` is called on the main thread, at most once a turn of the loop, when one of the concerns has
    /// changed. What it changes itself is told in the next turn.
    Subscription subscribe(ConcernSet concerns, Tell tell);

    /// A concern may have changed.
    void note(Concern concern);
    /// A frame has another tile.
    void noteTile(const FrameID& id);

private:
    struct Observer {
        ConcernSet concerns;
        Tell tell;
    };
    /// The values that were told last.
    struct Told;

    bool isObserved();
    void tellAll();
    ChangeSet changes(const Told& before, const Told& now) const;
    Told present() const;

    AppModel& model_;
    std::vector<std::weak_ptr<Observer>> observers_;
    std::shared_ptr<const Told> told_;
    ConcernSet noted_;
    std::vector<FrameID> tiles_;
    bool isPosted_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tamlo
