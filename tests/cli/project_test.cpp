// tamlo project: rolls made, edited, looked at and kept safe from the command line.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A folder with four pictures of different content, and commands on a roll in it.
class ProjectTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(scratch_ / "photos");
        for (const char* name : {"img2.jpg", "img10.jpg", "img1.jpg", "-x,y.jpg"}) {
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", scratch_ / "photos" / name);
            std::ofstream(scratch_ / "photos" / name, std::ios::app) << name;
        }
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
    void make() const
    {
        const RunResult made = tamlo({"new", "roll", "photos"});
        ASSERT_EQ(made.status, 0) << made.err;
        ASSERT_EQ(made.out, "4 added\n");
    }
    Json frames(const std::string& which = "all") const
    {
        const RunResult shown = tamlo({"show", "roll", "--json", "--", which});
        EXPECT_EQ(shown.status, 0) << shown.err;
        return Json::parse(shown.out)["frames"];
    }
    /// Runs a verb that must succeed and change so many frames.
    void expectChanged(std::vector<std::string> arguments, int n) const
    {
        const RunResult done = tamlo(std::move(arguments));
        EXPECT_EQ(done.status, 0) << done.err;
        EXPECT_EQ(done.out, std::to_string(n) + (n == 1 ? " frame changed\n" : " frames changed\n"));
    }
    void expectRefused(std::vector<std::string> arguments, int status, const std::string& reason) const
    {
        const RunResult done = tamlo(std::move(arguments));
        EXPECT_EQ(done.status, status) << done.out;
        EXPECT_EQ(done.messages().size(), 1u) << done.err;
        EXPECT_NE(done.err.find(reason), std::string::npos) << done.err;
    }

    ScratchFolder scratch_;
};

TEST_F(ProjectTest, ARollIsInTheOrderOfNames)
{
    make();
    const Json all = frames();
    ASSERT_EQ(all.size(), 4u);
    const char* order[] = {"-x,y.jpg", "img1.jpg", "img2.jpg", "img10.jpg"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(fs::path(all[i]["file"].get<std::string>()).filename(), order[i]);
        EXPECT_EQ(all[i]["process"], nullptr);
    }
    EXPECT_EQ(tamlo({"add", "roll", "photos"}).out, "0 added · 4 already in the project\n");
    expectRefused({"new", "roll.tamlo"}, 2, "exists already");
    const RunResult some = tamlo({"add", "roll", "none.jpg", "roll.tamlo"});
    EXPECT_EQ(some.status, 1);
    EXPECT_EQ(some.messages().size(), 2u) << some.err;
    EXPECT_EQ(tamlo({"check", "roll"}).status, 0);
}

TEST_F(ProjectTest, FramesAreNamedInManyWays)
{
    make();
    tamlo({"mark", "roll", "2", "pick"});
    tamlo({"mark", "roll", "4", "reject"});
    const auto count = [&](const std::string& which) { return frames(which).size(); };
    EXPECT_EQ(count("2-4"), 3u);
    EXPECT_EQ(count("1,4"), 2u);
    EXPECT_EQ(count("img*.jpg"), 3u);
    EXPECT_EQ(count("img?.jpg,img10.jpg"), 3u);
    EXPECT_EQ(count("-x,y.jpg"), 1u) << "a name may hold a comma";
    EXPECT_EQ(count("picked"), 1u);
    EXPECT_EQ(count("rejected"), 1u);
    EXPECT_EQ(count("unmarked"), 2u);
    EXPECT_EQ(count("lost"), 0u);
    for (const char* none : {"0", "5", "3-2", "img9.jpg", "2-9"})
        expectRefused({"show", "roll", none}, 2, none);
    expectRefused({"copy", "roll", "1-2"}, 2, "must mean one frame");
}

TEST_F(ProjectTest, NamesOfEverySortSurvive)
{
    const std::string names[] = {"line\nfeed.jpg", "\xFF\xFE not text.jpg", std::string(251, 'n') + ".jpg",
                                 "-rf.jpg", "50% *?[a].jpg"};
    for (const std::string& name : names) {
        fs::copy_file(scratch_ / "photos" / "img1.jpg", scratch_ / "photos" / name);
        std::ofstream(scratch_ / "photos" / name, std::ios::app) << name;
    }
    EXPECT_EQ(tamlo({"new", "roll", "photos"}).out, "9 added\n");
    for (const std::string& name : names)
        EXPECT_EQ(tamlo({"mark", "--", "roll", name, "pick"}).out, "1 frame changed\n") << name;
    EXPECT_EQ(tamlo({"check", "roll"}).status, 0);
    EXPECT_EQ(frames("picked").size(), 5u);
    const RunResult shown = tamlo({"show", "roll"});
    EXPECT_EQ(std::count(shown.out.begin(), shown.out.end(), '\n'), 9) << "a line a frame\n" << shown.out;
    fs::rename(scratch_ / "photos", scratch_ / "elsewhere");
    EXPECT_EQ(tamlo({"locate", "roll", "elsewhere"}).out, "9 found\n");
}

