// What a print tells of itself, and another photograph printed the same way.
#include "core/io/recipe.h"
#include "tests/cli/run_tamlo.h"
#include "tests/support/file_reference.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSamples = TAMLO_SAMPLES;
const fs::path kPicture = kSamples / "metadata" / "with-gps.jpg";
const fs::path kOther = kSamples / "orientation" / "orientation-6.jpg";

class RecipeRunTest : public ::testing::Test {
protected:
    RunResult run(std::vector<std::string> arguments, const std::string& userFolder = "none") const
    {
        if (arguments[0] == "develop") arguments.insert(arguments.end(), {"--long", "64"});
        return runTamlo(arguments, {.folder = scratch_.path(),
                                    .environment = {{"TAMLO_USER_DIR", (scratch_ / userFolder).string()}},
                                    .fileSizeLimit = {},
                                    .interruptAtPhase = {},
                                    .outputTo = {}});
    }
    /// Develops and expects it to succeed; the bytes of the file.
    std::string develop(const fs::path& input, const std::string& output, std::vector<std::string> more,
                        const std::string& userFolder = "none") const
    {
        more.insert(more.begin(), {"develop", input.string(), "-o", output});
        const RunResult result = run(more, userFolder);
        EXPECT_EQ(result.status, 0) << result.err;
        return result.status == 0 ? readFile(scratch_ / output) : "";
    }

    ScratchFolder scratch_;
};

TEST_F(RecipeRunTest, ThePrintIsMadeAgainOfItsRecipe)
{
    const std::vector<std::string> choices{"--film",     "velvia50", "--paper",
                                           "color_scan", "--format", "120",
                                           "--set",      "push=0.5", "stamp_text=a \"b\" Ж",
                                           "--rotate",   "90"};
    for (const std::string extension : {".jpg", ".png", ".tif"}) {
        const std::string print = "a" + extension;
        const std::string first = develop(kPicture, print, choices);
        // The same bytes of the same photograph under another name: all that chance draws is in the recipe.
        fs::copy_file(kPicture, scratch_ / "renamed.jpg", fs::copy_options::overwrite_existing);
        EXPECT_TRUE(develop(scratch_ / "renamed.jpg", "b" + extension, {"--like", print}) == first) << print;
        std::vector<std::string> spelled = choices;
        spelled.insert(spelled.end(), {"--seed", std::to_string(readRecipe(scratch_ / print).options.seed)});
        EXPECT_TRUE(develop(kOther, "c" + extension, {"--like", print}) ==
                    develop(kOther, "d" + extension, spelled))
            << print;
    }
    // The cut to a frame is made for each picture anew, in the way that was chosen.
    for (const std::vector<std::string>& way :
         {std::vector<std::string>{"--format", "120", "--fit", "inside"}, {"--fit", "crop"}}) {
        develop(kPicture, "f.jpg", way);
        std::vector<std::string> spelled = way;
        spelled.insert(spelled.end(),
                       {"--seed", std::to_string(readRecipe(scratch_ / "f.jpg").options.seed)});
        EXPECT_TRUE(develop(kOther, "g.jpg", {"--like", "f.jpg"}) == develop(kOther, "h.jpg", spelled))
            << way[1];
    }
    const RunResult like = run({"develop", kOther.string(), "-o", "e.jpg", "--like", "a.jpg"});
    EXPECT_NE(like.err.find("alone: rotate\n"), std::string::npos) << like.err; // a turn suits one photograph
}

TEST_F(RecipeRunTest, OtherOptionsGoOnTop)
{
    develop(kPicture, "a.jpg", {"--film", "trix400", "--set", "grade=3", "print_ev=0.5", "--seed", "5"});
    develop(kPicture, "b.jpg", {"--like", "a.jpg", "--film", "dryplate_ortho", "--set", "grade=4"});
    const Recipe b = readRecipe(scratch_ / "b.jpg");
    EXPECT_EQ(b.film, "dryplate_ortho");
    EXPECT_EQ(b.options.seed, 5);
    EXPECT_EQ(b.options.printEv, 0.5);
    EXPECT_EQ(b.options.grade, 4);
    EXPECT_EQ(b.options.format, FilmFormat::plate); // 35 mm was the other film's own, not a choice
    develop(kPicture, "c.jpg", {"--film", "trix400", "--format", "120"});
    develop(kPicture, "d.jpg", {"--like", "c.jpg", "--film", "dryplate_ortho"});
    EXPECT_EQ(readRecipe(scratch_ / "d.jpg").options.format, FilmFormat::f120);
}

