// tamlo session and tamlo rack: a session told what to do line by line, and what stands on a frame's rack.
#include "cli/session.h"
#include "cli/usage_error.h"
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class SessionCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(scratch_ / "photos");
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", scratch_ / "photos" / name);
            std::ofstream(scratch_ / "photos" / name, std::ios::app) << name;
        }
        ASSERT_EQ(tamlo({"project", "new", "roll", "photos"}).status, 0);
    }
    RunResult tamlo(const std::vector<std::string>& arguments) const
    {
        RunSettings settings;
        settings.folder = scratch_.path();
        settings.environment = {{"TAMLO_USER_DIR", (scratch_ / "user").string()},
                                {"XDG_RUNTIME_DIR", scratch_.path().string()},
                                {"XDG_CACHE_HOME", (scratch_ / "cache").string()},
                                {"LANG", "C.UTF-8"}};
        return runTamlo(arguments, settings);
    }
    RunResult session(const std::vector<std::string>& lines, bool json = false) const
    {
        std::vector<std::string> arguments{"session", "roll"};
        for (const std::string& line : lines) arguments.insert(arguments.end(), {"-c", line});
        if (json) arguments.push_back("--json");
        return tamlo(arguments);
    }
    Json frames() const { return Json::parse(tamlo({"project", "show", "roll", "--json"}).out)["frames"]; }

    ScratchFolder scratch_;
};

TEST_F(SessionCommandTest, LinesAreWhatAScreenWouldDo)
{
    const RunResult done = session({"mark 1,2 pick",
                                    "undo",
                                    "redo",
                                    "open 1",
                                    "wait proxy",
                                    "knob film=trix400 # a negative",
                                    "knob grade=3",
                                    "end",
                                    "knob grade=4",
                                    "undo 2",
                                    "redo 1",
                                    "ab",
                                    "ab b",
                                    "knob grade=1",
                                    "ab keep-b",
                                    "crop-begin",
                                    "crop-drag right -20 0",
                                    "crop-end",
                                    "zoom 1:1",
                                    "zoom fit",
                                    "stats"});
    EXPECT_EQ(done.status, 0) << done.err;
    const Json stats = Json::parse(done.out.substr(done.out.rfind("{\"")));
    EXPECT_EQ(stats["screen"], "develop");
    EXPECT_EQ(stats["undo"], 5) << "marks, film, grade, side B, crop";
    EXPECT_EQ(stats["zoom"], "Fit");
    EXPECT_EQ(stats["frames"], 3);
    const Json saved = frames();
    EXPECT_EQ(saved[1]["mark"], "picked");
    EXPECT_EQ(saved[0]["process"]["film"], "trix400");
    EXPECT_EQ(saved[0]["process"]["options"]["grade"], 1);
    EXPECT_LT(saved[0]["crop"][2].get<double>(), 1);
}

TEST_F(SessionCommandTest, ALineThatFailsIsToldAndTheNextGoesOn)
{
    const RunResult done = session(
        {"fly 3", "open 9", "knob grade=3", "mark 1 pink", "mark 3 reject", "open 'a.jpg", "wait sometime"});
    EXPECT_EQ(done.status, 2);
    EXPECT_EQ(done.messages().size(), 6u) << done.err;
    EXPECT_NE(done.err.find("line 1"), std::string::npos) << done.err;
    EXPECT_EQ(frames()[2]["mark"], "rejected");
    EXPECT_EQ(tamlo({"session", "none"}).status, 2);
}

TEST_F(SessionCommandTest, RollsArePickedUpAndPutDownInOneSession)
{
    ASSERT_EQ(session({"mark 1 reject"}).status, 0);
    ASSERT_EQ(session({"mark 1 pick"}).status, 0); // leaves a copy of the one before
    const RunResult done = session(
        {"new second 'photos/a.jpg'", "new roll", "backups --json", "recent", "open 1", "mark-targets reject",
         "preview 1 -o seen.png --tier proxy --fit 800x600", "knob film=trix400",
         "export 1 --to . --type png --scale 0.25", "export 1 --to . --resume", "open roll.tamlo", "stats"});
    EXPECT_EQ(done.status, 2) << done.err;
    EXPECT_EQ(done.messages().size(), 3u)
        << "a roll that is there, the report, an option of the batch: " << done.err;
    EXPECT_TRUE(fs::exists(scratch_ / "second.tamlo") && fs::exists(scratch_ / "seen.png"));
    EXPECT_TRUE(fs::exists(scratch_ / "a_tamlo.png")) << done.out;
    const Json stats = Json::parse(done.out.substr(done.out.rfind("{\"")));
    EXPECT_EQ(stats["frames"], 3);
    const Json second = Json::parse(tamlo({"project", "show", "second", "--json"}).out)["frames"];
    EXPECT_EQ(second[0]["mark"], "rejected") << "saved when it was left";
    const Json copies = Json::parse(tamlo({"project", "backups", "roll", "--json"}).out);
    ASSERT_FALSE(copies.empty());
    const std::string stamp = copies.back()["stamp"];
    const RunResult back = session({"restore " + stamp + " -o older", "stats"});
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_TRUE(fs::exists(scratch_ / "older.tamlo"));
}

