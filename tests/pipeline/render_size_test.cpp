#include "core/pipeline/render_size.h"
#include "core/profiles/options/peel_size.h"

#include <gtest/gtest.h>

namespace tamlo {
namespace {

FilmProfile instant(std::optional<double> f50)
{
    FilmProfile film;
    film.type = "instant";
    if (f50) film.mtf = FilmMTF{*f50};
    return film;
}

TEST(RenderSize, MasterCeiling)
{
    FilmProfile film;
    film.type = "color";
    EXPECT_EQ(Pipeline::masterLongPx(film, 36'000.0), 6545);
    EXPECT_EQ(Pipeline::masterLongPx(film, 120'000.0), 21'818);
    EXPECT_EQ(Pipeline::masterLongPx(instant(50.0), 79'000.0), 14'364);
    EXPECT_EQ(Pipeline::masterLongPx(instant(16.0), 79'000.0), 5056);
    EXPECT_EQ(Pipeline::masterLongPx(instant(std::nullopt), 79'000.0), 14'364);

    EXPECT_EQ(Pipeline::masterCapSize({10'000, 8000}, 6545), (Size{6545, 5236}));
    EXPECT_EQ(Pipeline::masterCapSize({6000, 4000}, 6545), std::nullopt);
    EXPECT_EQ(Pipeline::masterCapSize({30'000, 1}, 6545), (Size{6545, 1}));
    EXPECT_EQ(Pipeline::applyMasterCap(RGBImage(20, 10), 55.0, std::nullopt).size(), (Size{10, 5}));
}

TEST(RenderSize, InstantFilmsLength)
{
    FilmProfile film = instant(std::nullopt);
    EXPECT_EQ(Pipeline::instantLongUm(film, std::nullopt), 79'000.0);
    film.texture.emplace().cardUm = 60'000.0;
    EXPECT_EQ(Pipeline::instantLongUm(film, std::nullopt), 60'000.0);
    film.frame.emplace().imageLongMm = 92.0;
    EXPECT_EQ(Pipeline::instantLongUm(film, std::nullopt), 92'000.0);
    film.frame->style = "peel";
    film.frame->sizes = TextList{"4x5", "8x10"};
    EXPECT_EQ(Pipeline::instantLongUm(film, "8x10"), 237'500.0);
    EXPECT_EQ(Pipeline::instantLongUm(film, "3x4"), 118'000.0);
    film.frame->sizes = TextList{"13x18"};
    EXPECT_EQ(Pipeline::instantLongUm(film, std::nullopt), 95'000.0);
}

TEST(RenderSize, PrintScaleByPaper)
{
    RenderOptions options;
    PaperProfile silver, plate;
    plate.kind = "plate";
    Pipeline::resolvePrintScale(options, silver, {3000, 3000, 36'000.0}, false);
    EXPECT_NEAR(options.printPxUm, 100.0, 1e-9);

    options.sheetCm = 20.0;
    options.border = 0.05;
    Pipeline::resolvePrintScale(options, silver, {3000, 3000, 36'000.0}, false);
    EXPECT_NEAR(options.printCm, 20.0 / 1.1, 1e-9);

    RenderOptions onInstant;
    onInstant.sheetCm = 20.0;
    Pipeline::resolvePrintScale(onInstant, silver, {3000, 3000, 79'000.0}, true);
    EXPECT_EQ(onInstant.printCm, 30.0);

    Pipeline::resolvePrintScale(options, plate, {3000, 3000, 101'000.0}, false);
    EXPECT_NEAR(options.printCm, 10.1, 1e-9);
}

TEST(RenderSize, BorderClearsWhatThePaperCannotHave)
{
    RenderOptions options;
    options.border = 0.1;
    options.table = "oak";
    options.mat = "white";
    options.stampText = "Studio";
    options.frameWhitePx = std::vector<double>{1, 2, 3, 4};
    PaperProfile silver, scan, plate;
    scan.kind = "scan";
    plate.kind = "plate";

    RenderOptions onSilver = options;
    EXPECT_NEAR(
        Pipeline::resolveBorder(onSilver, silver, {900, 1000, 0.0}, std::array<double, 4>{0, 0.1, 0, 0.1}),
        0.09, 1e-12);
    EXPECT_NEAR(onSilver.borderPx, 90.0, 1e-9);
    EXPECT_NEAR((*onSilver.picInsetPx)[1], 180.0, 1e-9);
    EXPECT_TRUE(onSilver.table && onSilver.mat && onSilver.frameWhitePx);

    RenderOptions onScan = options;
    Pipeline::resolveBorder(onScan, scan, {900, 1000, 0.0}, std::nullopt);
    EXPECT_FALSE(onScan.table || onScan.mat || onScan.stampText || onScan.frameWhitePx);
    EXPECT_EQ(Pipeline::resolveBorder(options, plate, {900, 1000, 0.0}, std::nullopt), 0.0);
}

} // namespace
} // namespace tamlo
