#include "app/preview/proxy_cache.h"
#include "app/preview/thumb_cache.h"
#include "app/preview/view_key.h"
#include "tests/support/pictures.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

FrameSource sourceOf(std::int64_t width, std::int64_t height, bool half)
{
    FrameSource source{RGBImage(width, height),
                       SourceExposure::Stats{0.01, 0.2, 0.9, height * 10, width * 10},
                       width * 90,
                       height * 90,
                       true,
                       WBMode::asShot,
                       half};
    float* to = source.proxy.mutableData();
    for (std::size_t i = 0; i < source.proxy.data.size(); ++i)
        to[i] = static_cast<float>(i % 1024) / 512.0f; // exact as a half
    return source;
}

bool same(const FrameSource& a, const FrameSource& b)
{
    return a.proxy.size() == b.proxy.size() && a.stats == b.stats && a.fullSize() == b.fullSize() &&
           a.isRAW == b.isRAW && a.wb == b.wb && a.halfPrecision == b.halfPrecision &&
           std::equal(a.proxy.data.begin(), a.proxy.data.end(), b.proxy.data.begin());
}

std::string keyNumber(int n)
{
    return ProxyFile::key({1000 + n, 0, static_cast<std::uint64_t>(n)}, WBMode::film);
}

const std::string kView = std::string(64, 'a') + "-1.0";

class Cache : public testing::Test {
protected:
    ProxyCache::Config config()
    {
        return {folder_ / "cache", [this] { return now_.load(); }, &registry_, [this] { ++grown_; }};
    }
    ReadyImage tile(std::uint8_t grey = 90) const
    {
        ReadyImage image{48, 32, std::vector<std::uint8_t>(48 * 32 * 4, grey)};
        return image;
    }

    ScratchFolder folder_;
    std::atomic<double> now_ = 1'800'000'000;
    int grown_ = 0;
    ProjectRegistry registry_{folder_.path()};
    std::optional<ProxyCache> cache_{std::in_place, config()};
};

TEST(ProxyNames, AreKeysOfContent)
{
    const Fingerprint print{123, 5, 17241709254077376921u};
    const std::string key = ProxyFile::key(print, WBMode::film);
    EXPECT_EQ(key.size(), 64u);
    EXPECT_NE(key, ProxyFile::key(print, WBMode::asShot));
    EXPECT_EQ(key, ProxyFile::key({123, 99, print.hash}, WBMode::film)) << "the time is no content";
    const auto parts = ProxyFile::parts(ProxyFile::name(key));
    ASSERT_TRUE(parts);
    EXPECT_EQ(std::tuple(parts->version, parts->tier, parts->key), std::tuple(9, 2048, key));
    for (const char* bad : {"9-2048-.tproxy", "9-2048-ab.tproxy", "x", ".tproxy", "9-2048", "9--a.tproxy"})
        EXPECT_FALSE(ProxyFile::parts(bad)) << bad;
    EXPECT_FALSE(ProxyFile::parts("9x-2048-" + key + ".tproxy"));
    Frame frame;
    frame.url = "/a/b.jpg";
    ProcessSettings process;
    process.options.wbMode = "asshot";
    frame.process = process;
    EXPECT_EQ(ProxyFile::wbOf(frame), WBMode::film) << "nothing to balance in a finished picture";
    frame.url = "/a/b.NEF";
    EXPECT_EQ(ProxyFile::wbOf(frame), WBMode::asShot);
}

TEST(ProxyBytes, ComeBackOrAreRefused)
{
    for (const bool half : {true, false}) {
        const FrameSource source = sourceOf(70, 41, half);
        const auto bytes = ProxyFile::encode(source);
        ASSERT_EQ(bytes.size(), 72u + 70 * 41 * 3 * (half ? 2 : 4));
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "XRPT");
        const auto again = ProxyFile::decode(bytes);
        ASSERT_TRUE(again);
        EXPECT_TRUE(same(*again, source));
        for (std::size_t length = 0; length < bytes.size(); length = length < 80 ? length + 1 : length + 4096)
            EXPECT_FALSE(ProxyFile::decode(std::span(bytes).first(length))) << length;
        auto longer = bytes;
        longer.push_back(0);
        EXPECT_FALSE(ProxyFile::decode(longer));
        // A flipped bit is refused, or changes a number a little and nothing else.
        int taken = 0;
        for (std::size_t bit = 0; bit < 72 * 8; ++bit) {
            auto damaged = bytes;
            damaged[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
            const auto read = ProxyFile::decode(damaged);
            const std::size_t byte = bit / 8;
            const bool isNumber = (byte >= 16 && byte < 24) || byte >= 40 || byte == 28;
            if (!read) continue;
            ++taken;
            EXPECT_TRUE(isNumber) << bit;
            EXPECT_EQ(read->proxy.size(), source.proxy.size()) << bit;
            EXPECT_TRUE(std::ranges::equal(read->proxy.data, source.proxy.data)) << bit;
            EXPECT_NEAR(static_cast<double>(read->fullWidth), 70 * 90, 70 * 20) << bit;
            EXPECT_LE(read->stats->p995, 1024) << bit;
        }
        EXPECT_LT(taken, 240) << "most of them are the last places of the measured light";
        // A finished picture has nothing measured.
        FrameSource finished = source;
        finished.isRAW = false;
        finished.wb = WBMode::film;
        EXPECT_FALSE(ProxyFile::decode(ProxyFile::encode(finished)));
        finished.stats.reset();
        EXPECT_TRUE(ProxyFile::decode(ProxyFile::encode(finished)));
    }
}

