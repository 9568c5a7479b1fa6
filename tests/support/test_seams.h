// The seams of platform/ as tests want them: a main loop whose clock is turned by hand, preferences in
// memory, a desktop that records, volumes that come and go at will.
#pragma once

#include "platform/desktop.h"
#include "platform/main_loop.h"
#include "platform/preferences.h"
#include "platform/volumes.h"

#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tamlo::test {

/// Nothing runs by itself: posted work and timers run in runPosted() and advance().
class VirtualLoop : public platform::MainLoop {
public:
    void post(std::function<void()> work) override
    {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(work));
    }
    platform::Timer after(double seconds, std::function<void()> work) override
    {
        return timers_.add(now_ + seconds, std::nullopt, std::move(work));
    }
    platform::Timer every(double seconds, std::function<void()> work) override
    {
        return timers_.add(now_ + seconds, seconds, std::move(work));
    }
    double now() const override { return now_; }
    double date() const override { return kBegin + now_ + slept; }
    bool isMainThread() const override { return std::this_thread::get_id() == thread_; }

    /// What is posted meanwhile runs too.
    void runPosted()
    {
        while (std::function<void()> work = next()) work();
    }
    /// Turns the clock on, from timer to timer.
    void advance(double seconds)
    {
        const double end = now_ + seconds;
        runPosted();
        for (auto due = timers_.nextDue(); due && *due <= end; due = timers_.nextDue()) {
            now_ = std::max(now_.load(), *due);
            timers_.runNext(now_);
            runPosted();
        }
        now_ = end;
    }

    static constexpr double kBegin = 1'800'000'000.0; ///< date() at the beginning
    std::atomic<double> slept = 0;                    ///< seconds for which the machine stood still

private:
    std::function<void()> next()
    {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) return nullptr;
        std::function<void()> work = std::move(posted_.front());
        posted_.pop_front();
        return work;
    }

    std::thread::id thread_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::deque<std::function<void()>> posted_;
    platform::TimerQueue timers_;
    std::atomic<double> now_ = 0; ///< caches ask for the date on threads of their own
};

class MapPreferences : public platform::Preferences {
public:
    std::optional<std::string> text(const std::string& key) const override
    {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void setText(const std::string& key, const std::optional<std::string>& value) override
    {
        values.erase(key);
        if (value) values[key] = *value;
    }

    std::map<std::string, std::string> values;
};

class RecordingDesktop : public platform::Desktop {
public:
    void showProgress(std::optional<double> fraction) override { progress.push_back(fraction); }
    void notify(const std::string& title, const std::string& text) override
    {
        notices.emplace_back(title, text);
    }
    void reveal(const std::vector<std::filesystem::path>& files) override
    {
        revealed.insert(revealed.end(), files.begin(), files.end());
    }
    double doubleClickSeconds() const override { return 0.4; }

    std::vector<std::optional<double>> progress;
    std::vector<std::pair<std::string, std::string>> notices;
    std::vector<std::filesystem::path> revealed;
};

/// Volumes by their roots: everything below a root of `away` is offline.
class FakeVolumes : public platform::Volumes {
public:
    bool isOffline(const std::filesystem::path& path) const override { return !rootOf(path).empty(); }
    std::optional<std::string> name(const std::filesystem::path& path) const override
    {
        const std::filesystem::path root = rootOf(path);
        return root.empty() ? std::nullopt : std::optional(root.filename().string());
    }
    std::unique_ptr<platform::VolumeWatch> watch(platform::MainLoop& loop,
                                                 std::function<void()> changed) override
    {
        signal = [&loop, changed = std::move(changed)] { loop.post(changed); };
        return std::make_unique<platform::VolumeWatch>();
    }

    std::set<std::filesystem::path> away;
    std::function<void()> signal; ///< tells the last watcher

private:
    std::filesystem::path rootOf(const std::filesystem::path& path) const
    {
        for (const std::filesystem::path& root : away) {
            const std::filesystem::path below = path.lexically_relative(root);
            if (!below.empty() && *below.begin() != "..") return root;
        }
        return {};
    }
};

} // namespace tamlo::test
