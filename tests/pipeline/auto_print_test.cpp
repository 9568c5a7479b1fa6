// The printer's eye: what it reads of a print, what it does to a frame, and when it keeps its hands off.
#include "core/pipeline/auto_print.h"
#include "core/profiles/catalogue/profile_store.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

RenderChoices choicesOf(const char* film, const char* paper)
{
    const ProfileStore& store = ProfileStore::shared();
    return {store.film(film), store.lens("modern_clean"), store.paper(paper), {}};
}

/// Greys from dark to light along x, evenly spaced to the eye.
RGBImage wedge(float from, float to)
{
    RGBImage image(240, 40);
    float* p = image.mutableData();
    for (std::int64_t i = 0; i < image.pixelCount(); ++i, p += 3)
        p[0] = p[1] = p[2] = from * std::pow(to / from, static_cast<float>(i % 240) / 239.0f);
    return image;
}

TEST(AutoPrint, ReadsTonesAgainstThePaper)
{
    RGBImage print(1000, 1);
    for (std::size_t i = 0; i < 3000; ++i) print.mutableData()[i] = static_cast<float>(i / 3) / 999.0f * 0.8f;
    const Pipeline::PrintTones tones = Pipeline::printTones(print, 0.8);
    EXPECT_NEAR(tones.median, 76.1, 0.1) << "half the paper's light";
    EXPECT_NEAR(tones.white, 99.8, 0.1);
    EXPECT_NEAR(tones.black, 4.5, 0.2);
    EXPECT_NEAR(tones.clipped, 0.002, 0.001);
    print.mutableData()[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(Pipeline::printTones(print, 0.8).known);
    EXPECT_FALSE(Pipeline::printTones(RGBImage(), 0.8).known);
}

TEST(AutoPrint, BringsTheWhiteHomeWithinItsReach)
{
    for (const char* film : {"portra400", "trix400"}) {
        RenderChoices choices =
            choicesOf(film, ProfileStore::defaultPaperName(ProfileStore::shared().film(film)).c_str());
        const RGBImage frame = wedge(0.01f, 0.9f);
        const Pipeline::AutoPrint print = Pipeline::autoPrint(frame, choices);
        ASSERT_EQ(print.reasonKey, std::nullopt) << film;
        EXPECT_GT(print.after.white, print.before.white + 3) << film;
        EXPECT_LE(print.after.white, 96.5) << film;
        EXPECT_LE(std::abs(print.after.median - print.before.median), 12) << film;
        EXPECT_LE(std::abs(print.printEv), 1) << film;
        EXPECT_LE(std::abs(print.grade - 2), 1) << film;
        // An action: done to its own result it gives the same.
        choices.options.printEv = print.printEv;
        choices.options.grade = print.grade;
        EXPECT_EQ(Pipeline::autoPrint(frame, choices).printEv, print.printEv) << film;
        choices.options.grade = 4;
        EXPECT_EQ(Pipeline::autoPrint(frame, choices, {"grade"}).grade, 4) << film;
    }
}

TEST(AutoPrint, KeepsItsHandsOffAndSaysWhy)
{
    RGBImage broken = wedge(0.01f, 0.9f);
    broken.mutableData()[0] = std::numeric_limits<float>::quiet_NaN();
    broken.mutableData()[30] = -5.0f;
    const struct {
        const char *film, *paper;
        RGBImage frame;
        std::set<std::string> held;
        std::optional<std::string> reason;
    } cases[] = {
        {"portra400", "color_ra4", RGBImage(64, 48), {}, "autoprint.flat"},
        {"portra400", "color_ra4", RGBImage(64, 48, Vec3f{1, 1, 1}), {}, "autoprint.flat"},
        {"portra400", "color_ra4", RGBImage(1, 1, Vec3f{0.18f, 0.18f, 0.18f}), {}, "autoprint.flat"},
        {"provia100f", "projector", wedge(0.01f, 0.9f), {}, "idle.fixedExposure"},
        {"portra400", "color_ra4", wedge(0.01f, 0.9f), {"print_ev"}, "autoprint.held"},
        {"portra400", "color_ra4", broken, {}, std::nullopt},
    };
    for (const auto& c : cases) {
        RenderChoices choices = choicesOf(c.film, c.paper);
        choices.options.printEv = 0.25;
        const Pipeline::AutoPrint print = Pipeline::autoPrint(c.frame, choices, c.held);
        EXPECT_EQ(print.reasonKey, c.reason) << c.film;
        EXPECT_EQ(print.printEv == 0.25, c.reason.has_value());
        EXPECT_TRUE(std::isfinite(print.printEv) && std::isfinite(print.grade));
    }
}

} // namespace
} // namespace tamlo
