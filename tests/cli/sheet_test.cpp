// tamlo project sheet and the sheet of the headless run: files that other programs take, and nothing left
// behind where something goes wrong.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

/// What a program of the system says, and its status.
std::pair<std::string, int> outputOf(const std::string& command)
{
    std::string out;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) out += static_cast<char>(c);
    return {out, pclose(pipe)};
}

class ProjectSheetTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(scratch_ / "photos");
        for (const char* name : {"Ночь.jpg", "Кот Ёжик.jpg", "p3.jpg"}) {
            const fs::path photo = scratch_ / "photos" / name;
            fs::copy_file(fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg", photo);
            std::ofstream(photo, std::ios::app) << name;
        }
        ASSERT_EQ(run({"new", "roll", "photos", "--title", "Лето"}).status, 0);
        ASSERT_EQ(run({"set", "roll", "1", "film=portra400"}).status, 0);
    }

    RunResult run(std::vector<std::string> arguments, RunSettings settings = {}) const
    {
        arguments.insert(arguments.begin(), "project");
        return tamlo(std::move(arguments), std::move(settings));
    }
    RunResult tamlo(const std::vector<std::string>& arguments, RunSettings settings) const
    {
        settings.folder = scratch_.path();
        settings.environment["TAMLO_USER_DIR"] = (scratch_ / "user").string();
        settings.environment["TAMLO_PROXY_DIR"] = (scratch_ / "cache").string();
        settings.environment["XDG_RUNTIME_DIR"] = scratch_.path().string();
        settings.environment["LANG"] = "C.UTF-8";
        return runTamlo(arguments, settings);
    }
    RunResult sheet(const std::string& file, std::vector<std::string> more = {},
                    RunSettings settings = {}) const
    {
        std::vector<std::string> arguments{"sheet", "roll", "-o", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(std::move(arguments), std::move(settings));
    }
    std::string read(const std::string& file) const { return readFile(scratch_ / file); }

    ScratchFolder scratch_;
};

TEST_F(ProjectSheetTest, APdfIsSoundSearchableAndTheSameTwice)
{
    const RunResult made = sheet("a.pdf");
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(made.out, "a.pdf\n");
    EXPECT_NE(made.err.find("Contact sheet: a.pdf (1 page, 6 per row)"), std::string::npos) << made.err;
    EXPECT_EQ(sheet("b.pdf").status, 0);
    EXPECT_TRUE(read("a.pdf") == read("b.pdf"));
    const std::string file = "'" + (scratch_ / "a.pdf").string() + "'";
    const auto [checked, status] = outputOf("qpdf --check " + file);
    EXPECT_EQ(status, 0) << checked;
    const std::string text = outputOf("pdftotext -layout " + file + " -").first;
    for (const char* part :
         {"TAMLO · ЛЕТО · 1 of 3 with settings", "3 EXP", "Ночь", "Кот Ёжик", "p3", "sheet 1 of 1"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
}

TEST_F(ProjectSheetTest, PagesAndPicturesByTheName)
{
    ASSERT_EQ(run({"mark", "roll", "2", "reject"}).status, 0);
    const RunResult made = sheet("page.png", {"--cols", "1", "--page", "3", "--json", "--originals"});
    EXPECT_EQ(made.status, 0) << made.err;
    const Json done = Json::parse(made.out);
    EXPECT_EQ(done["event"], "done");
    EXPECT_EQ(done["frames"], 3);
    EXPECT_EQ(done["pages"], 1);
    EXPECT_EQ(read("page.png").substr(16, 8), std::string("\0\0\x04\xa6\0\0\x06\x94", 8)) << "1190 x 1684";
    EXPECT_EQ(sheet("pages.html").status, 0);
    EXPECT_NE(read("pages.html").find("02 × Кот Ёжик"), std::string::npos);
    for (const auto& wrong : std::vector<std::vector<std::string>>{{"x.doc"},
                                                                   {"no/x.pdf"},
                                                                   {"photos/p3.jpg"},
                                                                   {"x.png", "--page", "2"},
                                                                   {"x.png", "--page", "0"},
                                                                   {"x.pdf", "--cols", "7"}}) {
        const RunResult refused = sheet(wrong[0], {wrong.begin() + 1, wrong.end()});
        EXPECT_EQ(refused.status, 2) << wrong[0] << refused.err;
        EXPECT_TRUE(refused.out.empty());
    }
}

TEST_F(ProjectSheetTest, DamageAndFaultsLeaveNoHalfSheet)
{
    ASSERT_EQ(sheet("whole.pdf").status, 0);
    writeFile(scratch_ / "whole.pdf", "an older sheet");
    RunSettings full;
    full.fileSizeLimit = 4096;
    const RunResult failed = sheet("whole.pdf", {}, full);
    EXPECT_EQ(failed.status, 1);
    EXPECT_NE(failed.err.find("The sheet could not be written"), std::string::npos) << failed.err;
    EXPECT_EQ(read("whole.pdf"), "an older sheet");

    int damaged = 0;
    for (const auto& tile : fs::directory_iterator(scratch_ / "cache" / "thumbs"))
        if (++damaged == 1) writeFile(tile.path(), readFile(tile.path()).substr(0, 300));
    ASSERT_EQ(damaged, 3);
    const RunResult empty = sheet("damaged.pdf");
    const bool isTold = empty.err.find("cells left empty") != std::string::npos;
    EXPECT_EQ(empty.status, isTold ? 1 : 0) << "or it has been made anew in time: " << empty.err;
    EXPECT_EQ(outputOf("qpdf --check '" + (scratch_ / "damaged.pdf").string() + "'").second, 0);
    EXPECT_EQ(sheet("mended.pdf").status, 0);

    fs::remove_all(scratch_ / "cache");
    fs::rename(scratch_ / "photos" / "p3.jpg", scratch_ / "away.jpg");
    const RunResult lost = sheet("lost.pdf");
    EXPECT_EQ(lost.status, 1);
    EXPECT_NE(lost.err.find("p3.jpg"), std::string::npos) << lost.err;
}

TEST_F(ProjectSheetTest, TheHeadlessRunDrawsAPage)
{
    RunSettings service;
    service.environment = {{"TAMLO_SERVICE", "1"},
                           {"TAMLO_SMOKE_IN", (scratch_ / "photos").string()},
                           {"TAMLO_SMOKE_OUT", (scratch_ / "out.png").string()},
                           {"TAMLO_SMOKE_SHEET", (scratch_ / "sheet.png").string()}};
    const RunResult made = tamlo({}, service);
    EXPECT_EQ(made.status, 0) << made.err;
    EXPECT_TRUE(made.err.starts_with("smoke ok: 3 frame(s) · ")) << made.err;
    EXPECT_EQ(read("sheet.png").substr(16, 8), std::string("\0\0\x04\xa6\0\0\x06\x94", 8));
    service.environment["TAMLO_SMOKE_SHEET"] = (scratch_ / "no" / "sheet.png").string();
    EXPECT_EQ(tamlo({}, service).status, 1);
}

} // namespace
} // namespace tamlo::test
