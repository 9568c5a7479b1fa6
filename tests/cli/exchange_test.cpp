// Recipes on the command line, and profiles and presets that come from elsewhere or go there.
#include "tests/cli/run_tamlo.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const fs::path kPicture = fs::path(TAMLO_SAMPLES) / "color" / "fig-srgb.jpg";

class ExchangeTest : public ::testing::Test {
protected:
    ExchangeTest() { fs::copy_file(kPicture, scratch_ / "a.jpg"); }

    RunResult run(const std::vector<std::string>& arguments) const
    {
        RunSettings settings;
        settings.folder = scratch_.path();
        settings.environment["TAMLO_USER_DIR"] = (scratch_ / "user").string();
        settings.environment["LANG"] = "en_GB.UTF-8";
        return runTamlo(arguments, settings);
    }

    /// The picture that these options make.
    std::string developed(std::vector<std::string> options) const
    {
        options.insert(options.begin(), {"develop", "a.jpg", "-o", "out.png", "--long", "120"});
        const RunResult result = run(options);
        EXPECT_EQ(result.status, 0) << result.err;
        return readFile(scratch_ / "out.png");
    }

    ScratchFolder scratch_;
};

// The same film, lens, paper and options, named one by one from what `show` tells.
TEST_F(ExchangeTest, APresetIsItsProfilesAndOptions)
{
    for (const std::string id : {"square_push_black", "portra_airy", "dolgiy_vecher", "pervomai"}) {
        SCOPED_TRACE(id);
        const json preset = json::parse(run({"show", "preset", id}).out);
        const std::vector<std::string> triple{"--film",          preset.at("stock"), "--lens",
                                              preset.at("lens"), "--paper",          preset.at("paper")};
        std::vector<std::string> byHand = triple;
        for (const auto& [key, value] : preset.at("opts").items())
            byHand.insert(
                byHand.end(),
                {"--set", key + "=" + (value.is_string() ? value.get<std::string>() : value.dump())});
        const std::string picture = developed({"--preset", id});
        EXPECT_EQ(picture, developed(byHand));
        EXPECT_NE(picture, developed(triple)) << "the options say something";
    }
}

TEST_F(ExchangeTest, WhatTheUserSaysGoesOverThePreset)
{
    const std::string plain = developed({"--preset", "trix_natural"});
    EXPECT_NE(developed({"--preset", "trix_natural", "--set", "grade=5"}), plain);
    EXPECT_EQ(developed({"--preset", "trix_natural", "--set", "grade=2.3"}), plain) << "the preset's own";
    EXPECT_NE(developed({"--preset", "trix_natural", "--film", "fp4"}), plain);
    writeFile(scratch_ / "options.json", R"({"printCm": 28, "grade": 2.3})");
    EXPECT_EQ(developed({"--preset", "trix_natural", "--options", "options.json"}), plain);
    // A recipe's paper is left where the film can't be printed on it.
    EXPECT_EQ(developed({"--preset", "tri_matritsy", "--film", "portra400", "--set", "mat=none"}),
              developed({"--preset", "tri_matritsy", "--film", "portra400", "--paper", "color_ra4", "--set",
                         "mat=none"}));
    const RunResult typo = run({"develop", "a.jpg", "--preset", "trix_naturel"});
    EXPECT_EQ(typo.status, 2);
    EXPECT_NE(typo.err.find("did you mean trix_natural?"), std::string::npos) << typo.err;
    EXPECT_EQ(run({"develop", "a.jpg", "--preset", "no/such.tpreset"}).status, 1);
}

TEST_F(ExchangeTest, AFilesProfilesTravelWithIt)
{
    json film = json::parse(run({"show", "film", "trix400"}).out);
    film["name"] = "Mine";
    film["negative"]["gamma"] = 0.9;
    json preset = {{"id", "gift"},
                   {"name", "Gift"},
                   {"stock", "mine"},
                   {"paper", "bw_neutral"},
                   {"opts", {{"grade", 9}}}};
    preset["embedded"]["films"]["mine"] = film;
    writeFile(scratch_ / "gift.tpreset", preset.dump());
    writeFile(scratch_ / "mine.tprofile", film.dump());

    const std::string fromFile = developed({"--preset", "gift.tpreset"});
    EXPECT_FALSE(fs::exists(scratch_ / "user")) << "a file is used without being taken in";
    const RunResult noted = run({"plan", "a.jpg", "--preset", "gift.tpreset"});
    EXPECT_NE(noted.err.find("clamped: grade: 9 → 5"), std::string::npos) << noted.err;

    EXPECT_EQ(run({"import", "gift.tpreset"}).out, "The profile “Gift” was added as gift\n");
    EXPECT_EQ(developed({"--preset", "gift"}), fromFile);
    EXPECT_EQ(developed({"--film", "mine", "--paper", "bw_neutral", "--set", "grade=5"}), fromFile);
    EXPECT_NE(run({"list", "presets"}).out.find("gift "), std::string::npos);

    const RunResult again = run({"import", "gift.tpreset"});
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.err.find("(answer with --on-conflict replace, copy or cancel)"), std::string::npos);
    EXPECT_EQ(run({"import", "gift.tpreset", "--on-conflict", "replace"}).status, 0);
    EXPECT_EQ(run({"import", "gift.tpreset", "--on-conflict", "copy"}).out,
              "The profile “Gift (2)” was added as gift_2\n");
    EXPECT_EQ(run({"import", "gift.tpreset", "--on-conflict", "cancel"}).out, "");
    for (const char* answer : {"perhaps", "2", ""})
        EXPECT_EQ(run({"import", "gift.tpreset", "--on-conflict", answer}).status, 2) << answer;
}

