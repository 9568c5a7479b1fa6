#include "core/text/error_words.h"

#include "core/image/tamlo_error.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace tamlo {
namespace {

namespace fs = std::filesystem;

struct InRussian {
    InRussian() { Loc::setOverride(Loc::Lang::ru); }
    ~InRussian() { Loc::setOverride(std::nullopt); }
};

bool hasLatinWords(const std::string& text)
{
    return std::regex_search(text, std::regex("[a-z]{3}"));
}

TEST(ErrorWords, TellEachKindInTheLanguageInForce)
{
    const platform::PlatformError large(
        "a picture of 90000 x 8 pixels is too large; the limit is 400 megapixels");
    const fs::filesystem_error system("cannot remove", "a.jpg",
                                      std::make_error_code(std::errc::permission_denied));
    const struct {
        const std::exception& error;
        const char *ru, *en;
    } cases[] = {
        {large, "снимок 90000 × 8 пикселей слишком велик; предел — 400 мегапикселей", large.what()},
        {TamloError::io("cannot map 12 bytes"), "ошибка ввода-вывода: не хватает памяти: нужно байтов: 12",
         "I/O error: cannot map 12 bytes"},
        {TamloError::cancelled(), "Рендер отменён: запрос устарел",
         "The render was cancelled: the request is out of date"},
        {platform::PlatformError("box 7 is odd"), "библиотека говорит: «box 7 is odd»", "box 7 is odd"},
        {system, "a.jpg: нет прав", "a.jpg: Permission denied"},
        {std::bad_alloc(), "не хватает памяти", "not enough memory"},
    };
    for (const auto& c : cases) {
        Loc::setOverride(Loc::Lang::en);
        EXPECT_EQ(ErrorWords::of(c.error), c.en);
        const InRussian russian;
        EXPECT_EQ(ErrorWords::of(c.error), c.ru);
    }
}

// A sentence that is added below and forgotten in the tables would come out in English.
TEST(ErrorWords, KnowEverySentenceOfThePlatform)
{
    const InRussian russian;
    const std::regex sentence(
        R"re((?:PlatformError\(|kDamaged = |kCutShort = |return )"([^"]*\w \w[^"]*)"(\)|;))re");
    int found = 0;
    for (const auto& file : fs::directory_iterator(TAMLO_SOURCE "/platform")) {
        if (file.path().extension() != ".cpp") continue;
        std::stringstream text;
        text << std::ifstream(file.path()).rdbuf();
        const std::string all = text.str();
        for (std::sregex_iterator i(all.begin(), all.end(), sentence), end; i != end; ++i, ++found)
            EXPECT_FALSE(ErrorWords::reason((*i)[1].str()).starts_with("библиотека говорит"))
                << file.path().filename() << ": " << (*i)[1];
    }
    EXPECT_GT(found, 30);
    for (const int code : {ENOENT, EACCES, EPERM, EISDIR, ENOTDIR, ENOSPC, EROFS, EIO, EFBIG, ENAMETOOLONG})
        EXPECT_FALSE(hasLatinWords(ErrorWords::reason(std::generic_category().message(code)))) << code;
}

} // namespace
} // namespace tamlo
