// What is called idle changes no bit of the picture, and what is not called so changes it: every rule is held
// to a render, on materials that take each of its branches.
#include "core/pipeline/idle_options.h"

#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/option_table.h"
#include "tests/support/pictures.h"

#include <algorithm>
#include <map>
#include <string>

namespace tamlo {
namespace {

/// A value off the default for every option that a rule speaks of.
const std::map<std::string, std::string> kValues{{"wb_mode", "custom"},
                                                 {"stop", "2"},
                                                 {"filter", "red_29"},
                                                 {"filter_amount", "0.5"},
                                                 {"filter_cut_amount", "0.5"},
                                                 {"filter_diffusion_amount", "0.5"},
                                                 {"rays_angle", "20"},
                                                 {"grad_pos", "0.3"},
                                                 {"grad_angle", "40"},
                                                 {"glow_mult", "3"},
                                                 {"glow_radius_mult", "3"},
                                                 {"distortion", "false"},
                                                 {"format", "sheet"},
                                                 {"frame_size", "xpan"},
                                                 {"crop_gate", "none"},
                                                 {"push", "1"},
                                                 {"dev", "bleach_bypass"},
                                                 {"dev_temp_c", "8"},
                                                 {"dev_mottle", "3"},
                                                 {"dev_uneven", "2"},
                                                 {"c41_temp_c", "20"},
                                                 {"redscale", "true"},
                                                 {"expired_years", "20"},
                                                 {"plate_shift", "3"},
                                                 {"plate_pour", "3"},
                                                 {"intensify", "1"},
                                                 {"interlayer", "true"},
                                                 {"grain_rms", "true"},
                                                 {"halation_mult", "4"},
                                                 {"print_ev", "1"},
                                                 {"grade", "4"},
                                                 {"print_black", "1"},
                                                 {"print_white", "1"},
                                                 {"border", "0.2"},
                                                 {"border_black", "true"},
                                                 {"paper_base", "buff"},
                                                 {"print_cm", "60"},
                                                 {"sheet_cm", "50"},
                                                 {"print_texture", "3"},
                                                 {"inkjet_banding", "2"},
                                                 {"inkjet_feed", "short"},
                                                 {"repro_raster", "off"},
                                                 {"crt_zoom", "3"},
                                                 {"crt_size_in", "10"},
                                                 {"crt_phosphor", "amber"},
                                                 {"ink_roller", "1"},
                                                 {"coat", "brush"},
                                                 {"coat_rough", "3"},
                                                 {"pickup", "0.3"},
                                                 {"relief", "2"},
                                                 {"plate_mark", "true"},
                                                 {"frame", "0.1"},
                                                 {"frame_rough", "2"},
                                                 {"frame_style", "wide"},
                                                 {"frame_print", "true"},
                                                 {"frame_print_text", "Tamlo"},
                                                 {"frame_number", "5"},
                                                 {"instant_frame", "false"},
                                                 {"peel_size", "8x10"},
                                                 {"card_outside", "0,0,0"},
                                                 {"table", "black"},
                                                 {"table_width_cm", "9"},
                                                 {"mat", "double"},
                                                 {"mat_width_cm", "9"},
                                                 {"mat_bottom_weight", "1.3"},
                                                 {"mat_color", "black"},
                                                 {"mat_core", "cream"},
                                                 {"mat_bevel_mm", "3"},
                                                 {"mat_reveal_mm", "9"},
                                                 {"mat_reveal_color", "black"},
                                                 {"mat_grip_mm", "9"},
                                                 {"emboss_line", "double"},
                                                 {"blind_stamp", "true"},
                                                 {"stamp_text", "Tamlo"},
                                                 {"stamp_size", "xl"},
                                                 {"social_px", "99"},
                                                 {"social_by", "long"},
                                                 {"social_crop45", "true"}};

/// Options that act on the print's size, which shows only in its metadata and in what a sheet carries.
bool isOfThePrintsSize(const std::string& key)
{
    return key == "print_cm" || key == "sheet_cm";
}

/// Options of the emulsion, the light and the enlarger, whose stages all materials of this test have.
bool isOfTheEnlarger(const std::string& key)
{
    static const std::set<std::string> kOthers{
        "dev_temp_c",     "dev_mottle",  "plate_shift",      "plate_pour",    "paper_base",  "print_texture",
        "inkjet_banding", "inkjet_feed", "repro_raster",     "crt_zoom",      "crt_size_in", "crt_phosphor",
        "ink_roller",     "coat",        "coat_rough",       "pickup",        "relief",      "plate_mark",
        "frame",          "frame_rough", "frame_style",      "instant_frame", "peel_size",   "card_outside",
        "table",          "mat",         "emboss_line",      "blind_stamp",   "stamp_text",  "table_width_cm",
        "stamp_size",     "frame_print", "frame_print_text", "frame_number"};
    return !kOthers.contains(key) && !key.starts_with("mat_") && !isOfThePrintsSize(key);
}

struct Material {
    const char *film, *lens, *paper;
    std::vector<std::pair<std::string, std::string>> options;
};

/// About 48 × 32 pixels of picture, with lights for halation, glow and stars. A crop takes so little film
/// that silver grain shows.
RGBImage rendered(const RenderChoices& choices)
{
    const auto lit = [](std::int64_t width, std::int64_t height) {
        RGBImage source = test::noisePicture(width, height, 4, 3.0f);
        for (std::int64_t i = 0; i < 27; ++i)
            source.mutableData()[(height / 2 * width + width * (i / 3) / 9) * 3 + i % 3] = 40.0f;
        return source;
    };
    static const RGBImage small = lit(48, 32), large = lit(480, 320);
    return Pipeline::process(choices.options.crop ? large : small, choices.film, choices.lens, choices.paper,
                             choices.options);
}

TEST(IdleOptions, AreThoseThatChangeNoBit)
{
    const Material materials[] = {
        {"portra400", "summilux50_asph", "color_ra4", {}},
        {"portra400", "modern_clean", "color_ra4", {{"dev", "hand"}, {"border", "0.1"}, {"sheet_cm", "30"}}},
        {"cinestill800t", "modern_clean", "color_scan", {{"border", "0.1"}, {"crop", "0.4,0.45,0.1,0.1"}}},
        {"trix400",
         "pinhole",
         "bw_graded3",
         {{"filter_cut", "red_29"}, {"format", "120"}, {"crop", "0.4,0.45,0.1,0.1"}}},
        {"fp4",
         "imagon",
         "bw_neutral",
         {{"filter_diffusion", "promist_1"}, {"filter_grad", "grad_nd2_soft"}, {"crop", "0.4,0.45,0.1,0.1"}}},
        {"dryplate_ortho",
         "verito",
         "bw_neutral",
         {{"filter_rays", "star_4"}, {"format", "plate"}, {"crop", "0.4,0.45,0.1,0.1"}}},
        {"portra400", "modern_clean", "bw_neutral", {{"filter", "promist_1"}}},
        {"velvia50", "modern_clean", "projector", {}},
        {"velvia50", "modern_clean", "scan_film", {}},
        {"velvia50", "modern_clean", "cibachrome", {}},
        {"velvia50", "modern_clean", "color_ra4", {}},
        {"collodion_wet",
         "modern_clean",
         "bw_neutral",
         {{"dev", "iron"}, {"format", "plate"}, {"crop", "0.4,0.45,0.1,0.1"}}},
        {"fp100c", "modern_clean", "color_scan", {}},
        {"aerochrome", "modern_clean", "scan_minilab", {}},
    };
    const ProfileStore& store = ProfileStore::shared();
    std::map<std::string, int> idleTimes, activeTimes;
    for (const Material& material : materials) {
        RenderChoices choices{
            store.film(material.film), store.lens(material.lens), store.paper(material.paper), {}};
        choices.options.frameSize = "full";
        if (choices.film.dryplate) choices.film.halation.reset(); // no carried film is without
        for (const auto& [key, value] : material.options) setOption(choices.options, key, value);
        const RGBImage usual = rendered(choices);
        for (const auto& [key, value] : kValues) {
            SCOPED_TRACE(std::string(material.film) + ", " + material.lens + ", " + material.paper + ": " +
                         key);
            RenderChoices changed = choices;
            setOption(changed.options, key, value);
            const bool idle = !Pipeline::idleOptions(changed, {key}).empty();
            ++(idle ? idleTimes : activeTimes)[key];
            const RGBImage picture = rendered(changed);
            const bool same = picture.size() == usual.size() && std::ranges::equal(picture.data, usual.data);
            if (idle) {
                EXPECT_TRUE(same);
            } else if (isOfTheEnlarger(key) && !choices.film.isInstant()) {
                EXPECT_FALSE(same);
            }
        }
    }
    for (const auto& [key, value] : kValues) EXPECT_GT(idleTimes[key], 0) << key;
    for (const auto& [key, value] : kValues)
        if (isOfTheEnlarger(key) && !key.starts_with("social_")) {
            EXPECT_GT(activeTimes[key], 0) << key;
        }
}

TEST(IdleOptions, SpeakOnlyOfWhatWasAskedForAndIsOffItsDefault)
{
    const ProfileStore& store = ProfileStore::shared();
    RenderChoices choices{store.film("fp4"), store.lens("modern_clean"), store.paper("bw_neutral"), {}};
    choices.options.redscale = true;
    choices.options.frameSize = "6x7";
    EXPECT_TRUE(Pipeline::idleOptions(choices, {}).empty());
    EXPECT_TRUE(Pipeline::idleOptions(choices, {"ev", "interlayer"}).empty());
    const auto idle = Pipeline::idleOptions(choices, {"redscale", "frame_size"});
    ASSERT_EQ(idle.size(), 2u);
    EXPECT_EQ(idle[0].key, "frame_size");
    EXPECT_EQ(idle[0].reasonKey, "idle.otherFormatsSize");
    EXPECT_EQ(idle[1].reasonKey, "idle.needs.colourNegative");
}

} // namespace
} // namespace tamlo
