#include "core/io/recipe.h"

#include "core/image/tamlo_error.h"
#include "core/io/image_writer.h"
#include "core/profiles/options/option_table.h"
#include "tests/io/loader_support.h"

#include <random>

namespace tamlo {
namespace {

/// A recipe with every option off its default, as far as its row lets it.
Recipe fullRecipe()
{
    Recipe recipe{
        "trix400", "modern_clean", "my paper", {}, "inside", "9.1", {{"papers", {{"my paper", {{"a", 1}}}}}},
        {}};
    for (const OptionRow& row : optionTable()) {
        JSONValue value;
        row.write(recipe.options, value);
        const double usual = value.is_number() ? value.get<double>() : 0;
        const double middle = row.low + (row.high - row.low) * 0.3713;
        switch (row.type) {
        case OptionType::number:
            setOption(recipe.options, row.key, std::to_string(row.hasRange ? middle : usual + 0.1));
            break;
        case OptionType::integer:
            setOption(recipe.options, row.key,
                      row.hasRange ? std::to_string(static_cast<int>(middle))
                                   : std::string(row.allowed.empty() ? "1234567" : row.allowed.back()));
            break;
        case OptionType::boolean:
            setOption(recipe.options, row.key, value == true ? "false" : "true");
            break;
        case OptionType::text:
            setOption(recipe.options, row.key,
                      row.allowed.empty() ? "Жаба \"<&>\"" : std::string(row.allowed.back()));
            break;
        case OptionType::numbers:
            setOption(recipe.options, row.key, "0.1,0.2,0.3");
            break;
        case OptionType::seeds:
            setOption(recipe.options, row.key, "film=3");
            break;
        case OptionType::crop:
            setOption(recipe.options, row.key, "0.1,0.2,0.3,0.4,-1.5");
            break;
        }
    }
    return recipe;
}

std::string errorOf(const std::string& text)
{
    return test::errorOf([&] { decodeRecipe(text, "print.jpg"); });
}

TEST(Recipe, EveryOptionComesBack)
{
    const Recipe recipe = fullRecipe();
    const Recipe read = decodeRecipe(*encodeRecipe(recipe), "");
    EXPECT_EQ(read.options, recipe.options);
    EXPECT_EQ(std::tie(read.film, read.lens, read.paper, read.fit, read.version, read.embedded),
              std::tie(recipe.film, recipe.lens, recipe.paper, recipe.fit, recipe.version, recipe.embedded));
    EXPECT_GT(offDefault(recipe.options).size(), optionTable().size() - 10); // the fixture does its work
    // A format that is none differs from the default, which is one.
    Recipe open = recipe;
    open.options.format.reset();
    EXPECT_EQ(decodeRecipe(*encodeRecipe(open), "").options, open.options);
    // What is at its default is not spelled out.
    EXPECT_EQ(encodeRecipe({"a", "b", "c", {}, {}, "1", {}, {}}),
              R"({"film":"a","format":1,"lens":"b","options":{},"paper":"c","seed":20260821,"version":"1"})");
}

TEST(Recipe, DamagedAndNewerOnesAreNamed)
{
    const std::string head = R"({"film":"a","lens":"b","paper":"c","seed":1,"version":"7.0",)";
    const std::pair<std::string, const char*> cases[] = {
        {"", "is damaged"},
        {"[]", "is damaged"},
        {"{}", "format"},
        {R"({"format":1})", "film"},
        {head + R"("format":1,"options":{"grade":"hard"}})", "grade"},
        {head + R"("format":1,"options":{"grade":99}})", "grade"},
        {head + R"("format":1,"options":[]})", "is damaged"},
        {head + R"("format":2,"print":{}})", "was written by Tamlo 7.0 in form 2"},
        {std::string(100'000, '['), "is damaged"},
    };
    for (const auto& [text, says] : cases) {
        const std::string error = errorOf(text);
        EXPECT_NE(error.find("the recipe in print.jpg "), std::string::npos) << text;
        EXPECT_NE(error.find(says), std::string::npos) << error;
    }
    const Recipe odd =
        decodeRecipe(head + R"("format":1,"more":1,"options":{"grade":3,"glitter":2}})", "print.jpg");
    EXPECT_EQ(odd.options.grade, 3);
    ASSERT_EQ(odd.warnings.size(), 1u);
    EXPECT_NE(odd.warnings[0].find("glitter"), std::string::npos);

    std::mt19937 random(7);
    const std::string whole = *encodeRecipe(fullRecipe());
    for (int round = 0; round < 3000; ++round) {
        std::string text = whole.substr(0, round % 4 ? whole.size() : random() % whole.size());
        for (int i = 0; i <= round % 3; ++i)
            if (!text.empty()) text[random() % text.size()] = static_cast<char>(random());
        errorOf(text); // a recipe or a TamloError
    }
}

TEST(Recipe, TravelsInEveryFormat)
{
    const test::ScratchFolder folder;
    Recipe recipe = fullRecipe();
    OutputMetadata metadata = OutputMetadata::plain("Tamlo");
    for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
        const std::string file = (folder / name).string();
        for (const std::size_t stamp : {0u, 3000u}) {
            // The worst that markup can make of a text, at a length that a JPEG still holds.
            recipe.options.stampText = std::string(stamp, '"') + std::string(stamp, '&') + "ж";
            metadata.recipe = encodeRecipe(recipe);
            ImageWriter::save(RGBImage(8, 8), file, 90, metadata);
            EXPECT_EQ(readRecipe(file).options, recipe.options) << name;
        }
        metadata.recipe.reset();
        ImageWriter::save(RGBImage(8, 8), file, 90, metadata);
        EXPECT_NE(test::errorOf([&] { readRecipe(file); }).find("no recipe"), std::string::npos);
    }
    recipe.embedded["films"]["mine"] = std::string(50'000, 'x');
    EXPECT_TRUE(decodeRecipe(*encodeRecipe(recipe), "").embedded.empty()); // too long to travel
    recipe.options.stampText = std::string(60'000, 'x');
    EXPECT_FALSE(encodeRecipe(recipe));
    for (const auto& path : {folder / "none.jpg", test::sample("patterns/make_patterns.py")})
        EXPECT_NE(test::errorOf([&] { readRecipe(path); }).find("cannot be read"), std::string::npos);
}

} // namespace
} // namespace tamlo