TEST_F(SessionCommandTest, RecipesAndProfilesAreWorkedOnLineByLine)
{
    const RunResult done = session({"open 1",
                                    "wait proxy",
                                    "preset-apply tintype film,develop",
                                    "preset-save 'My Look'",
                                    "knob push=1",
                                    "end",
                                    "preset-save 'My Look' copy",
                                    "preset-update my_look",
                                    "preset-rename my_look Another name",
                                    "preset-copy my_look",
                                    "preset-export my_look out.tpreset",
                                    "preset-import copy out.tpreset",
                                    "preset-delete my_look_2",
                                    "preset-delete tintype",
                                    "undo",
                                    "profile-copy films trix400",
                                    "profile-delete films trix400_copy",
                                    "profile-restore",
                                    "profile-delete films trix400",
                                    "copy-settings print",
                                    "paste-settings block",
                                    "peek grade=1",
                                    "crop-begin",
                                    "crop-aspect 1:1",
                                    "crop-tilt 3",
                                    "crop-frame max",
                                    "crop-end",
                                    "undo-to 1",
                                    "select-all"});
    EXPECT_EQ(done.status, 1) << done.err;
    EXPECT_EQ(done.messages().size(), 1u) << "a profile of the program stays: " << done.err;
    const fs::path presets = scratch_ / "user" / "presets";
    for (const char* name : {"my_look", "my_look_copy", "my_look_2"})
        EXPECT_EQ(fs::exists(presets / (std::string(name) + ".tpreset")), false) << name << " was undone";
    EXPECT_TRUE(fs::exists(scratch_ / "out.tpreset"));
    EXPECT_TRUE(fs::exists(scratch_ / "user" / "profiles" / "films" / "trix400_copy.tprofile"));
    EXPECT_EQ(frames()[0]["process"]["film"], "collodion_wet");
}

TEST_F(SessionCommandTest, EventsTellWhatChanged)
{
    const RunResult done = session({"mark 2 pick", "mark 2 pick", "order reverse"}, true);
    ASSERT_EQ(done.status, 0) << done.err;
    std::istringstream lines(done.out);
    std::set<std::string> concerns;
    int dones = 0, moved = 0;
    for (std::string line; std::getline(lines, line);) {
        const Json event = Json::parse(line);
        dones += event["event"] == "done";
        if (event["event"] != "changed") continue;
        for (const Json& concern : event["concerns"]) concerns.insert(concern);
        if (dones == 2 && event.contains("rows")) moved = event["rows"];
    }
    EXPECT_EQ(dones, 3);
    EXPECT_TRUE(concerns.contains("roll") && concerns.contains("document"));
    EXPECT_EQ(moved, 2) << "of three rows one stays";
}

TEST_F(SessionCommandTest, WordsArePartedAsInAShell)
{
    using Words = std::vector<std::string>;
    EXPECT_EQ(cli::wordsOf("  open  'my photo.jpg' \"it's\" a\\ b # no more"),
              (Words{"open", "my photo.jpg", "it's", "a b"}));
    EXPECT_EQ(cli::wordsOf("set x#1 stamp_text=''"), (Words{"set", "x#1", "stamp_text="}));
    EXPECT_TRUE(cli::wordsOf("# nothing").empty());
    EXPECT_THROW(cli::wordsOf("open \"x"), cli::UsageError);
}

TEST_F(SessionCommandTest, TheRackTellsItsKnobs)
{
    ASSERT_EQ(tamlo({"project", "set", "roll", "1", "film=trix400", "paper=bw_neutral", "grade=3"}).status,
              0);
    const Json rack = Json::parse(tamlo({"rack", "roll", "1", "--json"}).out);
    EXPECT_EQ(rack["film"]["id"], "trix400");
    EXPECT_EQ(rack["cards"].size(), 8u);
    std::optional<Json> grade;
    for (const Json& card : rack["cards"])
        for (const Json& knob : card["knobs"])
            if (knob["key"] == "grade") grade = knob;
    ASSERT_TRUE(grade);
    EXPECT_EQ((*grade)["value"], 3);
    EXPECT_EQ((*grade)["range"], Json::array({0, 5}));
    EXPECT_EQ((*grade)["step"], 0.1);
    const RunResult told = tamlo({"rack", "roll", "1"});
    EXPECT_NE(told.out.find("Changed: film, printing process, grade"), std::string::npos) << told.out;
    EXPECT_EQ(tamlo({"rack", "roll", "7"}).status, 2);
}

} // namespace
} // namespace tamlo::test