TEST_F(Cache, AProxyComesBackAndItsShapeIsReadAlone)
{
    const FrameSource source = sourceOf(300, 200, true);
    EXPECT_FALSE(cache_->read(keyNumber(1)));
    cache_->store(source, keyNumber(1));
    const auto again = cache_->read(keyNumber(1));
    ASSERT_TRUE(again);
    EXPECT_TRUE(same(*again, source));
    const auto shape = cache_->readShape(keyNumber(1));
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->stats, source.stats);
    EXPECT_EQ(shape->info(0, {}), "27000×18000 · RAW");
    EXPECT_EQ(shape->info(1, Crop{0, 0, 0.5, 1, 0}), "18000×13500 · RAW");
    EXPECT_EQ(cache_->usage().files, 1);
    const fs::path file = cache_->directory() / ProxyFile::name(keyNumber(1));
    fs::resize_file(file, fs::file_size(file) - 1);
    EXPECT_FALSE(cache_->read(keyNumber(1)));
    cache_->store(source, keyNumber(1));
    EXPECT_TRUE(cache_->read(keyNumber(1))) << "a damaged file is written over";
}

TEST_F(Cache, AFolderThatRefusesEverythingStopsNothing)
{
    const FrameSource source = sourceOf(30, 20, true);
    cache_->store(source, keyNumber(1));
    fs::remove_all(cache_->directory());
    EXPECT_FALSE(cache_->read(keyNumber(1))) << "removed under the running program";
    cache_->store(source, keyNumber(2));
    EXPECT_TRUE(cache_->read(keyNumber(2)));
    cache_->trim(0, std::nullopt, now_);
    // A file stands where the folder would have to be.
    fs::remove_all(cache_->directory());
    writeFile(cache_->directory(), "no folder");
    ThumbCache thumbs(*cache_);
    cache_->store(source, keyNumber(3));
    thumbs.store(kView, tile(), ThumbCache::Raster::t);
    EXPECT_FALSE(thumbs.read(kView, ThumbCache::Raster::t));
    EXPECT_FALSE(cache_->read(keyNumber(3)));
    EXPECT_EQ(cache_->clear().files, 0);
    cache_->flush();
}

TEST_F(Cache, TheIndexOutlivesTheProgramAndTakesOthersNewsIn)
{
    cache_->setOpenProject("ours");
    cache_->store(sourceOf(30, 20, true), keyNumber(1));
    const std::string name = ProxyFile::name(keyNumber(1));
    ProxyCache other(config());
    cache_->flush();
    other.setOpenProject("theirs");
    other.store(sourceOf(30, 20, true), keyNumber(2));
    other.index().bind({name}, "theirs");
    other.flush();
    cache_->index().touch(name, now_ = now_ + 4000);
    cache_->flush();
    const auto entries = ProxyIndex(cache_->directory(), now_).loaded();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at(name).projects, (std::vector<std::string>{"ours", "theirs"}));
    EXPECT_EQ(entries.at(name).lastUsed, now_);
    EXPECT_EQ(cache_->openProjectBytes(), 72 + 30 * 20 * 6);
    for (const std::string damage :
         {"", "[", "{}", "[1, {\"key\": 5}]", "[{\"key\": \"../x\", \"tier\": 0}]"}) {
        writeFile(cache_->directory() / "index.json", damage);
        ProxyIndex index(cache_->directory(), now_);
        EXPECT_EQ(index.wasRebuilt(), !damage.starts_with("[1") && !damage.starts_with("[{")) << damage;
        EXPECT_FALSE(index.loaded().contains("../x"));
    }
}

TEST_F(Cache, AUseIsNotedOnceAnHourAndOnceASession)
{
    cache_->store(sourceOf(30, 20, true), keyNumber(1));
    cache_->flush();
    const std::string name = ProxyFile::name(keyNumber(1));
    const double stored = now_;
    const auto lastUsed = [&] { return cache_->index().loaded().at(name).lastUsed; };
    now_ = stored + 3000;
    cache_->touch(name);
    EXPECT_EQ(lastUsed(), stored);
    cache_.emplace(config()); // the program begins anew within the hour
    cache_->touch(name);
    EXPECT_EQ(lastUsed(), stored + 3000) << "what a session uses is the session's";
    now_ = stored + 3100;
    cache_->touch(name);
    EXPECT_EQ(lastUsed(), stored + 3000);
}

