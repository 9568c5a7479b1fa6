// What a session does to a cache, and what must hold of it after any fault.
#pragma once

#include "app/preview/calibration_cache.h"
#include "app/preview/thumb_cache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tamlo::test {

class CacheWork {
public:
    static constexpr double kNow = 1'800'000'000;

    explicit CacheWork(std::filesystem::path folder) : folder_(std::move(folder)) {}

    static std::string key(int n)
    {
        return ProxyFile::key({1000 + n, 0, static_cast<std::uint64_t>(n)}, WBMode::film);
    }
    static std::string view(int n) { return std::string(63, 'a') + std::to_string(n) + "-1.0"; }
    static FrameSource source(int n)
    {
        return {RGBImage(60, 40, {static_cast<float>(n), 0.5f, 0.25f}),
                {},
                6000,
                4000,
                false,
                WBMode::film,
                true};
    }
    static ReadyImage tile() { return {48, 32, std::vector<std::uint8_t>(48 * 32 * 4, 90)}; }

    /// Frame 0 stands from before: it is written over, 1 and 2 are new; then a trim down to a little.
    void run()
    {
        ProxyCache cache({folder_, [] { return kNow; }});
        ThumbCache thumbs(cache);
        for (const int n : {0, 1, 2}) {
            cache.store(source(n), key(n));
            thumbs.store(view(n), tile(), ThumbCache::Raster::t);
        }
        cache.flush();
        Grain::addCalibration({{1, 2000, 2100, 1500, 200'000}, {0.4375f}});
        CalibrationCache(folder_ / "calibrations", "1.0").during("film", [] {
            Grain::growthClumpSigma(0.02, 21.0, 1.5, 0.0, 2.0);
        });
        cache.trim(20'000, std::nullopt, kNow + 5000);
        cache.flush();
    }

    /// Every picture is whole or a miss, and the next session goes on as if nothing had been.
    void expectSound() const
    {
        ProxyCache cache({folder_, [] { return kNow + 6000; }});
        ThumbCache thumbs(cache);
        for (const int n : {0, 1, 2}) {
            if (const auto read = cache.read(key(n))) {
                EXPECT_EQ(read->proxy.data[0], static_cast<float>(n));
                EXPECT_EQ(read->proxy.data.size(), 60u * 40 * 3);
            }
            if (const auto read = thumbs.read(view(n), ThumbCache::Raster::t)) {
                EXPECT_EQ(read->image.width, 48);
            }
            cache.store(source(n), key(n));
            EXPECT_TRUE(cache.read(key(n)));
            thumbs.store(view(n), tile(), ThumbCache::Raster::t);
            EXPECT_TRUE(thumbs.read(view(n), ThumbCache::Raster::t));
        }
        CalibrationCache calibrations(folder_ / "calibrations", "1.0");
        calibrations.during("film", [] { Grain::growthClumpSigma(0.02, 21.0, 1.5, 0.0, 2.0); });
        EXPECT_EQ(CalibrationCache(folder_ / "calibrations", "1.0").recall("film"), 1u);
        cache.trim(std::nullopt, std::nullopt, kNow + 6000); // which takes in what the index has missed
        EXPECT_EQ(ProxyIndex(folder_, kNow).loaded().size(), 6u);
        EXPECT_EQ(cache.usage().files, 6);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_))
            EXPECT_EQ(entry.path().filename().string().find(".tamlo-"), std::string::npos) << entry.path();
    }

private:
    std::filesystem::path folder_;
};

} // namespace tamlo::test
