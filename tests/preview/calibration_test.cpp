#include "app/preview/calibration_cache.h"
#include "app/preview/render_process.h"
#include "core/pipeline/backend.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tamlo::test {
namespace {

using Record = Grain::CalibrationRecord;

/// A silver film that nobody has, of that grain; and what grain is found to need that is not what it needs.
float solved(double sizeUm)
{
    return Grain::growthClumpSigma(0.02, sizeUm, 1.5, 0.0, 2.0);
}
Record untrue(std::int64_t sizeUm)
{
    return {{1, 2000, sizeUm * 100, 1500, 200'000}, {0.4375f}};
}

class Calibrations : public testing::Test {
protected:
    /// The file of a film as a program of that build leaves it.
    std::filesystem::path kept(const std::string& film, std::int64_t sizeUm, const std::string& build = "1.0")
    {
        const std::filesystem::path folder = folder_ / (film + build);
        EXPECT_TRUE(Grain::addCalibration(untrue(sizeUm)));
        CalibrationCache(folder, build).during(film, [&] {
            EXPECT_EQ(solved(static_cast<double>(sizeUm)), 0.4375f);
        });
        return std::filesystem::directory_iterator(folder)->path();
    }
    std::size_t recalled(const std::filesystem::path& file, const std::string& film,
                         const std::string& build = "1.0")
    {
        return CalibrationCache(file.parent_path(), build).recall(film);
    }

    ScratchFolder folder_;
};

TEST_F(Calibrations, OutliveTheProgram)
{
    const auto file = kept("film", 9);
    EXPECT_EQ(recalled(file, "film"), 1u);
    EXPECT_EQ(recalled(file, "film", "1.1"), 0u) << "another build may solve it otherwise";
    EXPECT_EQ(recalled(file, "the film, edited"), 0u);
    // Of another program's making: the process takes over what the file says.
    std::string text = readFile(file);
    CalibrationCache cache(file.parent_path(), "1.0");
    EXPECT_EQ(cache.recall("film"), 1u);
    EXPECT_EQ(solved(9), 0.4375f);
    cache.during("film", [] { solved(9); });
    EXPECT_EQ(readFile(file), text) << "nothing new, nothing written";
    EXPECT_THROW(cache.during("film",
                              [] {
                                  solved(9.5);
                                  throw std::runtime_error("superseded");
                              }),
                 std::runtime_error);
    EXPECT_EQ(recalled(file, "film"), 2u) << "what was solved stays solved";
}

TEST_F(Calibrations, ADamagedOrForeignFileIsAMiss)
{
    const auto file = kept("film", 11);
    const std::string text = readFile(file);
    for (std::size_t bit = 0; bit < text.size() * 8; bit += 3) {
        std::string damaged = text;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        writeFile(file, damaged);
        // White space and the case of an escape aside, each bit is held by the check.
        if (const std::size_t found = recalled(file, "film")) {
            EXPECT_EQ(found, 1u);
            EXPECT_EQ(solved(11), 0.4375f) << damaged;
        }
    }
    for (std::size_t length = 0; length + 1 < text.size(); length += 7) {
        writeFile(file, text.substr(0, length));
        EXPECT_EQ(recalled(file, "film"), 0u) << length;
    }
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(recalled(file, "film"), 0u);
    CalibrationCache cache(file.parent_path(), "1.0");
    cache.during("film", [] { solved(11); });
    writeFile(folder_ / "no folder", "");
    CalibrationCache(folder_ / "no folder", "1.0").during("film", [] { solved(11); });
}

TEST_F(Calibrations, WhatNoSolutionCanBeIsLeftOut)
{
    const float own = solved(13);
    for (const float value :
         {-0.1f, 0.7f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        Record record = untrue(13);
        record.values = {value};
        EXPECT_FALSE(Grain::addCalibration(record)) << value;
    }
    EXPECT_FALSE(Grain::addCalibration({{3, 0, 0, 0, 0}, {0.1f}}));
    EXPECT_FALSE(Grain::addCalibration({{2, 0, 0, 0, 0}, {0.1f}}));
    EXPECT_FALSE(Grain::addCalibration({{}, {}}));
    EXPECT_EQ(solved(13), own);
}

TEST_F(Calibrations, PreparingAsksForWhatTheRenderAsksFor)
{
    const ProfileStore store;
    for (const std::string stock : {"portra400", "trix400", "velvia50"}) {
        ProcessSettings process = ProcessSettings::fresh();
        process.stock = stock;
        process.options.crop = Crop{0, 0, 0.5, 1, 0};
        process.options.push = 1;
        const RenderChoices choices = choicesOf(process, store);
        const Size size{300, 200};
        std::vector<Record> prepared, rendered;
        {
            const Grain::CalibrationNotes notes(prepared);
            Pipeline::prepareGrain(size, choices.film, choices.paper, choices.options);
        }
        {
            const Grain::CalibrationNotes notes(rendered);
            CPUBackend().process(RGBImage(size.width, size.height, {0.2f, 0.2f, 0.2f}), choices);
        }
        ASSERT_FALSE(rendered.empty()) << stock;
        EXPECT_NE(std::ranges::find(prepared, rendered.front()), prepared.end()) << stock;
    }
}

} // namespace
} // namespace tamlo::test
