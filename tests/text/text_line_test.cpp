// Letters on a picture: the metrics of the carried faces as published, the order of scripts, what both faces
// lack, and drawing that costs no more than its bitmap.
#include "platform/text_line.h"

#include "platform/platform_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>

namespace tamlo::platform {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr double kBoxEm = 0.66;

Bytes drawn(std::string_view text, std::size_t width = 400, std::size_t height = 60)
{
    return TextLine(text).draw(width, height, {40.0, 2.0, 15.0});
}

double inkOf(const Bytes& bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), 0.0) / 255.0;
}

// Adobe's published widths of Helvetica Bold, in thousandths of an em, which TeX Gyre Heros keeps; AV is
// kerned.
TEST(TextLine, HasTheWidthsOfItsFace)
{
    for (const auto& [text, thousandths] :
         {std::pair{"H", 722}, {"m", 889}, {"i", 278}, {"Him", 1889}, {" ", 278}, {"", 0}})
        EXPECT_NEAR(TextLine(text).widthEm() * 1000.0, thousandths, 0.5) << text;
    EXPECT_LT(TextLine("AV").widthEm(), 1.38) << "kerned closer than 722 + 667";
    EXPECT_NEAR(TextLine("Ж").widthEm(), 1851.0 / 2048.0, 1e-9) << "from the font's hmtx table";
}

TEST(TextLine, StandsOnItsBaselineAtAnySize)
{
    for (const double em : {40.0, 200.0}) {
        const auto side = static_cast<std::size_t>(em);
        const Bytes h = TextLine("H").draw(side, side, {em, 0.0, 0.2 * em});
        std::size_t first = side, last = 0;
        for (std::size_t y = 0; y < side; ++y)
            if (std::any_of(h.begin() + static_cast<long>(y * side),
                            h.begin() + static_cast<long>((y + 1) * side), [](int c) { return c > 127; })) {
                first = std::min(first, y);
                last = y;
            }
        EXPECT_NEAR(static_cast<double>(last + 1) / em, 0.8, 1.0 / em);
        EXPECT_NEAR(static_cast<double>(last + 1 - first) / em, 0.729, 1.5 / em) << "cap height";
    }
    const double small = inkOf(TextLine("Ra&").draw(100, 60, {40.0, 2.0, 15.0}));
    const double large = inkOf(TextLine("Ra&").draw(1000, 600, {400.0, 20.0, 150.0}));
    EXPECT_NEAR(large / small, 100.0, 0.3) << "one shape at every size";
}

TEST(TextLine, DrawsABoxForWhatBothFacesLack)
{
    for (const char* text :
         {"\U0001F600", "\u4E2D", "\U0001F468\u200D\U0001F469\u200D\U0001F467", "\uE123"}) {
        EXPECT_NEAR(TextLine(text).widthEm(), kBoxEm, 1e-9) << text;
        EXPECT_EQ(drawn(text), drawn("\u4E2D")) << "one box a letter";
    }
    // A frame of 0.5 by 0.72 em, 0.08 thick.
    EXPECT_NEAR(inkOf(drawn("\u4E2D")) / 1600.0, 0.5 * 0.72 - 0.34 * 0.56, 0.003);
    for (const char* text : {"Ателье", "Δελτα", "Łódź", "שלום"})
        EXPECT_NE(drawn(text), drawn(std::string("\u4E2D") + text)) << text;
    EXPECT_NE(drawn("Ж"), drawn("\u4E2D"));
    EXPECT_GT(inkOf(drawn("\xff\xfe")), 0.0) << "broken bytes are still something to read";
}

TEST(TextLine, KnowsTheOrderOfScripts)
{
    // The first Hebrew letter stands right of the second.
    const Bytes pair = drawn("\u05D0\u05D1"), second = drawn("\u05D1");
    const auto columns = static_cast<std::size_t>(40.0 * TextLine("\u05D1").widthEm() * 0.9);
    for (std::size_t y = 0; y < 60; ++y)
        ASSERT_TRUE(std::equal(pair.begin() + static_cast<long>(y * 400),
                               pair.begin() + static_cast<long>(y * 400 + columns),
                               second.begin() + static_cast<long>(y * 400)));
    EXPECT_EQ(drawn("\u202Eba"), drawn("ab")) << "an override of the order";
    EXPECT_EQ(drawn("e\u0301"), drawn("\u00E9")) << "composed or not";
}

TEST(TextLine, IsOneLineWithoutControls)
{
    EXPECT_EQ(drawn("A\n\tB"), drawn("A  B"));
    EXPECT_EQ(drawn(std::string("A\0\x01\x7F\u009F", 6) + "B"), drawn("AB"));
    EXPECT_EQ(drawn("A\u200B\uFEFF\u2060B"), drawn("AB")) << "no width, no ink";
    EXPECT_EQ(inkOf(drawn("\n\u2003 ")), 0.0);
}

TEST(TextLine, CostsNoMoreThanItsBitmap)
{
    std::string all;
    for (int i = 0; i < 400'000; ++i) all += "Wa";
    const TextLine line(all);
    EXPECT_NEAR(line.widthEm(), TextLine("Wa").widthEm() * 8192.0, 300.0) << "set up to the longest line";
    // A window of the line is that part of the whole.
    const Bytes whole = line.draw(300, 60, {40.0, -1000.0, 15.0});
    const Bytes window = line.draw(100, 30, {40.0, -1100.0, 0.0});
    for (std::size_t y = 0; y < 30; ++y)
        for (std::size_t x = 0; x < 100; ++x)
            ASSERT_EQ(window[y * 100 + x], whole[(y + 15) * 300 + x + 100]) << x << ", " << y;
    EXPECT_GT(inkOf(TextLine("H").draw(4, 4, {40'000.0, -3000.0, -3000.0})), 15.0) << "inside a stem";
    EXPECT_THROW(line.draw(4, 4, {1e9, 0.0, 0.0}), PlatformError);
    EXPECT_EQ(inkOf(TextLine("a" + std::string(20'000, '\xCC')).draw(50, 50, {40.0, 0.0, 10.0})) > 0.0, true);
}

} // namespace
} // namespace tamlo::platform
