#include "ui/canvas/tile_maker.h"

#include "platform/work_arena.h"
#include "platform/worker_pool.h"

#include <exception>
#include <utility>

namespace tamlo::ui {

TileMaker::~TileMaker()
{
    const std::lock_guard lock(mutex_);
    wanted_.clear();
    standIn_.reset();
}

void TileMaker::setWanted(std::vector<Work> wanted)
{
    const std::lock_guard lock(mutex_);
    wanted_.assign(std::make_move_iterator(wanted.begin()), std::make_move_iterator(wanted.end()));
    beginWork();
}

void TileMaker::wantStandIn(Work work)
{
    const std::lock_guard lock(mutex_);
    standIn_ = std::move(work);
    beginWork();
}

void TileMaker::beginWork()
{
    if (isWorking_ || (wanted_.empty() && !standIn_)) return;
    isWorking_ = true;
    queue_.submit([this] { work(); });
}

/// A batch at a time, so that a wish that has changed is heard soon.
std::vector<TileMaker::Work> TileMaker::nextBatch()
{
    const std::size_t most = 4 * static_cast<std::size_t>(platform::activeWorkers());
    std::vector<Work> batch;
    while (!wanted_.empty() && batch.size() < most) {
        batch.push_back(std::move(wanted_.front()));
        wanted_.pop_front();
    }
    return batch;
}

void TileMaker::work()
{
    for (;;) {
        std::vector<Work> batch;
        std::optional<Work> standIn;
        {
            const std::lock_guard lock(mutex_);
            batch = nextBatch();
            if (batch.empty()) standIn = std::exchange(standIn_, std::nullopt);
            if (batch.empty() && !standIn) {
                isWorking_ = false;
                return;
            }
        }
        try {
            standIn ? makeStandInOf(*standIn) : makeBatch(batch);
        } catch (const std::exception&) {
            // Memory ran out: what stands on screen stays, and the next wish tries again.
        }
    }
}

void TileMaker::makeBatch(const std::vector<Work>& batch)
{
    std::vector<Made> made(batch.size());
    platform::runIn(platform::WorkArena::view, [&] {
        platform::runConcurrently(static_cast<int>(batch.size()), [&](int i) {
            const Work& one = batch[static_cast<std::size_t>(i)];
            const QRect part = tilePart(one.key.shown, one.key.x, one.key.y);
            made[static_cast<std::size_t>(i)] = {
                one.key, makeTile(*one.picture, one.key.shown, part, one.transform.get())};
        });
    });
    QMetaObject::invokeMethod(
        this, [this, made = std::move(made)] { onTiles(made); }, Qt::QueuedConnection);
}

void TileMaker::makeStandInOf(const Work& work)
{
    std::shared_ptr<const StandIn> made;
    platform::runIn(platform::WorkArena::view,
                    [&] { made = makeStandIn(work.picture, work.transform.get()); });
    QMetaObject::invokeMethod(
        this, [this, key = work.key, made = std::move(made)] { onStandIn(key, made); }, Qt::QueuedConnection);
}

} // namespace tamlo::ui
