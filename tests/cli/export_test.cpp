// tamlo project export: files that are whole or not there, the same however a roll is divided, and
// photographs that are never written over. Every test counts the bytes of its sources before and after.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <thread>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Files = std::map<std::string, std::string>;

class ExportTest : public ::testing::Test {
protected:
    static constexpr int kFrames = 6;

    void SetUp() override
    {
        fs::create_directories(scratch_ / "photos");
        for (int i = 1; i <= kFrames; ++i) {
            const fs::path photo = photoNumber(i);
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", photo);
            std::ofstream(photo, std::ios::app) << i;
        }
        ASSERT_EQ(tamlo({"new", "roll", "photos"}).status, 0);
        ASSERT_EQ(tamlo({"set", "roll", "all", "film=portra400"}).status, 0);
        sources_ = filesIn("photos");
    }
    void TearDown() override { EXPECT_TRUE(filesIn("photos") == sources_) << "a source is not what it was"; }

    fs::path photoNumber(int i) const
    {
        return scratch_ / "photos" / ((i == 2 ? "Ночь" : "p" + std::to_string(i)) + ".jpg");
    }
    RunResult tamlo(std::vector<std::string> arguments, RunSettings settings = {}) const
    {
        arguments.insert(arguments.begin(), "project");
        settings.folder = scratch_.path();
        settings.environment["TAMLO_USER_DIR"] = (scratch_ / "user").string();
        settings.environment["XDG_RUNTIME_DIR"] = scratch_.path().string();
        settings.environment["LANG"] = "C.UTF-8";
        return runTamlo(arguments, settings);
    }
    /// Exports all frames to a folder.
    RunResult exported(const std::string& to, std::vector<std::string> more = {},
                       RunSettings settings = {}) const
    {
        std::vector<std::string> arguments{"export", "roll", "--set", "all", "--to", to};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return tamlo(std::move(arguments), std::move(settings));
    }
    /// Every file below a folder with its bytes, hidden ones too.
    Files filesIn(const std::string& folder) const
    {
        Files files;
        for (const auto& entry : fs::recursive_directory_iterator(scratch_ / folder))
            if (entry.is_regular_file())
                files[entry.path().lexically_relative(scratch_ / folder).string()] = readFile(entry.path());
        return files;
    }
    Files whole() const
    {
        EXPECT_EQ(exported("whole", {"--no-record"}).status, 0);
        return filesIn("whole");
    }
    std::size_t recorded() const
    {
        const Json shown = Json::parse(tamlo({"show", "roll", "--json"}).out);
        return static_cast<std::size_t>(std::ranges::count_if(
            shown["frames"], [](const Json& frame) { return frame.contains("exported"); }));
    }

    ScratchFolder scratch_;
    Files sources_;
};

TEST_F(ExportTest, PartsMakeOneRollAlsoWhenAWorkerDies)
{
    const Files expected = whole();
    ASSERT_EQ(expected.size(), 6u);
    EXPECT_TRUE(expected.contains("Ночь_tamlo.jpg"));
    const auto part = [&](int k, bool dies) {
        RunSettings settings;
        if (dies) settings.interruptAtPhase = "developing", settings.signals = {SIGKILL};
        return exported("parts", {"--shard", std::to_string(k) + "/3", "--skip-existing"}, settings);
    };
    {
        std::vector<std::jthread> workers;
        for (int k = 1; k <= 3; ++k) workers.emplace_back([&, k] { part(k, k == 2); });
    }
    EXPECT_LT(filesIn("parts").size(), 6u);
    EXPECT_EQ(part(2, false).status, 0);
    EXPECT_TRUE(filesIn("parts") == expected);
    EXPECT_EQ(recorded(), 0u) << "parts do not touch the roll";
    EXPECT_EQ(exported("parts", {"--shard", "1/1", "--record", "--on-conflict", "replace"}).status, 0);
    EXPECT_EQ(recorded(), 6u);
    EXPECT_EQ(exported("parts", {"--shard", "1/3", "--on-conflict", "copy"}).status, 2);
    EXPECT_EQ(exported("parts", {"--shard", "1/3", "--resume"}).status, 2);
    EXPECT_EQ(exported("parts", {"--shard", "4/3"}).status, 2);
    EXPECT_TRUE(filesIn("parts") == expected);
}

TEST_F(ExportTest, AStoppedRunIsResumedToTheSameBytes)
{
    const Files expected = whole();
    for (const int signal : {SIGINT, SIGKILL}) {
        RunSettings settings;
        settings.interruptAtPhase = "p4.jpg";
        settings.signals = {signal};
        const std::string to = "out" + std::to_string(signal);
        const RunResult stopped = exported(to, {}, settings);
        EXPECT_EQ(stopped.status, signal == SIGINT ? 130 : -SIGKILL) << stopped.err;
        for (const auto& [name, bytes] : filesIn(to)) EXPECT_TRUE(expected.at(name) == bytes) << name;
        EXPECT_LT(filesIn(to).size(), 6u);
        if (signal == SIGINT) {
            EXPECT_EQ(recorded(), filesIn(to).size());
        }
        EXPECT_EQ(exported(to, {"--resume", "--on-conflict", "replace"}).status, 0);
        EXPECT_TRUE(filesIn(to) == expected);
        EXPECT_EQ(tamlo({"set", "roll", "all", "film=trix400"}).status, 0);
        EXPECT_EQ(recorded(), 0u) << "what has been changed is no longer exported";
        EXPECT_EQ(tamlo({"set", "roll", "all", "film=portra400"}).status, 0);
    }
}

