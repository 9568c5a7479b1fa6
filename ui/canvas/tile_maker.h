// TileMaker: makes tiles beside the main thread, the most wanted first, and brings them to it. It goes at any
// moment: what has not begun is dropped, what has is waited for, which takes a few milliseconds.
#pragma once

#include "platform/job_queue.h"
#include "ui/canvas/tiles.h"

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace tamlo::ui {

class TileMaker : public QObject {
public:
    struct Work {
        TileKey key;
        std::shared_ptr<const ReadyImage> picture;
        std::shared_ptr<const platform::DisplayTransform> transform;
    };
    struct Made {
        TileKey key;
        QImage tile;
    };

    /// Called on the main thread with what has been made.
    std::function<void(const std::vector<Made>&)> onTiles;
    std::function<void(const TileKey&, std::shared_ptr<const StandIn>)> onStandIn;

    ~TileMaker() override;

    /// What is wanted from now on, most wanted first; what was wanted before and has not begun is not made.
    void setWanted(std::vector<Work> wanted);
    /// A stand-in for a picture, once nothing else is wanted; key: its picture and color.
    void wantStandIn(Work work);

private:
    void work();
    std::vector<Work> nextBatch();
    void makeBatch(const std::vector<Work>& batch);
    void makeStandInOf(const Work& work);
    void beginWork();

    std::mutex mutex_;
    std::deque<Work> wanted_;
    std::optional<Work> standIn_;
    bool isWorking_ = false;
    platform::SerialQueue queue_{"tamlo.canvas"}; ///< last: joined before the rest goes
};

} // namespace tamlo::ui
