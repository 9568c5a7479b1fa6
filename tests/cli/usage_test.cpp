// The command line itself: what it refuses before any picture is opened, and what list and show answer.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kPicture = fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg";

/// A folder with a picture under several names and links.
class UsageTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"a.jpg", "sub/a.jpg", "a-tamlo.jpg"}) {
            fs::create_directories((scratch_ / name).parent_path());
            fs::copy_file(kPicture, scratch_ / name);
        }
        fs::create_symlink("a.jpg", scratch_ / "soft.jpg");
        fs::create_hard_link(scratch_ / "a.jpg", scratch_ / "hard.jpg");
        fs::create_directory_symlink("sub", scratch_ / "linked");
        fs::create_directory(scratch_ / "folder.jpg");
        before_ = scratch_.listing();
        bytes_ = readFile(scratch_ / "a.jpg");
    }

    RunResult run(const std::vector<std::string>& arguments) const
    {
        RunSettings settings;
        settings.folder = scratch_.path();
        return runTamlo(arguments, settings);
    }

    ScratchFolder scratch_;
    std::vector<std::string> before_;
    std::string bytes_;
};

struct Refusal {
    std::vector<std::string> arguments;
    std::string says;
};

TEST_F(UsageTest, RefusesInOneSentenceAndTouchesNothing)
{
    const std::vector<Refusal> refusals{
        {{}, "subcommand"},
        {{"devlop", "a.jpg"}, "devlop"},
        {{"develop"}, "INPUT"},
        {{"develop", "a.jpg", "--grain"}, "--grain"},
        {{"develop", "a.jpg", "--quality", "0"}, "--quality"},
        {{"develop", "a.jpg", "--quality", "high"}, "--quality"},
        {{"develop", "a.jpg", "--long", "0"}, "--long"},
        {{"develop", "a.jpg", "--scale", "2"}, "--scale"},
        {{"develop", "a.jpg", "--rotate", "45"}, "--rotate 45"},
        {{"develop", "a.jpg", "--crop", "0,0,1"}, "--crop 0,0,1"},
        {{"plan", "a.jpg", "--border", "0.9"}, "--border 0.9"},
        {{"plan", "a.jpg", "--frame-size", "6x99"}, "6x9"},
        {{"plan"}, "INPUT"},
        {{"develop", "a.jpg", "--seed", "x"}, "--seed"},
        {{"develop", "a.jpg", "--film", "portra40"}, "did you mean portra400?"},
        {{"develop", "a.jpg", "--film", "../films/portra400"}, "there is no film"},
        {{"develop", "a.jpg", "--lens", "modernclean"}, "did you mean modern_clean?"},
        {{"develop", "a.jpg", "--paper", "color_ra5"}, "did you mean color_ra4?"},
        {{"develop", "a.jpg", "--filter-cut", "red_92"}, "no filter 'red_92'; did you mean red_29?"},
        {{"develop", "a.jpg", "--filter-diffusion", "promist"}, "did you mean promist_1?"},
        {{"develop", "a.jpg", "--filter-rays", "star_7"}, "did you mean star_"},
        {{"develop", "a.jpg", "--filter-grad", "nd2_soft"}, "did you mean grad_nd2_soft?"},
        {{"develop", "a.jpg", "--set", "filter_rays=star_7"}, "did you mean star_"},
        {{"develop", "a.jpg", "--set", "filter=../filters/red_29"}, "there is no filter"},
        {{"develop", "a.jpg", "--filter-rays"}, "--filter-rays"},
        {{"develop", "a.jpg", "--set", "border"}, "key=value"},
        {{"develop", "a.jpg", "--set", "grad=1"}, "grade"},
        {{"develop", "a.jpg", "--set", "grade=soft"}, "number"},
        {{"develop", "a.jpg", "--set", "wb_mode=shot"}, "asshot"},
        {{"develop", "a.jpg", "--set", "mirror=true", "grade=soft"}, "number"},
        {{"develop", "a.jpg", "-o", "b.webp"}, "output extension .webp (use jpg/png/tif)"},
        {{"develop", "a.jpg", "-o", "b"}, "use jpg/png/tif"},
        {{"develop", "a.jpg", "-o", "folder.jpg"}, "is a folder"},
        {{"develop", "a.jpg", "sub/a.jpg", "-o", "b.jpg"}, "--out-dir"},
        {{"develop", "a.jpg", "-o", "b.jpg", "--out-dir", "d"}, "--out-dir"},
        {{"develop", "a.jpg", "sub/a.jpg"}, "both a.jpg and sub/a.jpg"},
        {{"develop", "a.jpg", "a.jpg", "--out-dir", "d"}, "both a.jpg and a.jpg"},
        {{"develop", "a.jpg", "-o", "a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "sub/../a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "soft.jpg"}, "is a source"},
        {{"develop", "soft.jpg", "-o", "a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "-o", "hard.jpg"}, "is a source"},
        {{"develop", "sub/a.jpg", "-o", "linked/a.jpg"}, "is a source"},
        {{"develop", "a.jpg", "a-tamlo.jpg"}, "would be written over a-tamlo.jpg"},
        {{"list"}, "KIND"},
        {{"list", "moons"}, "films, lenses, papers, filters and presets"},
        {{"show", "film"}, "ID"},
        {{"show", "film", "portra4000"}, "did you mean portra400?"},
    };
    for (const Refusal& refusal : refusals) {
        std::string line;
        for (const std::string& argument : refusal.arguments) line += argument + " ";
        SCOPED_TRACE(line);
        const RunResult result = run(refusal.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find(refusal.says), std::string::npos) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_EQ(scratch_.listing(), before_);
    EXPECT_EQ(readFile(scratch_ / "a.jpg"), bytes_);
}

TEST_F(UsageTest, HelpAndVersionAreResults)
{
    const std::vector<Refusal> answers{
        {{"--help"}, "develop"}, {{"develop", "--help"}, "--out-dir"}, {{"--version"}, "tamlo "}};
    for (const Refusal& answer : answers) {
        const RunResult result = run(answer.arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.out.find(answer.says), std::string::npos) << result.out;
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(UsageTest, ListsEveryKindAndShowsEveryProfile)
{
    for (const std::string kind : {"films", "lenses", "papers", "filters"}) {
        SCOPED_TRACE(kind);
        const RunResult plain = run({"list", kind});
        const RunResult json = run({"list", kind, "--json"});
        EXPECT_EQ(plain.status, 0);
        EXPECT_EQ(json.status, 0);
        const nlohmann::json list = nlohmann::json::parse(json.out);
        EXPECT_EQ(std::count(plain.out.begin(), plain.out.end(), '\n'),
                  static_cast<std::ptrdiff_t>(list.size()));
        ASSERT_FALSE(list.empty());
        for (const nlohmann::json& entry : list) {
            const std::string id = entry.at("id");
            EXPECT_NE(plain.out.find(id), std::string::npos);
            const RunResult shown = run({"show", kind, id});
            EXPECT_EQ(shown.status, 0);
            EXPECT_TRUE(nlohmann::json::parse(shown.out).is_object()) << id;
        }
    }
}

TEST_F(UsageTest, AFullOutputIsAnError)
{
    RunSettings settings;
    settings.folder = scratch_.path();
    settings.outputTo = "/dev/full";
    const RunResult result = runTamlo({"list", "films"}, settings);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.messages().size(), 1u);
}

// The data sheet is well-formed in its names, holds a curve a layer, and is not left behind by a failure.
TEST_F(UsageTest, MeasuresAFilmAndDrawsItsDataSheet)
{
    const RunResult silver =
        run({"measure", "trix400", "--paper", "bw_neutral", "--json", "--plot", "sheet.svg"});
    ASSERT_EQ(silver.status, 0) << silver.err;
    const nlohmann::json report = nlohmann::json::parse(silver.out);
    EXPECT_EQ(report.at("layers").size(), 1u);
    EXPECT_EQ(report.at("layers")[0].at("density").size(), 21u);
    EXPECT_NEAR(report.at("print").at("density")[10].get<double>(), 0.7447, 1e-3);
    const std::string sheet = readFile(scratch_ / "sheet.svg");
    EXPECT_NE(sheet.find("Kodak Tri-X 400"), std::string::npos);
    EXPECT_TRUE(sheet.ends_with("</svg>\n"));
    EXPECT_EQ(std::count(sheet.begin(), sheet.end(), '<'), std::count(sheet.begin(), sheet.end(), '>'));

    const RunResult pushed = run({"measure", "trix400", "--set", "push=2"});
    EXPECT_NE(pushed.out.find("silver"), std::string::npos);
    EXPECT_EQ(run({"measure", "trix400", "--plot", "a.jpg/sheet.svg"}).status, 1);
    EXPECT_EQ(run({"measure", "fp100c", "--plot", "instant.svg"}).status, 1);
    EXPECT_EQ(run({"measure", "trix400", "--plot", "sheet.pdf"}).status, 2);
    EXPECT_FALSE(fs::exists(scratch_ / "instant.svg"));
}

} // namespace
} // namespace tamlo::test
