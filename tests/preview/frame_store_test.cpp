#include "app/preview/frame_store.h"
#include "core/image/cancellation.h"
#include "core/image/tamlo_error.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
constexpr std::int64_t kGiB = std::int64_t{1} << 30;

/// Decodes that tests count, hold and let fail.
struct ScriptedDecoders {
    FrameStore::Decoders decoders()
    {
        FrameStore::Decoders d;
        d.proxy = [this](const fs::path& file, WBMode wb) {
            ++proxies;
            wait();
            if (file.filename() == "bad.nef") throw TamloError::io("damaged");
            FrameSource source{RGBImage(side, side * 2 / 3), {}, 6000, 4000, false, WBMode::film, false};
            if (file.extension() == ".nef") {
                source.isRAW = true;
                source.wb = wb;
                source.stats = SourceExposure::Stats{0.01, 0.2, 0.9, 4000, 6000};
            }
            return source;
        };
        d.detail = [this](const fs::path&, std::int64_t longSide, WBMode) {
            ++details;
            wait();
            return RGBImage(longSide - 1, 2); // a pixel short, as a scaled decode may be
        };
        d.full = [this](const fs::path&, std::int64_t cap, WBMode) {
            ++fulls;
            wait();
            return RGBImage(cap ? cap : 6000, 2);
        };
        return d;
    }
    void wait() const
    {
        while (held) {
            cancellationPoint();
            std::this_thread::yield();
        }
    }

    std::atomic<bool> held{false};
    std::atomic<int> proxies{0}, details{0}, fulls{0};
    std::int64_t side = 64;
};

class Store : public testing::Test {
protected:
    FrameRef frame(const std::string& name, const std::string& bytes = "bytes")
    {
        auto frame = std::make_shared<Frame>();
        frame->id = Uuid::random();
        frame->url = (folder_ / name).string();
        writeFile(frame->url, bytes);
        frame->fingerprint = Fingerprint::read(frame->url);
        return frame;
    }
    template <typename Begin>
    FrameStore::Loaded wait(Begin begin)
    {
        std::optional<FrameStore::Loaded> out;
        begin([&](FrameStore::Loaded loaded) { out = std::move(loaded); });
        settle([&] { return out.has_value(); });
        return *out;
    }
    FrameStore::Loaded load(const FrameRef& of, WBMode wb = WBMode::film)
    {
        return wait([&](auto done) { store_->load(of, wb, std::move(done)); });
    }
    std::optional<RGBImage> detail(const FrameRef& of, std::int64_t longSide, bool master = false)
    {
        bool ended = false;
        std::optional<RGBImage> out;
        store_->loadDetail(of, {longSide, 0, master, WBMode::film}, [&](std::optional<RGBImage> image) {
            out = std::move(image);
            ended = true;
        });
        settle([&] { return ended; });
        return out;
    }
    void settle(const std::function<bool()>& done)
    {
        while (!done()) {
            loop_.runPosted();
            std::this_thread::yield();
        }
    }

    ScratchFolder folder_;
    VirtualLoop loop_;
    ScriptedDecoders script_;
    ProxyCache cache_{{folder_ / "cache", [this] { return loop_.date(); }}};
    std::optional<FrameStore> store_{std::in_place, loop_, &cache_, 8 * kGiB, script_.decoders()};
};

TEST_F(Store, ASourceIsDecodedOnceAndThenFromTheCache)
{
    const FrameRef a = frame("a.nef");
    EXPECT_TRUE(load(a).source);
    EXPECT_TRUE(load(a).source);
    EXPECT_EQ(script_.proxies, 1);
    EXPECT_TRUE(load(a, WBMode::asShot).source);
    EXPECT_EQ(script_.proxies, 2) << "another white balance is another decode";
    EXPECT_EQ(store_->source(a->id)->wb, WBMode::asShot);
    const FrameRef b = frame("b.jpg", "b");
    load(b);
    EXPECT_TRUE(load(b, WBMode::asShot).source);
    EXPECT_EQ(script_.proxies, 3) << "a finished picture has no balance";
    store_.emplace(loop_, &cache_, 8 * kGiB, script_.decoders());
    EXPECT_TRUE(load(a).source);
    EXPECT_EQ(script_.proxies, 3);
    fs::remove(a->url);
    store_->evict(a->id);
    const auto away = wait([&](auto done) { store_->loadCachedProxy(a, WBMode::film, std::move(done)); });
    EXPECT_TRUE(away.source) << "its volume is away, its proxy is not";
    const auto bad = load(frame("bad.nef", "bad"));
    EXPECT_EQ(bad.problem, TamloError::io("damaged").what());
}

TEST_F(Store, AnotherPictureInTheSamePlaceIsItsOwn)
{
    const FrameRef a = frame("a.nef");
    load(a);
    writeFile(a->url, "other bytes"); // the frame still remembers the old ones
    store_->evict(a->id);
    load(a);
    EXPECT_EQ(script_.proxies, 2);
    writeFile(a->url, "bytes");
    store_->evict(a->id);
    load(a);
    EXPECT_EQ(script_.proxies, 2) << "and the old picture's proxy is still the old picture's";
    // Written to while it is decoded: nothing is kept.
    const FrameRef c = frame("c.nef", "first");
    script_.held = true;
    std::optional<FrameStore::Loaded> out;
    store_->load(c, WBMode::film, [&](FrameStore::Loaded loaded) { out = loaded; });
    settle([&] { return script_.proxies == 3; });
    writeFile(c->url, "second picture");
    script_.held = false;
    settle([&] { return out.has_value(); });
    EXPECT_TRUE(out->source);
    EXPECT_FALSE(cache_.readShape(ProxyFile::key(*c->fingerprint, WBMode::film)));
}