TEST_F(ExchangeTest, WhatIsExportedComesBack)
{
    struct Case {
        const char *kind, *id;
    };
    for (const Case& c :
         {Case{"film", "velvia50"}, Case{"lens", "petzval1900"}, Case{"paper", "gum_tricolor"},
          Case{"paper", "ambrotype"}, Case{"filter", "star_6"}, Case{"filter", "grad_tobacco2"}}) {
        SCOPED_TRACE(c.id);
        const std::string file = std::string("my_") + c.id + ".tprofile";
        EXPECT_EQ(run({"export", c.kind, c.id, file}).out, file + "\n");
        EXPECT_EQ(run({"check", file}).status, 0);
        const RunResult taken = run({"import", file});
        EXPECT_EQ(taken.status, 0) << taken.err;
        EXPECT_EQ(taken.err, "");
        json carried = json::parse(run({"show", c.kind, c.id}).out);
        carried["format"] = 1;
        EXPECT_EQ(json::parse(run({"show", c.kind, std::string("my_") + c.id}).out), carried);
    }
    EXPECT_EQ(run({"export", "preset", "manhattan", "."}).out, "./manhattan.tpreset\n");
    EXPECT_EQ(run({"check", "manhattan.tpreset"}).out, "manhattan.tpreset: preset, Manhattan\n");
    EXPECT_EQ(run({"export", "film", "velvia", "x"}).status, 2);
    // A film of a carried name would never be seen, so it is not put in its place.
    fs::copy_file(scratch_ / "my_velvia50.tprofile", scratch_ / "velvia50.tprofile");
    EXPECT_EQ(run({"import", "velvia50.tprofile"}).status, 1);
    EXPECT_EQ(run({"import", "velvia50.tprofile", "--on-conflict", "replace"}).status, 1);
    EXPECT_EQ(run({"import", "velvia50.tprofile", "--on-conflict", "copy"}).out,
              "The profile “Fujifilm Velvia 50” was added as velvia50_2\n");
}

TEST_F(ExchangeTest, CheckTellsAllThatIsWrongWithEachFile)
{
    writeFile(scratch_ / "bad.tprofile",
              R"({"type": "bw", "negative": {"dmin": 1, "dmax": 0.5, "gamma": 0}, "gama": 2})");
    writeFile(scratch_ / "odd.tprofile", R"({"gains": [1, 1, 1], "bloomm": 2, "source_note": "x"})");
    writeFile(scratch_ / "text.tprofile", "hello");
    const RunResult result = run({"check", "bad.tprofile", "odd.tprofile", "text.tprofile", "none", "a.jpg"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "odd.tprofile: filter, profile without a name\n");
    const std::vector<std::string> messages = result.messages();
    ASSERT_EQ(messages.size(), 6u) << result.err;
    EXPECT_NE(messages[0].find("Dmax must be greater than Dmin (film: dmax 0.5, dmin 1)."),
              std::string::npos);
    EXPECT_NE(messages[1].find("The contrast (gamma) must be above zero (film: 0)."), std::string::npos);
    EXPECT_NE(messages[2].find("unknown fields, ignored: bloomm"), std::string::npos);
    EXPECT_NE(messages[3].find("text.tprofile"), std::string::npos);
    EXPECT_NE(messages[4].find("none"), std::string::npos);
    EXPECT_FALSE(fs::exists(scratch_ / "user"));

    nlohmann::json film = nlohmann::json::parse(run({"show", "film", "portra400"}).out);
    film["couplers"]["matrix"] = {{1, 0, 0}, {0, 1, 0}};
    writeFile(scratch_ / "crooked.tprofile", film.dump());
    const RunResult crooked = run({"check", "crooked.tprofile"});
    EXPECT_EQ(crooked.status, 0);
    EXPECT_NE(crooked.err.find("couplers.matrix is not three rows of three numbers"), std::string::npos)
        << crooked.err;
}

} // namespace
} // namespace tamlo::test
