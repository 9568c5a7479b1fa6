#include "ui/kit/words.h"

#include <gtest/gtest.h>

namespace tamlo::ui {
namespace {

TEST(Words, KeepEveryCharacter)
{
    for (const char* text : {"", "Kodachrome", "плёнка", "f/2.8 · 50 мм", "\xF0\x9F\x8E\x9E"})
        EXPECT_EQ(utf8(qt(text)), text);
}

} // namespace
} // namespace tamlo::ui
