// What stands on the rack, and how a knob counts.
#include "app/project/process_rules.h"
#include "app/shell/knob_row.h"
#include "app/shell/rack_visibility.h"
#include "core/profiles/catalogue/profile_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tamlo::test {
namespace {

using Names = std::set<std::string>;

// Told by hand: which papers are what.
const Names kPlates{"ambrotype", "ferrotype"};
const Names kNoGrade{"ambrotype", "ferrotype", "bw_graded3", "projector"};
const Names kNoBlackWhite{"ambrotype", "ferrotype", "projector"};
const Names kNoSheet{"color_scan",   "projector", "scan_film",     "scan_flatbed",
                     "scan_minilab", "crt_mono",  "crt_trinitron", "crt_tv"};

TEST(RackVisibilityRules, HoldForEveryFilmOnEveryPaper)
{
    const ProfileStore store;
    std::size_t pairs = 0, refused = 0;
    for (const std::string& film : store.list(ProfileStore::Kind::films, true))
        for (const std::string& named : store.list(ProfileStore::Kind::papers, true)) {
            ProcessSettings settings;
            settings.stock = film;
            settings.paper = named;
            settings.options.border = 0.1;
            const std::string paper = resolvedPaper(settings, store);
            ++pairs;
            refused += paper != named;
            const auto rack = RackVisibility::of(settings, store);
            ASSERT_TRUE(rack);
            SCOPED_TRACE(film + " on " + named);
            const bool isInstant = rack->film.type == "instant";
            const bool isPlate = kPlates.contains(paper), hasSheet = !kNoSheet.contains(paper);
            EXPECT_EQ(rack->paperIsPlate(), isPlate);
            EXPECT_EQ(rack->plateSizeNote(), isPlate);
            EXPECT_EQ(rack->contrast(), !kNoGrade.contains(paper));
            EXPECT_EQ(rack->gradedNote(), paper == "bw_graded3");
            EXPECT_EQ(rack->blackWhite(), !kNoBlackWhite.contains(paper));
            EXPECT_EQ(rack->blackField(), hasSheet && !isInstant && !isPlate);
            EXPECT_EQ(rack->emboss(), hasSheet && !isInstant && !isPlate);
            if (isInstant) {
                EXPECT_FALSE(rack->formatPicker());
            }
            RackVisibility other = *rack;
            other.options.border = 0;
            EXPECT_FALSE(other.blackField()) << "no border, no field";
            other.options.mat = "window";
            EXPECT_EQ(other.emboss(), hasSheet || isInstant) << "a mat can be pressed";
        }
    EXPECT_EQ(pairs, 74u * 41u);
    EXPECT_EQ(refused, 478u);
}

TEST(RackVisibilityRules, AFormatThatTheFilmHasNotStaysInTheList)
{
    const ProfileStore store;
    ProcessSettings settings;
    settings.stock = "collodion_wet";
    settings.options.format = FilmFormat::f135;
    const auto plate = RackVisibility::of(settings, store);
    EXPECT_EQ(plate->fugitiveFormat(), "135");
    EXPECT_TRUE(plate->formatPicker());
    settings.options.format.reset();
    EXPECT_EQ(RackVisibility::of(settings, store)->fugitiveFormat(), std::nullopt) << "the film's own";
    settings.stock = "trix400";
    settings.options.format = FilmFormat::half;
    EXPECT_EQ(RackVisibility::of(settings, store)->fugitiveFormat(), std::nullopt) << "a size of 135";
    settings.stock = "gone";
    EXPECT_FALSE(RackVisibility::of(settings, store));
    settings.stock = "trix400";
    settings.paper = "gone";
    const auto bare = RackVisibility::of(settings, store);
    EXPECT_TRUE(bare->contrast() && bare->blackWhite() && !bare->blackField() && !bare->gradedNote());
}

TEST(WhiteBalancePositions, FollowSourceAndFilm)
{
    FilmProfile film;
    film.type = "color";
    using List = std::vector<std::string>;
    EXPECT_EQ(wbPositions(false, film), (List{"film"}));
    EXPECT_EQ(wbPositions(true, film), (List{"asshot", "film"}));
    film.balance = FilmBalance{3200};
    EXPECT_EQ(wbPositions(true, film), (List{"asshot", "film", "custom"}));
    film.type = "bw";
    EXPECT_EQ(wbPositions(false, film), (List{"film"}));
    EXPECT_EQ(wbPositions(false, film, "custom"), (List{"film", "custom"})) << "what is stored stays";
}

TEST(KnobRows, TurnGesturesIntoValues)
{
    KnobRow row{.value = 1, .def = 2, .low = 0, .high = 5, .step = 0.1, .unit = " EV", .isSigned = true};
    EXPECT_NEAR(row.snapped(1.26), 1.3, 1e-12);
    EXPECT_EQ(row.snapped(99), 5);
    EXPECT_NEAR(row.valueAt(5.5 + 50, 100), 2.5, 1e-12);
    EXPECT_EQ(row.valueAt(-40, 100), 0);
    EXPECT_NEAR(row.fineValue(2, 20, 100), 2.1, 1e-12);
    EXPECT_NEAR(row.stepped(-1, false), 0.9, 1e-12);
    EXPECT_NEAR(row.stepped(1, true), 2, 1e-12);
    EXPECT_FALSE(row.atDefault());
    EXPECT_EQ(row.text(), "+1.00 EV");
    row.value = 0.001;
    EXPECT_EQ(row.text(), "0.00 EV");
    row.value = -0.001;
    EXPECT_EQ(row.text(), "0.00 EV");
    row.low = -5;
    struct Case {
        const char* typed;
        std::optional<double> value;
    };
    const Case cases[] = {{"1,5", 1.5},
                          {"\xE2\x88\x92"
                           "2",
                           -2},
                          {"abc", {}},
                          {" +0.50 EV", 0.5},
                          {"9", 5},
                          {"1.2.3", {}},
                          {"", {}},
                          {"-", {}},
                          {"3 stops", 3}};
    for (const Case& c : cases) {
        const auto entered = row.entered(c.typed);
        ASSERT_EQ(entered.has_value(), c.value.has_value()) << c.typed;
        if (entered) {
            EXPECT_NEAR(*entered, *c.value, 1e-12) << c.typed;
        }
    }
    EXPECT_EQ(KnobRow::clickDelay(0.5), 0.35);
    EXPECT_EQ(KnobRow::clickDelay(0.2), 0.2);
    EXPECT_TRUE(KnobRow::isClick(0.9, -0.9));
    EXPECT_FALSE(KnobRow::isClick(0, 1));
}

} // namespace
} // namespace tamlo::test
