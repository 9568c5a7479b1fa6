#include "platform/unicode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tamlo::platform {
namespace {

TEST(Unicode, LowersEveryScript)
{
    EXPECT_EQ(lowerCased("СВЕМА Foto 65 ÄÖ Ё"), "свема foto 65 äö ё");
    EXPECT_EQ(lowerCased("\xff ok"), "\uFFFD ok");
}

TEST(Unicode, KnowsWhiteSpaceOfAllKinds)
{
    EXPECT_EQ(trimmed("\u00A0\t Плёнка \u3000\r\n"), "Плёнка");
    EXPECT_EQ(trimmed(" \n "), "");
    EXPECT_EQ(whiteSpaceReplaced("a \t\n b\u2003c", "_"), "a_b_c");
    EXPECT_EQ(whiteSpaceReplaced("", "_"), "");
}

TEST(Unicode, CountsCharactersAsAReaderDoes)
{
    EXPECT_EQ(firstCharacters("Ёж и лис", 4), "Ёж и");
    EXPECT_EQ(firstCharacters("e\u0301e\u0301e", 2), "e\u0301e\u0301") << "a letter keeps its accent";
    EXPECT_EQ(firstCharacters("ab", 10), "ab");
}

TEST(Unicode, SortsInNaturalOrder)
{
    std::vector<std::string> names{"Delta 3200", "Ёлка", "delta 100", "Delta 400",
                                   "Яблоко",     "Жук",  "Agfa",      "Еж"};
    std::ranges::sort(names, {}, naturalSortKey);
    EXPECT_EQ(names, (std::vector<std::string>{"Agfa", "delta 100", "Delta 400", "Delta 3200", "Еж", "Ёлка",
                                               "Жук", "Яблоко"}));
}

} // namespace
} // namespace tamlo::platform
