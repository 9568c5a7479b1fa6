#include "core/text/loc.h"

#include "core/text/bundled_profiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace tamlo {
namespace {

namespace fs = std::filesystem;
using Loc::Lang;

class LocTest : public testing::Test {
protected:
    LocTest() : root_(fs::temp_directory_path() / ("tamlo_loc_" + std::to_string(getpid())))
    {
        setenv("TAMLO_USER_DIR", root_.c_str(), 1);
        clearLocale();
    }
    ~LocTest() override
    {
        Loc::setOverride(std::nullopt);
        unsetenv("TAMLO_USER_DIR");
        clearLocale();
        fs::remove_all(root_);
    }
    static void clearLocale()
    {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(name);
    }

    fs::path root_;
};

TEST_F(LocTest, ATextForThisSystemComesFirst)
{
    for (const Lang lang : {Lang::en, Lang::ru}) {
        Loc::setOverride(lang);
        EXPECT_NE(T("remove.tail").find("Ctrl+Z"), std::string::npos);
        for (const char* key : {"preset.trashed", "remove.oneNote", "remove.tail", "gpu.abort.interactivity",
                                "gpu.abort.timeout"})
            EXPECT_EQ(T(key), *Loc::value(key + std::string(".linux"), lang));
    }
}

TEST_F(LocTest, PluralFormsFollowEachLanguage)
{
    struct Case {
        std::int64_t count;
        const char* ru;
        const char* en;
    };
    const Case cases[] = {{0, "many", "many"},   {1, "one", "one"},
                          {2, "few", "many"},    {5, "many", "many"},
                          {11, "many", "many"},  {12, "many", "many"},
                          {14, "many", "many"},  {21, "one", "many"},
                          {22, "few", "many"},   {25, "many", "many"},
                          {111, "many", "many"}, {112, "many", "many"},
                          {101, "one", "many"},  {-1, "one", "one"},
                          {-22, "few", "many"},  {std::numeric_limits<std::int64_t>::min(), "many", "many"}};
    for (const Case& c : cases) {
        EXPECT_EQ(Loc::form(c.count, Lang::ru), c.ru) << c.count;
        EXPECT_EQ(Loc::form(c.count, Lang::en), c.en) << c.count;
    }
}

TEST_F(LocTest, PlaceholdersAreFilledInOnePass)
{
    EXPECT_EQ(Loc::substitute("{a} of {b} {c}", {{"a", 3}, {"b", 1.50}, {"x", "y"}}), "3 of 1.5 {c}");
    EXPECT_EQ(Loc::substitute("{a}{b}", {{"a", "{b}"}, {"b", "2"}}), "{b}2") << "a value is not filled again";
    EXPECT_EQ(Loc::substitute("{{a} } {", {{"a", "1"}}), "{1 } {");
    EXPECT_EQ(Fmt::number(2, 2), "2");
    EXPECT_EQ(Fmt::number(1.5, 2), "1.5");
    EXPECT_EQ(Fmt::number(100, 0), "100");
    EXPECT_EQ(Fmt::number(1e20, 2), "100000000000000000000");
}

TEST_F(LocTest, AChosenLanguageActsAtOnceAndMissingKeysShow)
{
    Loc::setOverride(Lang::en);
    EXPECT_EQ(T("presetGroup.slide"), "Slide");
    EXPECT_EQ(Loc::string("project.frames", 1), "1 frame");
    EXPECT_EQ(Loc::string("project.frames", 0), "0 frames");
    EXPECT_EQ(Loc::pick("Мокрый", "Wet"), "Wet");
    EXPECT_EQ(Loc::pick("Мокрый", std::nullopt), "Мокрый");
    Loc::setOverride(Lang::ru);
    EXPECT_EQ(T("presetGroup.slide"), "Слайд");
    EXPECT_NE(Loc::string("project.frames", 2), Loc::string("project.frames", 5));
    EXPECT_EQ(Loc::string("project.frames", 21).substr(0, 3), "21 ");
    EXPECT_EQ(Loc::pick("Мокрый", "Wet"), "Мокрый");
    EXPECT_EQ(T("no.such.key", {{"a", 1}}), "no.such.key");
    EXPECT_EQ(T("project.frames"), "project.frames") << "a plural is no plain text";
}

TEST_F(LocTest, TheSystemsLanguageComesFromTheLocale)
{
    struct Case {
        const char *language, *locale;
        Lang expected;
    };
    const Case cases[] = {{"", "ru_RU.UTF-8", Lang::ru},
                          {"", "en_GB.UTF-8", Lang::en},
                          {"de:ru:en", "de_DE", Lang::ru},
                          {"ru", "C", Lang::en},
                          {"", "", Lang::en},
                          {"", "de_DE@euro", Lang::en},
                          {"en", "ru_RU.UTF-8", Lang::en}};
    for (const Case& c : cases) {
        setenv("LANGUAGE", c.language, 1);
        setenv("LANG", c.locale, 1);
        EXPECT_EQ(Loc::systemLang(), c.expected) << c.language << " " << c.locale;
    }
}

TEST_F(LocTest, AChoiceIsStoredBesideOthers)
{
    fs::create_directories(root_);
    std::ofstream(root_ / "preferences") << "other=1\nlang=xx\n";
    Loc::setLang("ru");
    EXPECT_EQ(Loc::current(), Lang::ru);
    std::stringstream text;
    text << std::ifstream(root_ / "preferences").rdbuf();
    EXPECT_EQ(text.str(), "lang=ru\nother=1\n");
    Loc::setLang("system");
    EXPECT_EQ(Loc::override(), std::nullopt);
}

TEST_F(LocTest, ManyThreadsMayAsk)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([i] {
            for (int n = 0; n < 200; ++n) {
                Loc::setOverride(i % 2 ? Lang::ru : Lang::en);
                EXPECT_FALSE(T("presetGroup.slide").empty());
            }
        });
    for (std::thread& thread : threads) thread.join();
}