TEST_F(RecipeRunTest, AFilmOfTheUsersTravelsInThePrint)
{
    nlohmann::json film = nlohmann::json::parse(run({"show", "film", "trix400"}).out);
    film["name"] = film["name_en"] = "Mine";
    film["grain"]["size_um"] = 3.0;
    writeFile(scratch_ / "mine.json", film.dump());
    ASSERT_EQ(run({"import", "mine.json"}, "home").status, 0);
    const std::string print = develop(kPicture, "a.jpg", {"--film", "mine"}, "home");
    EXPECT_TRUE(develop(kPicture, "b.jpg", {"--like", "a.jpg"}) == print) << "where nobody has that film";
    film["grain"]["size_um"] = 0.5;
    writeFile(scratch_ / "mine.json", film.dump());
    ASSERT_EQ(run({"import", "mine.json", "--on-conflict", "replace"}, "home").status, 0);
    EXPECT_TRUE(develop(kPicture, "c.jpg", {"--like", "a.jpg"}, "home") == print) << "changed since";
    EXPECT_FALSE(develop(kPicture, "d.jpg", {"--film", "mine"}, "home") == print);
}

TEST_F(RecipeRunTest, ShowTellsTheRecipeAndItsCommandLine)
{
    develop(kPicture, "a.jpg", {"--film", "trix400", "--set", "grade=3", "stamp_text=Ann's"});
    const RunResult told = run({"show", "recipe", "a.jpg"});
    EXPECT_EQ(told.status, 0) << told.err;
    EXPECT_NE(told.out.find("Kodak Tri-X 400 (trix400)"), std::string::npos) << told.out;
    EXPECT_NE(told.out.find("grade=3 src_lights=1 'stamp_text=Ann'\\''s'"), std::string::npos) << told.out;
    const nlohmann::json object = nlohmann::json::parse(run({"show", "recipe", "a.jpg", "--json"}).out);
    EXPECT_EQ(object["film"], "trix400");
    EXPECT_EQ(object["options"]["grade"], 3);

    develop(kPicture, "bare.jpg", {"--no-recipe"});
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"show", "recipe", "bare.jpg"},
             {"show", "recipe", kPicture.string()},
             {"show", "recipe", "missing.jpg"},
             {"develop", kOther.string(), "-o", "x.jpg", "--like", "bare.jpg"}}) {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.messages().size(), 1u) << result.err;
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(run({"develop", kOther.string(), "--like", "a.jpg", "--preset", "tintype"}).status, 2);
    EXPECT_FALSE(fs::exists(scratch_ / "x.jpg"));
}

TEST_F(RecipeRunTest, MetadataOfTheSourceComeThroughButNoPlace)
{
    develop(kPicture, "a.jpg", {"--print-cm", "20", "--lang", "ru"});
    const auto told = readMetadata((scratch_ / "a.jpg").string());
    EXPECT_EQ(told.at("Exif.Image.Make"), "Synthetic");
    EXPECT_EQ(told.at("Exif.Image.Artist"), "Clemens Engelhardt");
    EXPECT_EQ(told.at("Exif.Image.Copyright"), "CC0");
    EXPECT_EQ(told.at("Exif.Photo.DateTimeOriginal"), "2024:05:17 12:34:56");
    EXPECT_EQ(told.at("Exif.Photo.OffsetTimeOriginal"), "+02:00");
    EXPECT_NE(told.at("Iptc.Application2.Keywords").find("RA-4 оптическая"), std::string::npos)
        << told.at("Iptc.Application2.Keywords");
    for (const auto& [key, value] : told) {
        EXPECT_EQ(key.find("GPS"), std::string::npos);
        EXPECT_EQ(key.find("City"), std::string::npos);
    }
    EXPECT_NEAR(readDensity((scratch_ / "a.jpg").string()), 64 / 20.0 * 2.54, 0.5);

    develop(kPicture, "b.jpg", {"--author", "Ann", "--copyright", "(c) Ann"});
    EXPECT_EQ(readMetadata((scratch_ / "b.jpg").string()).at("Exif.Image.Artist"), "Ann");
    fs::create_directory(scratch_ / "home");
    writeFile(scratch_ / "home" / "preferences", "exportAuthor=Ben\n");
    develop(kPicture, "c.jpg", {"--author", " "}, "home");
    EXPECT_EQ(readMetadata((scratch_ / "c.jpg").string()).at("Exif.Image.Artist"), "Ben");
}

} // namespace
} // namespace tamlo::test