TEST_F(ProjectTest, SettingsAreCheckedBeforeTheRollIsOpened)
{
    make();
    const std::string before = readFile(scratch_ / "roll.tamlo");
    expectRefused({"set", "roll", "all", "film=portra401"}, 2, "portra400");
    expectRefused({"set", "roll", "all", "grad=3"}, 2, "grade");
    expectRefused({"set", "roll", "all", "grade=99"}, 2, "grade");
    expectRefused({"set", "roll", "all", "rotate=90"}, 2, "does not belong");
    expectRefused({"set", "roll", "all", "grade"}, 2, "KEY=VALUE");
    expectRefused({"set", "roll", "all", "filter_cut=oranje_21"}, 2, "orange_21");
    expectRefused({"preset", "roll", "all", "nothing"}, 2, "nothing");
    expectRefused({"reset", "roll", "all", "--block", "roof"}, 2, "roof");
    expectRefused({"apply", "roll", "1"}, 2, "no settings");
    expectRefused({"show", "gone"}, 2, "gone.tamlo");
    EXPECT_EQ(readFile(scratch_ / "roll.tamlo"), before);
}

TEST_F(ProjectTest, EditsReachTheirFramesAndNoOthers)
{
    make();
    expectChanged({"set", "roll", "2-3", "film=trix400", "grade=3.5", "social=true"}, 2);
    expectChanged({"set", "roll", "2-3", "grade=3.5"}, 0);
    Json all = frames();
    EXPECT_EQ(all[0]["process"], nullptr);
    EXPECT_EQ(all[2]["process"]["film"], "trix400");
    EXPECT_EQ(all[2]["process"]["options"], Json({{"grade", 3.5}}));
    expectChanged({"turn", "roll", "1,2", "left"}, 2);
    expectChanged({"turn", "roll", "2", "flip-h"}, 1);
    all = frames();
    EXPECT_EQ(all[0]["turn"], 3);
    EXPECT_EQ(all[1]["turn"], 1);
    EXPECT_EQ(all[1]["mirror"], true);

    writeFile(scratch_ / "settings.json", tamlo({"copy", "roll", "3"}).out);
    expectChanged({"paste", "roll", "2,4", "settings.json"}, 1);
    writeFile(scratch_ / "block.json", tamlo({"copy", "roll", "3", "--block", "print"}).out);
    expectChanged({"paste", "roll", "1", "block.json"}, 1);
    all = frames();
    EXPECT_EQ(all[3]["process"]["film"], "trix400");
    EXPECT_EQ(all[0]["process"]["film"], "digital_negative");
    EXPECT_EQ(all[0]["process"]["options"]["grade"], 3.5);
    expectRefused({"paste", "roll", "1", "roll.tamlo"}, 2, "no settings");

    expectRefused({"apply", "roll", "3"}, 2, "--to-all");
    expectChanged({"reset", "roll", "4"}, 1);
    expectChanged({"apply", "roll", "3", "--to-all", "empty"}, 1);
    expectChanged({"apply", "roll", "3", "--to-all", "every"}, 1);
    expectChanged({"reset", "roll", "all", "--block", "print,film"}, 4);
    EXPECT_EQ(tamlo({"remove", "roll", "rejected"}).out, "0 frames removed\n");
    EXPECT_EQ(tamlo({"remove", "roll", "1,2"}).out, "2 frames removed\n");
    EXPECT_EQ(frames().size(), 2u);
    EXPECT_TRUE(fs::exists(scratch_ / "photos" / "img1.jpg")) << "files stay";
}

TEST_F(ProjectTest, FramesAreOrderedCutAndRerolled)
{
    make();
    const auto first = [&] { return fs::path(frames("1")[0]["file"].get<std::string>()).filename(); };
    expectChanged({"order", "roll", "reverse"}, 4);
    EXPECT_EQ(first(), "img10.jpg");
    expectChanged({"order", "roll", "img2.jpg", "--before", "1"}, 2);
    EXPECT_EQ(first(), "img2.jpg");
    expectChanged({"order", "roll", "1,2", "--after", "4"}, 4);
    expectChanged({"order", "roll", "name"}, 2);
    expectRefused({"order", "roll", "2"}, 2, "--before");
    expectRefused({"order", "roll", "1-2", "--after", "3-4"}, 2, "must mean one frame");

    expectChanged({"crop", "roll", "1-3", "0.1,0.1,0.5,0.5"}, 3);
    expectChanged({"crop", "roll", "all", "--ratio", "1:1"}, 4);
    const Json square = frames("4")[0]["crop"];
    EXPECT_NEAR(square[1].get<double>(), 0, 1e-9);
    expectChanged({"crop", "roll", "4", "--level", "-3"}, 1);
    EXPECT_EQ(frames("4")[0]["crop"][4], -3);
    expectChanged({"crop", "roll", "all", "none"}, 4);
    expectRefused({"crop", "roll", "1", "0.5,0.5,0.6,0.6"}, 2, "is no crop");
    expectRefused({"crop", "roll", "1", "--ratio", "wide"}, 2, "is no ratio");
    expectRefused({"crop", "roll", "1"}, 2, "--ratio");
    expectRefused({"crop", "roll", "1", "--level", "60"}, 2, "45");

    expectChanged({"reroll", "roll", "1,2", "film"}, 2);
    EXPECT_EQ(frames("1")[0]["process"]["options"]["seed_variants"]["film"], 1);
    expectRefused({"reroll", "roll", "1", "roof"}, 2, "STREAM");
}