std::set<std::string> placeholdersOf(const std::string& text)
{
    static const std::regex kPlaceholder(R"(\{([A-Za-z0-9]+)\})");
    std::set<std::string> out;
    for (std::sregex_iterator it(text.begin(), text.end(), kPlaceholder), end; it != end; ++it)
        out.insert((*it)[1]);
    return out;
}

nlohmann::json tableOf(const char* lang)
{
    return nlohmann::json::parse(BundledProfiles::files().at(std::string("strings/") + lang + ".json"));
}

TEST(Strings, TheTwoTablesAgree)
{
    const nlohmann::json ru = tableOf("ru"), en = tableOf("en");
    for (const auto& [key, value] : ru.items()) EXPECT_TRUE(en.contains(key)) << key;
    for (const auto& [key, english] : en.items()) {
        SCOPED_TRACE(key);
        ASSERT_TRUE(ru.contains(key));
        const nlohmann::json& russian = ru[key];
        ASSERT_EQ(english.is_object(), russian.is_object());
        if (english.is_string()) {
            EXPECT_FALSE(english.get<std::string>().empty());
            EXPECT_EQ(placeholdersOf(english), placeholdersOf(russian));
            continue;
        }
        std::set<std::string> enForms, ruForms, wanted = placeholdersOf(english.at("many"));
        for (const auto& [form, text] : english.items()) {
            enForms.insert(form);
            EXPECT_EQ(placeholdersOf(text), wanted) << form;
        }
        for (const auto& [form, text] : russian.items()) {
            ruForms.insert(form);
            EXPECT_EQ(placeholdersOf(text), wanted) << form;
        }
        EXPECT_EQ(enForms, (std::set<std::string>{"one", "many"}));
        EXPECT_EQ(ruForms, (std::set<std::string>{"one", "few", "many"}));
    }
}

/// Every key that the sources name, as T("…") or Loc::string("…") or as a text of the shape of a key in a
/// table of keys, stands in the tables.
TEST(Strings, EveryKeyOfTheSourcesIsThere)
{
    const nlohmann::json en = tableOf("en");
    std::set<std::string> families, keys;
    for (const auto& [key, text] : en.items()) {
        keys.insert(key);
        families.insert(key.substr(0, key.find('.')));
    }
    const std::regex called(R"((?:\bT|Loc::string|note|PresetError\(T)\(\s*"([^"]+)\")");
    const std::regex shaped(R"re("([a-z][A-Za-z]*)\.([A-Za-z0-9.]*[A-Za-z0-9])")re");
    std::size_t found = 0;
    for (const char* folder : {"core", "app", "cli"})
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(TAMLO_SOURCE) / folder)) {
            if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
            std::stringstream text;
            text << std::ifstream(entry.path()).rdbuf();
            const std::string source = text.str();
            const auto check = [&](const std::string& key) {
                ++found;
                // A text that ends in a point is put before the last part of a key.
                const bool known =
                    key.back() == '.'
                        ? std::ranges::any_of(keys,
                                              [&](const std::string& one) { return one.starts_with(key); })
                        : en.contains(key);
                EXPECT_TRUE(known) << key << " in " << entry.path();
            };
            for (std::sregex_iterator it(source.begin(), source.end(), called), end; it != end; ++it)
                check((*it)[1]);
            for (std::sregex_iterator it(source.begin(), source.end(), shaped), end; it != end; ++it)
                if (families.contains((*it)[1])) check((*it)[1].str() + "." + (*it)[2].str());
        }
    EXPECT_GT(found, 80u);
}

} // namespace
} // namespace tamlo
