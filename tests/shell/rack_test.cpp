// What stands on the rack, and how a knob counts.
#include "app/project/process_rules.h"
#include "app/shell/knob_table.h"
#include "app/shell/lists.h"
#include "app/shell/rack_cards.h"
#include "app/shell/rack_visibility.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/option_table.h"
#include "core/text/loc.h"

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

const RackKnob* knobOn(const std::vector<RackCard>& cards, std::string_view option)
{
    for (const RackCard& card : cards)
        for (const RackKnob& one : card.knobs)
            if (one.knob->option == option) return &one;
    return nullptr;
}

TEST(KnobTable, EveryNumberHasAStepAndItsDefaultLiesOnTheGrid)
{
    for (const Knob& knob : knobTable()) {
        SCOPED_TRACE(knob.option);
        const OptionRow* row = findOption(knob.option);
        ASSERT_TRUE(row);
        EXPECT_EQ(row->hasRange, knob.step > 0);
        if (!row->hasRange) continue;
        const KnobRow shown = knobRow(knob, RenderOptions{}, 30);
        EXPECT_NEAR(shown.snapped(shown.def), shown.def, 1e-9);
        EXPECT_NE(KnobRow(shown).stepped(1, false), KnobRow(shown).stepped(-1, false)) << "a key moves it";
    }
    RenderOptions options;
    const Knob& brightness = *findKnob("print_ev");
    turn(brightness, options, 0.5);
    EXPECT_EQ(options.printEv, -0.5) << "brighter is less light on the paper";
    EXPECT_EQ(knobRow(brightness, options).text(), "+0.50");
}

TEST(RackCards, HoldWhatActsOnTheMaterialInForce)
{
    const ProfileStore store;
    struct Case {
        const char *film, *paper;
        std::vector<const char*> stand, absent;
    };
    const Case cases[] = {
        {"trix400", "bw_neutral", {"grade", "push", "dev", "mat", "format"}, {"c41_temp_c", "peel_size"}},
        {"trix400", "bw_graded3", {"print_ev", "print_black"}, {"grade"}},
        {"portra400", "color_scan", {"push", "dev"}, {"mat", "emboss_line", "crt_zoom", "plate_pour"}},
        {"portra400", "crt_mono", {"crt_zoom", "crt_phosphor"}, {"mat", "inkjet_feed"}},
        {"portra400", "inkjet_plain", {"inkjet_feed", "inkjet_banding"}, {"crt_zoom"}},
        {"trix400", "carbon", {"relief"}, {"crt_zoom"}},
        {"collodion_wet", "ambrotype", {"plate_pour"}, {"grade", "print_black", "print_cm", "border_black"}},
    };
    for (const Case& c : cases) {
        ProcessSettings settings;
        settings.stock = c.film;
        settings.paper = c.paper;
        const auto cards = rackCards(settings, store);
        ASSERT_EQ(cards.size(), 8u);
        SCOPED_TRACE(std::string(c.film) + " on " + c.paper);
        for (const char* option : c.stand) EXPECT_TRUE(knobOn(cards, option)) << option;
        for (const char* option : c.absent) EXPECT_FALSE(knobOn(cards, option)) << option;
    }
    ProcessSettings gone;
    gone.stock = "gone";
    EXPECT_TRUE(rackCards(gone, store).empty());
}