TEST_F(Cache, TrimmingFollowsThePlanAndTheDisk)
{
    registry_.opened(folder_ / "open.tamlo", 1, now_);
    for (int i = 0; i < 4; ++i) {
        cache_->setOpenProject(i == 3 ? std::optional<std::string>("open") : std::nullopt);
        cache_->store(sourceOf(30, 20, true), keyNumber(i));
    }
    writeFile(cache_->directory() / "1-2048-old.tproxy", "dead");
    writeFile(cache_->directory() / "notes.txt", "not ours");
    fs::remove(cache_->directory() / ProxyFile::name(keyNumber(0)));
    cache_->flush();
    now_ = now_ + 5000;
    cache_.emplace(config());
    cache_->setOpenProject("open");
    const auto removed = cache_->trim(0, std::nullopt, now_);
    EXPECT_EQ(removed.files, 3) << "a dead one and two of nobody";
    EXPECT_TRUE(cache_->read(keyNumber(3)));
    EXPECT_TRUE(fs::exists(cache_->directory() / "notes.txt"));
    EXPECT_EQ(cache_->clear().files, 0) << "the open project's stay";
    cache_->setOpenProject(std::nullopt);
    EXPECT_EQ(cache_->clear().files, 1);
    EXPECT_EQ(ProxyCache::capBytes(std::nullopt), std::int64_t{16} << 30);
    EXPECT_EQ(ProxyCache::capBytes(0), std::nullopt);
}

TEST_F(Cache, Tiles)
{
    using Raster = ThumbCache::Raster;
    ThumbCache thumbs(*cache_);
    const auto grey = [](const std::optional<ReadyImage>& image) { return image ? image->rgba[0] : -1; };
    const auto read = [&](Raster raster) {
        const auto found = thumbs.read(kView, raster);
        return found ? std::optional(found->image) : std::nullopt;
    };
    thumbs.store(kView, tile(40), Raster::t);
    thumbs.store(kView, tile(200), Raster::t);
    EXPECT_NEAR(grey(read(Raster::p)), 40, 1)
        << "the other raster serves, and what is there is not rewritten";
    thumbs.store(kView, tile(80), Raster::p);
    EXPECT_NEAR(grey(read(Raster::p)), 80, 1);
    // After an update of the program.
    const std::string newer = ViewKey::hashOf(kView) + "-2.0";
    EXPECT_NEAR(grey(thumbs.readStale(newer)), 80, 1) << "a print before a computed tile";
    EXPECT_FALSE(thumbs.read(newer, Raster::p));
    thumbs.store(newer, tile(120), Raster::t);
    EXPECT_FALSE(read(Raster::p)) << "both tiles of the older build are gone";
    EXPECT_EQ(cache_->index().loaded().size(), 1u);
    EXPECT_FALSE(thumbs.readStale(newer));
    // A damaged tile is removed, so that it is written again.
    writeFile(cache_->directory() / ThumbCache::path(newer, Raster::t), "no picture");
    EXPECT_FALSE(thumbs.read(newer, Raster::t));
    thumbs.store(newer, tile(30), Raster::t);
    EXPECT_TRUE(thumbs.read(newer, Raster::t));
    for (const std::string bad : {"a-1-p.jpg", "index", "-p.jpg"}) EXPECT_FALSE(ThumbCache::parse(bad));
    EXPECT_FALSE(ThumbCache::parse(std::string(64, 'a') + "--p.jpg"));
    EXPECT_TRUE(ThumbCache::parse(ThumbCache::name(kView, Raster::p)));
}

TEST_F(Cache, ManyThreadsAndTwoPrograms)
{
    ProxyCache other(config());
    ThumbCache thumbs(*cache_), others(other);
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            ProxyCache& cache = t % 2 ? *cache_ : other;
            ThumbCache& tiles = t % 2 ? thumbs : others;
            for (int i = 0; i < 12; ++i) {
                cache.store(sourceOf(30, 20, true), keyNumber(i % 5));
                if (const auto read = cache.read(keyNumber((i + t) % 5))) {
                    EXPECT_EQ(read->proxy.width, 30);
                }
                tiles.store(kView, tile(), ThumbCache::Raster::t);
                tiles.readStale(kView);
                if (i % 4 == t) cache.trim(5000, std::nullopt, now_);
                if (i % 3 == 0) cache.flush();
            }
        });
    threads.clear();
    cache_->flush();
    EXPECT_TRUE(ProxyIndex(cache_->directory(), now_).loaded().size() <= 6u);
}

} // namespace
} // namespace tamlo::test
