#include "app/preview/keyed_renderer.h"
#include "app/preview/source_decode.h"
#include "core/image/cancellation.h"
#include "core/io/image_writer.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <thread>

namespace tamlo::test {
namespace {

using Request = KeyedRenderer::Request;
using Outcome = KeyedRenderer::Outcome;

/// Renders that begin and end when the test says so.
class Script {
public:
    ReadyImage operator()(const std::string& key, const Request&, const std::function<bool()>& shouldCancel)
    {
        std::unique_lock lock(mutex_);
        begun.push_back(key);
        changed_.notify_all();
        while (held_ && !shouldCancel()) changed_.wait_for(lock, std::chrono::milliseconds(1));
        if (shouldCancel()) throw TamloError::cancelled();
        if (key == "peek") throw TamloError::gpuAborted({GPUAbort::Kind::timeout, 2, "slow"});
        if (key == "orig") throw TamloError::io("no such film");
        return {1, 1, {0, 0, 0, 255}};
    }
    void hold(bool held)
    {
        const std::lock_guard lock(mutex_);
        held_ = held;
        changed_.notify_all();
    }
    void waitFor(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return begun.size() >= count; });
    }

    std::vector<std::string> begun;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool held_ = true;
};

class Renderer : public testing::Test {
protected:
    void submit(const std::string& key, std::optional<std::int64_t> ticket = {})
    {
        Request request;
        request.ticket = ticket;
        ++submitted_;
        renderer_->submit(key, std::move(request), [this, key](Outcome outcome) {
            EXPECT_TRUE(loop_.isMainThread());
            constexpr const char* kWords[] = {"done", "failed", "stale"};
            ended_.push_back(key + " " + kWords[outcome.index()]);
            last_ = std::move(outcome);
        });
    }
    void settle()
    {
        while (ended_.size() < submitted_) {
            loop_.runPosted();
            std::this_thread::yield();
        }
    }

    VirtualLoop loop_;
    Script script_;
    std::optional<KeyedRenderer> renderer_{
        std::in_place, loop_, [this](const std::string& key, Request request, const auto& shouldCancel) {
            return script_(key, request, shouldCancel);
        }};
    std::size_t submitted_ = 0;
    std::vector<std::string> ended_;
    std::optional<Outcome> last_;
};

TEST_F(Renderer, WhatIsLookedAtGoesFirst)
{
    submit("thumb:a");
    script_.waitFor(1);
    for (const char* key : {"thumb:b", "proof:1", "fine", "proof:2", "peek", "ab", "orig", "frame"})
        submit(key);
    EXPECT_TRUE(renderer_->isStale("fine"));
    script_.hold(false);
    settle();
    EXPECT_EQ(script_.begun, (std::vector<std::string>{"thumb:a", "frame", "orig", "ab", "peek", "fine",
                                                       "proof:1", "proof:2", "thumb:b"}));
    EXPECT_TRUE(renderer_->isIdle());
}

TEST_F(Renderer, ANewerRequestTakesTheOlderOnesPlace)
{
    submit("frame");
    script_.waitFor(1);
    submit("frame"); // the running one stops
    script_.waitFor(2);
    submit("thumb:x");
    submit("thumb:x"); // the waiting one never begins
    submit("thumb:y");
    renderer_->cancel("thumb:y");
    script_.hold(false);
    settle();
    EXPECT_EQ(ended_, (std::vector<std::string>{"frame stale", "thumb:x stale", "thumb:y stale", "frame done",
                                                "thumb:x done"}));
    EXPECT_EQ(script_.begun.size(), 3u);
}

TEST_F(Renderer, AnOldTicketEndsWhereverItStands)
{
    renderer_->setTicket(1);
    submit("fine", 1);
    script_.waitFor(1);
    submit("frame", 1);
    renderer_->setTicket(2);
    submit("ab", 2);
    script_.hold(false);
    settle();
    EXPECT_EQ(ended_, (std::vector<std::string>{"fine stale", "frame stale", "ab done"}));
    EXPECT_EQ(script_.begun, (std::vector<std::string>{"fine", "ab"}));
}