TEST(RackCards, CaptionsFollowFilmAndDevelopment)
{
    Loc::setOverride(Loc::Lang::en);
    const auto caption = [](const char* type, const std::function<void(RenderOptions&)>& set) {
        FilmProfile film;
        film.type = type;
        RenderOptions options;
        set(options);
        return developmentCaption(film, options);
    };
    const auto plain = [](RenderOptions&) {};
    const auto pushed = [](RenderOptions& o) { o.push = 1; };
    EXPECT_EQ(caption("slide", plain), T("dev.e6"));
    EXPECT_EQ(caption("slide", pushed), T("dev.slidePush"));
    EXPECT_EQ(caption("color", plain), T("dev.c41"));
    EXPECT_EQ(caption("color", pushed), T("dev.push"));
    EXPECT_EQ(caption("color", [](RenderOptions& o) { o.dev = Development::hand; }),
              T("dev.hand", {{"t", "30"}}));
    EXPECT_EQ(caption("collodion", [](RenderOptions& o) { o.dev = Development::pyro; }), T("dev.pyro"));
    EXPECT_EQ(caption("bw", plain), T("dev.d76"));
    EXPECT_EQ(caption("instant", plain), T("dev.room"));
    EXPECT_EQ(caption("instant", [](RenderOptions& o) { o.devTempC = 27.2; }), T("dev.hot"));
    EXPECT_EQ(caption("instant",
                      [](RenderOptions& o) {
                          o.devTempC = 14.8;
                          o.devMottle = 2;
                      }),
              T("dev.cold") + T("dev.dirt", {{"n", 2}}));
    EXPECT_EQ(changedLine({}), "");
    EXPECT_EQ(changedLine({{"a", "A"}, {"b", "B"}, {"c", "C"}}), "Changed: A, B, C");
    EXPECT_EQ(changedLine({{"a", "A"}, {"b", "B"}, {"c", "C"}, {"d", "D"}, {"e", "E"}}),
              "Changed: A, B, C and 2 more");
    Loc::setOverride(std::nullopt);
}

Names idsOf(const CatalogueLists::Items& items)
{
    Names out;
    for (const ProfileItem& item : items) out.insert(item.id);
    return out;
}

TEST(CatalogueListsOfTheRack, HoldEveryProfileOnceInTheirOrder)
{
    Loc::setOverride(Loc::Lang::en);
    const ProfileStore store;
    const CatalogueLists lists = catalogueLists(store);
    std::vector<std::string> titles;
    std::size_t inSections = 0;
    for (const ProfileSection& section : lists.filmSections) {
        titles.push_back(section.title);
        inSections += section.items.size();
    }
    EXPECT_EQ(titles,
              (std::vector<std::string>{"", "B&W", "B&W · spectral (ortho, extended red)", "Colour negative",
                                        "Slide E-6", "Instant", "Three-colour", "Glass plates"}));
    EXPECT_EQ(lists.filmSections[0].items.front().id, "digital_negative");
    EXPECT_EQ(idsOf(lists.filmSections[2].items), (Names{"orthoplus80", "retro80s", "sfx200"}));
    EXPECT_EQ(inSections, lists.films.size());
    EXPECT_EQ(lists.lenses.front().id, "modern_clean");
    EXPECT_EQ(lists.silverBWPapers.front().id, "bw_neutral");
    EXPECT_EQ(lists.platePapers.front().id, "ambrotype");
    EXPECT_EQ(lists.papers.size(), lists.silverPapers.size() + lists.scanPapers.size() +
                                       lists.reversalPapers.size() + lists.reproPapers.size() +
                                       lists.platePapers.size() + lists.altProcesses.size());
    EXPECT_EQ(lists.silverPapers.size(), lists.silverBWPapers.size() + lists.silverColorPapers.size());
    ASSERT_EQ(lists.altProcesses.size(), 14u);
    EXPECT_EQ(lists.altProcesses[0].id, "cyanotype");
    EXPECT_EQ(lists.altProcesses[13].id, "collotype");
    ASSERT_EQ(lists.reproFamilies.size(), 3u);
    EXPECT_EQ(lists.reproFamilies[2].id, "crt");
    EXPECT_EQ(lists.reproFamilies[2].pick, "Tube");
    EXPECT_EQ(lists.reproFamilies[2].options[0].title, "TV");
    EXPECT_EQ(lists.diffusionFilters[0].id, "promist_1");
    EXPECT_EQ(lists.cutFilters[0].id, "yellow_6");
    EXPECT_EQ(lists.rayFilters[3].id, "streak_blue");
    EXPECT_EQ(lists.gradFilters[1].id, "grad_nd2_soft");
    EXPECT_EQ(lists.presets.size(), lists.presetInfos.size());
    Loc::setOverride(std::nullopt);
}

} // namespace
} // namespace tamlo::test
