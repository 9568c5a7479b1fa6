#include "core/profiles/options/film_format.h"

#include <gtest/gtest.h>

namespace tamlo::Formats {
namespace {

constexpr Size kSource{6000, 4000};

TEST(FilmFormat, NamesAreNormalised)
{
    using F = FormatName;
    EXPECT_EQ(normalizeFormat("", std::nullopt), (F{"135", std::nullopt}));
    EXPECT_EQ(normalizeFormat("half", ""), (F{"135", std::nullopt}));
    EXPECT_EQ(normalizeFormat("110", "full"), (F{"135", "full"}));
    EXPECT_EQ(normalizeFormat("135", "8x10"), (F{"135", "custom"}));
    EXPECT_EQ(normalizeFormat("4x5", "4x5"), (F{"sheet", "4x5"}));
    EXPECT_EQ(normalizeFormat("plate", "half"), (F{"plate", "custom"}));
    EXPECT_EQ(normalizeFormat("120", "custom"), (F{"120", "custom"}));
}

TEST(FilmFormat, OlderSettingsMeanASize)
{
    const std::tuple<const char*, double, const char*> cases[] = {{"", 6, "full"},
                                                                  {"135", 9, "full"},
                                                                  {"half", 6, "half"},
                                                                  {"4x5", 6, "4x5"},
                                                                  {"plate", 6, "quarter_plate"},
                                                                  {"sheet", 6, "full"},
                                                                  {"120", 0, "6x6"},
                                                                  {"120", 6.5, "6x7"},
                                                                  {"120", 8, "6x8"},
                                                                  {"120", 9, "6x9"},
                                                                  {"120", 12, "6x12"},
                                                                  {"120", 10, "6x6"}};
    for (const auto& [format, cm, size] : cases) EXPECT_EQ(legacyFrameSize(format, cm), size) << format << cm;
    EXPECT_EQ(frameSizeOrder("135"), (std::vector<std::string>{"full", "half", "xpan"}));
    EXPECT_EQ(frameSizes().size(), 23u);
}

TEST(FilmFormat, AspectsAndGates)
{
    EXPECT_DOUBLE_EQ(*formatAspect("120", "6x7"), 69.5 / 56);
    EXPECT_FALSE(formatAspect("120", "xpan") || formatAspect("135", "custom") ||
                 formatAspect("135", std::nullopt));
    EXPECT_EQ(formatGateMm("sheet", "4x5", kSource), (GateMm{120, 95}));
    // 3:2 would need 84 mm of a 56 mm gate: the long side holds, the short one gives way.
    const GateMm square = formatGateMm("120", "custom", kSource);
    EXPECT_DOUBLE_EQ(square.longMm, 56);
    EXPECT_DOUBLE_EQ(square.shortMm, 56 / 1.5);
    EXPECT_EQ(formatGateMm("135", "custom", {3000, 3000}), (GateMm{24, 24}));
    EXPECT_EQ(formatGateMm("plate", "custom", {0, 3000}), (GateMm{101, 76}));
}

struct WindowCase {
    const char* format;
    OptText size;
    Size picture;
    CropGate gate;
    double longPx, shortPx, k, fmtUm;
    bool exact;
};

TEST(FilmFormat, TheGateLiesOverTheSource)
{
    const WindowCase cases[] = {
        {"135", "full", {6000, 4000}, CropGate::full, 6000, 4000, 1, 36000, true},
        {"135", "full", {4000, 6000}, CropGate::full, 6000, 4000, 1, 36000, true},
        {"135", "full", {5980, 3990}, CropGate::full, 6000, 4000, 5980.0 / 6000, 35880, true},
        {"135", "full", {5960, 4000}, CropGate::full, 6000, 4000, 5960.0 / 6000, 35760, false},
        {"135", "full", {3000, 2000}, CropGate::full, 6000, 4000, 0.5, 18000, false},
        {"135", "full", {3000, 2000}, CropGate::none, 6000, 4000, 1, 36000, true},
        {"135", "full", {3000, 2100}, CropGate::none, 6000, 4000, 1, 36000, false},
        {"120", "6x6", {6000, 4000}, CropGate::full, 4000, 4000, 1.5, 84000, false},
        {"135", "xpan", {6000, 4000}, CropGate::full, 6000, 6000 * 24.0 / 65, 1, 65000, false},
        {"135", "custom", {6000, 4000}, CropGate::full, 6000, 4000, 1, 36000, false},
        {"135", "custom", {6000, 4000}, CropGate::none, 6000, 4000, 1, 36000, false},
        {"half", std::nullopt, {3000, 2000}, CropGate::full, 3000, 2000, 1, 24000, true},
        {"120", std::nullopt, {3000, 2000}, CropGate::full, 3000, 2000, 1, 84000, true},
    };
    for (const WindowCase& one : cases) {
        SCOPED_TRACE(std::string(one.format) + " " + one.size.value_or("-"));
        const auto window = formatWindow({one.format, one.size}, {kSource, one.picture}, one.gate, 9);
        EXPECT_NEAR(window.windowLongPx, one.longPx, 1e-9);
        EXPECT_NEAR(window.windowShortPx, one.shortPx, 1e-9);
        EXPECT_NEAR(window.k, one.k, 1e-12);
        EXPECT_NEAR(window.fmtUm, one.fmtUm, 1e-9);
        EXPECT_EQ(window.capUm, window.fmtUm);
        EXPECT_EQ(window.exact, one.exact);
    }
    const auto empty = formatWindow({"135", "custom"}, {{0, 0}, {0, 0}}, CropGate::full);
    EXPECT_DOUBLE_EQ(empty.gateMm.longMm, 36);
    EXPECT_DOUBLE_EQ(empty.fmtUm, 0);
}

TEST(FilmFormat, OptionsThenTheFilmThen135)
{
    FilmProfile film;
    RenderOptions options;
    options.format.reset();
    EXPECT_EQ(resolvedFormat(film, options), FilmFormat::f135);
    film.formatDefault = "moon";
    EXPECT_EQ(resolvedFormat(film, options), FilmFormat::f135);
    film.formatDefault = "plate";
    EXPECT_EQ(resolvedFormat(film, options), FilmFormat::plate);
    EXPECT_TRUE(isPlateFormat(film, options));
    EXPECT_EQ(formatLongUm(std::nullopt, film, 6), 101000);
    EXPECT_EQ(formatLongUm(FilmFormat::f120, film, 6.6), 69500);
    EXPECT_EQ(formatLongUm(FilmFormat::f120, film, 12), 56000);
    options.format = FilmFormat::f120;
    EXPECT_FALSE(isPlateFormat(film, options));
    EXPECT_EQ(formatWindow(film, options, {kSource, kSource}).fmtUm, 56000);
    EXPECT_EQ(frameCm120(film, options), 6);
    options.format120Cm = 8;
    EXPECT_EQ(frameCm120(film, options), 8);
    options.frameSize = "6x12";
    EXPECT_EQ(frameCm120(film, options), 12);
    EXPECT_EQ(devFieldFormat(film, options), "120");
    options.format = FilmFormat::half;
    options.frameSize = "half";
    EXPECT_EQ(devFieldFormat(film, options), "half");
    options.format = FilmFormat::plate;
    EXPECT_EQ(devFieldFormat(film, options), "plate");
    options.cropGate = "none";
    EXPECT_EQ(formatWindow(film, options, {kSource, {300, 200}}).k, 1);
    EXPECT_EQ(cropGateMode("anything"), CropGate::full);
}

TEST(FilmFormat, FreshOptionsFollowTheFilm)
{
    FilmProfile film;
    film.formatDefault = "plate";
    RenderOptions options = optionsForFilm(RenderOptions(), film, {});
    EXPECT_EQ(options.format, FilmFormat::plate);
    EXPECT_EQ(options.frameSize, "quarter_plate");
    options.frameSize = "whole_plate";
    EXPECT_EQ(optionsForFilm(options, film, {"frame_size"}).frameSize, "whole_plate");
    options.format = FilmFormat::f120;
    options = optionsForFilm(options, film, {"format"});
    EXPECT_EQ(options.format, FilmFormat::f120);
    EXPECT_EQ(options.frameSize, "6x6");
}

} // namespace
} // namespace tamlo::Formats