TEST_F(ExportTest, OneBadFrameDoesNotStopTheRun)
{
    const std::string good = readFile(photoNumber(3));
    writeFile(photoNumber(3), good.substr(0, good.size() / 2));
    fs::rename(photoNumber(5), scratch_ / "away.jpg");
    const RunResult run = exported("out", {"--json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(filesIn("out").size(), 4u);
    EXPECT_NE(run.err.find("p3.jpg"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("skipped for want of an original: p5.jpg"), std::string::npos) << run.err;
    std::map<std::string, int> events;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) ++events[Json::parse(line)["event"]];
    EXPECT_EQ(events, (std::map<std::string, int>{{"frame", 4}, {"failed", 1}, {"skipped", 1}, {"done", 1}}));
    EXPECT_EQ(recorded(), 4u);
    for (int i = 1; i <= kFrames; ++i) fs::remove(photoNumber(i));
    EXPECT_NE(exported("none").err.find("Nothing to export: 6 frames"), std::string::npos);
    fs::rename(scratch_ / "away.jpg", photoNumber(5));
    for (const auto& [name, bytes] : sources_) writeFile(scratch_ / "photos" / name, bytes);
}

TEST_F(ExportTest, AFaultOfTheTargetEndsTheRun)
{
    RunSettings full;
    full.fileSizeLimit = 4096;
    const RunResult run = exported("out", {"--no-record"}, full);
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("Export failed"), std::string::npos) << run.err;
    EXPECT_TRUE(filesIn("out").empty());
    EXPECT_EQ(exported("no/such/out").status, 2);
    EXPECT_EQ(exported("roll.tamlo").status, 2);
    EXPECT_EQ(tamlo({"export", "roll", "--to", "out"}).status, 2) << "nothing is picked";
    EXPECT_EQ(tamlo({"export", "roll", "1-2", "--to", "out", "--naming", "name", "--text", "x"}).status, 2);
}

TEST_F(ExportTest, APhotographIsNeverWrittenOver)
{
    const std::vector<std::string> replace{"--naming", "source", "--on-conflict", "replace"};
    const RunResult over = exported("photos", replace);
    EXPECT_EQ(over.status, 1);
    EXPECT_NE(over.err.find("is a photograph of this roll"), std::string::npos) << over.err;
    EXPECT_EQ(exported("photos", {"--naming", "source"}).status, 2);
    EXPECT_EQ(exported("photos", {"--naming", "source", "--skip-existing"}).status, 2);

    fs::create_directories(scratch_ / "links" / "social");
    fs::create_symlink(photoNumber(1), scratch_ / "links" / "p1_tamlo.jpg");
    fs::create_hard_link(photoNumber(3), scratch_ / "links" / "p3_tamlo.jpg");
    fs::create_symlink(photoNumber(4), scratch_ / "links" / "social" / "p4_tamlo_social.jpg");
    EXPECT_EQ(exported("links", {"--social", "--on-conflict", "replace"}).status, 1);
    EXPECT_EQ(exported("links", {"--social", "--on-conflict", "copy"}).status, 0);
    EXPECT_TRUE(fs::exists(scratch_ / "links" / "p1_tamlo 2.jpg"));
    EXPECT_TRUE(fs::exists(scratch_ / "links" / "social" / "p4_tamlo 2_social.jpg"));
}

TEST_F(ExportTest, CopiesForSharingGoWhereTheyCan)
{
    EXPECT_EQ(tamlo({"export", "roll", "1", "--to", "out", "--social", "--scale", "0.5"}).status, 0);
    EXPECT_EQ(filesIn("out").size(), 2u);
    EXPECT_TRUE(fs::exists(scratch_ / "out" / "social" / "p1_tamlo_social.jpg"));
    fs::create_directories(scratch_ / "blocked");
    writeFile(scratch_ / "blocked" / "social", "a file");
    fs::create_symlink(photoNumber(2), scratch_ / "blocked" / "p1_tamlo_social.jpg");
    const RunResult run = tamlo({"export", "roll", "1", "--to", "blocked", "--social", "2048"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("next to the masters"), std::string::npos) << run.err;
    EXPECT_TRUE(fs::exists(scratch_ / "blocked" / "p1_tamlo_social 2.jpg"));
    EXPECT_EQ(readFile(scratch_ / "blocked" / "social"), "a file");
}

TEST_F(ExportTest, AFileIsThatOfASinglePictureDevelopedAlone)
{
    EXPECT_EQ(tamlo({"export", "roll", "1", "--to", "out", "--type", "png"}).status, 0);
    RunSettings settings;
    settings.folder = scratch_.path();
    settings.environment["TAMLO_USER_DIR"] = (scratch_ / "user").string();
    const RunResult alone =
        runTamlo({"develop", "photos/p1.jpg", "--film", "portra400", "--lens", "modern_clean", "--paper",
                  "color_scan", "--sheet-cm", "30", "-o", "alone.png"},
                 settings);
    EXPECT_EQ(alone.status, 0) << alone.err;
    // All but the text that tells how it was made.
    const auto picture = [](const fs::path& file) {
        const std::string bytes = readFile(file);
        return bytes.substr(bytes.find("IDAT"));
    };
    EXPECT_TRUE(picture(scratch_ / "out" / "p1_tamlo.png") == picture(scratch_ / "alone.png"));
}

} // namespace
} // namespace tamlo::test