TEST_F(ProjectTest, LostFilesAreFoundAgain)
{
    make();
    fs::rename(scratch_ / "photos", scratch_ / "elsewhere");
    EXPECT_EQ(frames("lost").size(), 4u);
    EXPECT_EQ(tamlo({"check", "roll"}).status, 1);
    fs::rename(scratch_ / "elsewhere" / "img1.jpg", scratch_ / "elsewhere" / "renamed.jpg");
    fs::remove(scratch_ / "elsewhere" / "img2.jpg");
    const RunResult found = tamlo({"locate", "roll", "elsewhere"});
    EXPECT_EQ(found.status, 1);
    EXPECT_EQ(found.out, "3 found · 1 not found (img2.jpg)\n");
    EXPECT_EQ(frames("lost").size(), 1u);
    fs::rename(scratch_ / "elsewhere" / "renamed.jpg", scratch_ / "moved.jpg");
    fs::rename(scratch_ / "elsewhere" / "img10.jpg", scratch_ / "img10.jpg");
    const RunResult linked = tamlo({"locate", "roll", "renamed.jpg", "moved.jpg"});
    EXPECT_EQ(linked.out, "Files linked: 1\n") << linked.err;
    EXPECT_NE(linked.err.find("1 more of the lost files lie in"), std::string::npos) << linked.err;
    EXPECT_EQ(tamlo({"locate", "roll", "."}).status, 1) << "one is still gone";
    expectRefused({"locate", "roll", "img2.jpg", "img10.jpg"}, 1, "--force");
    EXPECT_EQ(tamlo({"locate", "roll", "img2.jpg", "img10.jpg", "--force"}).status, 0);
    EXPECT_EQ(tamlo({"check", "roll"}).status, 0);
}

TEST_F(ProjectTest, ADamagedRollIsToldAndLeftAsItIs)
{
    make();
    std::string text = readFile(scratch_ / "roll.tamlo");
    text.resize(text.size() / 2);
    writeFile(scratch_ / "roll.tamlo", text);
    for (const std::vector<std::string>& verb : {std::vector<std::string>{"show", "roll"},
                                                 {"set", "roll", "all", "grade=3"},
                                                 {"add", "roll", "photos"}})
        expectRefused(verb, 1, "could not be opened");
    EXPECT_EQ(readFile(scratch_ / "roll.tamlo"), text);
}

TEST_F(ProjectTest, AFullDiskLosesNothing)
{
    make();
    const std::string before = readFile(scratch_ / "roll.tamlo");
    RunSettings full;
    full.fileSizeLimit = 1000;
    const RunResult failed = tamlo({"set", "roll", "all", "grade=3"}, full);
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.messages().size(), 1u) << failed.err;
    EXPECT_NE(failed.err.find("could not be saved"), std::string::npos);
    EXPECT_EQ(readFile(scratch_ / "roll.tamlo"), before);
}

TEST_F(ProjectTest, BackupsComeBackAsANewRoll)
{
    make();
    expectChanged({"set", "roll", "all", "grade=3"}, 4);
    fs::last_write_time(scratch_ / "roll.tamlo",
                        fs::last_write_time(scratch_ / "roll.tamlo") - std::chrono::hours(1));
    tamlo({"remove", "roll", "1-3"});
    const Json backups = Json::parse(tamlo({"backups", "roll", "--json"}).out);
    ASSERT_EQ(backups.size(), 2u);
    EXPECT_EQ(backups[0]["frames"], 4);
    const std::string stamp = backups[0]["stamp"];
    expectRefused({"restore", "roll", "2001-01-01T00-00-00", "-o", "new"}, 2, "2001");
    expectRefused({"restore", "roll", stamp, "-o", "roll"}, 2, "exists already");
    EXPECT_EQ(tamlo({"restore", "roll", stamp, "-o", "new"}).status, 0);
    EXPECT_EQ(Json::parse(tamlo({"show", "new", "--json"}).out)["frames"].size(), 4u);
    EXPECT_EQ(frames().size(), 1u);
    const Json recent = Json::parse(tamlo({"recent", "--json"}).out);
    ASSERT_EQ(recent.size(), 2u);
    EXPECT_EQ(fs::path(recent[0]["file"].get<std::string>()).filename(), "new.tamlo");
    EXPECT_EQ(tamlo({"recent", "--clear"}).status, 0);
    EXPECT_EQ(Json::parse(tamlo({"recent", "--json"}).out).size(), 0u);
    EXPECT_EQ(tamlo({"backups", "--purge", "0"}).status, 0);
    EXPECT_EQ(Json::parse(tamlo({"backups", "roll", "--json"}).out).size(), 0u);
}

} // namespace
} // namespace tamlo::test
