#include "ui/desktop/qt_loop.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <mutex>

namespace tamlo::ui {
namespace {

/// Posted work runs so long at a stretch; taste: half a frame of the screen.
constexpr double kTurnSeconds = 0.008;
constexpr double kLongestSleepSeconds = 86'400;

const QEvent::Type kWake = static_cast<QEvent::Type>(QEvent::registerEventType());

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

/// Lives on the main thread; only post() is reached from others.
class QtLoop::Receiver : public QObject {
public:
    void post(std::function<void()> work)
    {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(work));
        if (!std::exchange(isAwake_, true)) QCoreApplication::postEvent(this, new QEvent(kWake));
    }

    platform::Timer add(double seconds, std::optional<double> period, std::function<void()> work)
    {
        platform::Timer timer =
            timers_.add(steadySeconds() + std::max(seconds, 0.0), period, std::move(work));
        setAlarm();
        return timer;
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != kWake) return QObject::event(event);
        runPosted();
        return true;
    }

    void timerEvent(QTimerEvent* event) override
    {
        if (event->timerId() == turn_.timerId()) return runPosted();
        runDue();
    }

private:
    std::function<void()> next()
    {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) return nullptr;
        std::function<void()> work = std::move(posted_.front());
        posted_.pop_front();
        return work;
    }

    /// What is left for the next turn waits behind a timer, since posted events would all run in this one.
    void runPosted()
    {
        std::size_t count;
        {
            const std::lock_guard lock(mutex_);
            count = posted_.size();
        }
        const double end = steadySeconds() + kTurnSeconds;
        while (count-- > 0 && steadySeconds() < end)
            if (const auto work = next()) work();
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) {
            turn_.stop();
            isAwake_ = false;
        } else if (!turn_.isActive()) {
            turn_.start(0, this);
        }
    }

    void runDue()
    {
        alarm_.stop();
        const double now = steadySeconds();
        while (timers_.runNext(now)) {}
        setAlarm();
    }

    void setAlarm()
    {
        const std::optional<double> due = timers_.nextDue();
        if (!due) return alarm_.stop();
        const double wait = std::clamp(*due - steadySeconds(), 0.0, kLongestSleepSeconds);
        alarm_.start(static_cast<int>(std::ceil(wait * 1000)), Qt::PreciseTimer, this);
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> posted_;
    bool isAwake_ = false; ///< a wake event or the turn's timer is on its way
    QBasicTimer turn_, alarm_;
    platform::TimerQueue timers_;
};

QtLoop::QtLoop() : receiver_(std::make_unique<Receiver>())
{}

QtLoop::~QtLoop() = default;

void QtLoop::post(std::function<void()> work)
{
    receiver_->post(std::move(work));
}

platform::Timer QtLoop::after(double seconds, std::function<void()> work)
{
    return receiver_->add(seconds, std::nullopt, std::move(work));
}

platform::Timer QtLoop::every(double seconds, std::function<void()> work)
{
    return receiver_->add(seconds, seconds, std::move(work));
}

double QtLoop::now() const
{
    return steadySeconds();
}

double QtLoop::date() const
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

bool QtLoop::isMainThread() const
{
    return QThread::currentThread() == receiver_->thread();
}

} // namespace tamlo::ui