TEST_F(Renderer, FailuresAreToldAndAbortsToo)
{
    script_.hold(false);
    submit("orig");
    settle();
    EXPECT_EQ(std::get<KeyedRenderer::Failure>(*last_).text, TamloError::io("no such film").what());
    submit("peek");
    settle();
    ASSERT_TRUE(std::get<KeyedRenderer::Failure>(*last_).abort);
    submit("frame");
    settle();
    EXPECT_EQ(std::get<KeyedRenderer::Output>(*last_).image->width, 1);
}

TEST_F(Renderer, GoesAwayWhileItWorks)
{
    submit("frame");
    script_.waitFor(1);
    submit("fine");
    renderer_.reset();
    loop_.runPosted();
    EXPECT_TRUE(ended_.empty()) << "whoever asked is going too";
}

TEST_F(Renderer, AThousandTurnsOfAKnobEndEachOnce)
{
    script_.hold(false);
    for (int i = 1; i <= 1000; ++i) {
        renderer_->setTicket(i);
        submit("frame", i);
        if (i % 3 == 0) submit("fine", i);
        if (i % 50 == 0) loop_.runPosted();
    }
    settle();
    EXPECT_EQ(ended_.size(), submitted_);
    EXPECT_NE(std::ranges::find(ended_, "frame done"), ended_.end());
}

TEST(ViewRender, OriginalsAndProcesses)
{
    const ProfileStore store;
    const auto render = viewRender(store);
    Request request;
    request.image = RGBImage(40, 20, {0.1f, 0.1f, 0.1f});
    request.gain = 2;
    request.original = {Crop{0, 0, 0.5, 1, 0}, 90, false};
    const auto no = [] { return false; };
    const ReadyImage original = render("frame", request, no);
    EXPECT_EQ(original.width, 20);
    EXPECT_EQ(original.height, 20);
    EXPECT_NEAR(original.rgba[0], 124, 1) << "0.2 in sRGB";
    request.process = ProcessSettings::fresh();
    request.inputLong = 24;
    request.source = [] { return RGBImage(48, 32, {0.2f, 0.2f, 0.2f}); };
    const ReadyImage print = render("fine", request, no);
    EXPECT_EQ(print.width, 24);
    EXPECT_THROW(render("fine", request, [] { return true; }), TamloError);
    request.process->stock = "no such film";
    EXPECT_ANY_THROW(render("frame", request, no));
}

TEST(ViewRender, GivesAProxyTheLightsThatAnExportGetsOfTheWholeSource)
{
    const ScratchFolder folder;
    const std::string file = (folder / "lamp.png").string();
    RGBImage night(2600, 1300, {0.02f, 0.02f, 0.03f});
    for (std::int64_t y = 600; y < 640; ++y)
        std::fill_n(night.mutableData() + (y * night.width + 900) * 3, 40 * 3, 1.0f);
    ImageWriter::save(night, file, 95, std::nullopt);
    const FrameSource source = SourceDecode::proxy(file, WBMode::film);
    ASSERT_FALSE(source.lights.empty());
    const auto bits = [](const DisplayLights::Map& map) {
        return std::vector<float>(map.missing.data.begin(), map.missing.data.end());
    };
    EXPECT_EQ(bits(SourceDecode::lights(SourceDecode::full(file, 0, WBMode::film))), bits(source.lights));
    EXPECT_EQ(bits(ProxyFile::decode(ProxyFile::encode(source))->lights), bits(source.lights)) << "kept";

    const ProfileStore store;
    Request request;
    request.image = source.proxy;
    request.process = ProcessSettings::fresh();
    request.process->stock = "cinestill800t";
    request.process->options.grainMult = 0;
    request.inputLong = 520;
    const auto halo = [&] { // red beside the lamp
        const ReadyImage print = viewRender(store)("frame", request, [] { return false; });
        return print.rgba[static_cast<std::size_t>((124 * print.width + 194) * 4)];
    };
    const int dim = halo();
    request.lights = source.lights;
    EXPECT_GT(halo(), dim + 10);
    request.process->options.srcLights = 0;
    EXPECT_EQ(halo(), dim) << "a document that does not name them has none";
}

} // namespace
} // namespace tamlo::test