TEST_F(Store, LoadsShareADecodeAndAForgottenOneIsNotKept)
{
    const FrameRef a = frame("a.nef");
    script_.held = true;
    std::vector<FrameStore::Loaded> ended;
    for (int i = 0; i < 3; ++i)
        store_->load(a, WBMode::film, [&](FrameStore::Loaded loaded) { ended.push_back(loaded); });
    settle([&] { return script_.proxies == 1; });
    store_->evict(a->id);
    store_->load(a, WBMode::film, [&](FrameStore::Loaded loaded) { ended.push_back(loaded); });
    script_.held = false;
    settle([&] { return ended.size() == 4; });
    EXPECT_EQ(std::ranges::count_if(ended, [](const auto& one) { return one.source && !one.problem; }), 1);
    EXPECT_EQ(std::ranges::count_if(ended, [](const auto& one) { return one.problem.has_value(); }), 0)
        << "removed while it loaded is no failure";
    EXPECT_TRUE(store_->source(a->id));
    EXPECT_EQ(store_->loading(), 0u);
}

TEST_F(Store, TheLimitGivesWayToPinsAlone)
{
    script_.side = 5016; // 192 MiB each: four fit
    store_.emplace(loop_, nullptr, 8 * kGiB, script_.decoders());
    std::vector<FrameRef> frames;
    for (int i = 0; i < 6; ++i) {
        frames.push_back(frame("f" + std::to_string(i) + ".jpg", std::to_string(i)));
        if (i == 1) store_->setPins({frames[0]->id});
        load(frames.back());
    }
    EXPECT_TRUE(store_->source(frames[0]->id));
    EXPECT_FALSE(store_->source(frames[1]->id));
    EXPECT_TRUE(store_->source(frames[5]->id));
    EXPECT_LE(store_->sourceBytes(), 768 * kGiB / 1024);
    std::set<FrameID> all;
    for (const FrameRef& one : frames) all.insert(one->id);
    store_->setPins(all);
    load(frames[1]);
    EXPECT_GT(store_->sourceBytes(), 768 * kGiB / 1024);
}

TEST_F(Store, DetailsAreFewAndServeWhatIsSmaller)
{
    const FrameRef a = frame("a.jpg", "a"), b = frame("b.jpg", "b");
    EXPECT_TRUE(detail(a, 4096));
    EXPECT_TRUE(detail(a, 4096));
    EXPECT_TRUE(detail(a, 2304));
    EXPECT_EQ(script_.details, 1) << "a pixel short of what was asked is what was asked";
    EXPECT_TRUE(detail(b, 2304));
    EXPECT_EQ(detail(a, 5000, true)->width, 6000);
    EXPECT_TRUE(detail(a, 4500));
    EXPECT_EQ(script_.details, 2) << "the master serves every smaller tier";
    EXPECT_TRUE(detail(b, 5000));
    EXPECT_TRUE(detail(a, 4096));
    EXPECT_EQ(script_.details, 3) << "the large slot is b's now, a's smaller detail stays";
    EXPECT_EQ(script_.fulls, 1);
    store_->dropBigDetail(a->id);
    detail(b, 5000);
    EXPECT_EQ(script_.details, 4);
}

TEST_F(Store, OnlyTheLatestDetailLives)
{
    const FrameRef a = frame("a.jpg");
    script_.held = true;
    int first = 0, second = 0;
    store_->loadDetail(a, {3000, 0, false, WBMode::film}, [&](auto) { ++first; });
    settle([&] { return script_.details == 1; });
    store_->loadDetail(a, {3328, 0, false, WBMode::film}, [&](auto image) { second += image ? 1 : 100; });
    settle([&] { return script_.details == 2; });
    script_.held = false;
    settle([&] { return second > 0; });
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(Store, GoesAwayWhileEverythingRuns)
{
    script_.held = true;
    for (int i = 0; i < 8; ++i) {
        const FrameRef one = frame("f" + std::to_string(i) + ".nef", std::to_string(i));
        store_->load(one, WBMode::film, [](auto) { ADD_FAILURE(); });
        store_->loadDetail(one, {5000, 0, true, WBMode::film}, [](auto) { ADD_FAILURE(); });
    }
    settle([&] { return script_.proxies == 2 && script_.fulls > 0; });
    store_.reset();
    loop_.runPosted();
}

TEST_F(Store, TheCachedProxyIsTheFreshOneToTheBit)
{
    const std::string samples = TAMLO_SAMPLES;
    store_.emplace(loop_, &cache_, 8 * kGiB, FrameStore::Decoders());
    std::size_t large = 0;
    for (const auto& entry : fs::recursive_directory_iterator(samples)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".jpg" && extension != ".dng") continue;
        auto one = std::make_shared<Frame>();
        one->id = Uuid::random();
        one->url = entry.path().string();
        one->fingerprint = Fingerprint::read(one->url);
        const auto fresh = load(one);
        if (!fresh.source) continue; // hostile files lie there too
        store_->evict(one->id);
        const auto again = load(one);
        ASSERT_TRUE(again.source) << one->url;
        EXPECT_NE(fresh.source, again.source);
        EXPECT_EQ(again.source->proxy.size(), fresh.source->proxy.size());
        EXPECT_TRUE(std::equal(again.source->proxy.data.begin(), again.source->proxy.data.end(),
                               fresh.source->proxy.data.begin()))
            << one->url;
        EXPECT_EQ(again.source->stats, fresh.source->stats);
        EXPECT_LE(fresh.source->proxy.longSide(), ProxyFile::kProxyLong);
        large += fresh.source->halfPrecision;
    }
    EXPECT_GT(large, 0u);
}

} // namespace
} // namespace tamlo::test
