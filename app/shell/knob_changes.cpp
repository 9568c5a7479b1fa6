#include "app/shell/knob_changes.h"

#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/json_codec.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/options/option_table.h"
#include "core/text/loc.h"

#include <cmath>
#include <optional>

namespace tamlo {

namespace {

struct Knob {
    const char* option;
    const char* field; ///< the field's name, last part of its text key
};

constexpr Knob kKnobs[] = {
    {"ev", "ev"},
    {"src_exposure", "srcExposure"},
    {"src_lights", "srcLights"},
    {"wb_mode", "wbMode"},
    {"wb_temp", "wbTemp"},
    {"wb_tint", "wbTint"},
    {"stop", "stop"},
    {"glow_mult", "glowMult"},
    {"glow_radius_mult", "glowRadiusMult"},
    {"distortion", "distortion"},
    {"filter_cut", "filterCut"},
    {"filter_cut_amount", "filterCutAmount"},
    {"filter_diffusion", "filterDiffusion"},
    {"filter_diffusion_amount", "filterDiffusionAmount"},
    {"format", "format"},
    {"frame_size", "format"},
    {"push", "push"},
    {"dev", "dev"},
    {"dev_temp_c", "devTempC"},
    {"dev_mottle", "devMottle"},
    {"dev_uneven", "devUneven"},
    {"c41_temp_c", "c41TempC"},
    {"redscale", "redscale"},
    {"expired_years", "expiredYears"},
    {"plate_shift", "plateShift"},
    {"plate_pour", "platePour"},
    {"intensify", "intensify"},
    {"grain_mult", "grainMult"},
    {"grain_size_mult", "grainSizeMult"},
    {"halation_mult", "halationMult"},
    {"print_ev", "printEv"},
    {"grade", "grade"},
    {"print_black", "printBlack"},
    {"print_white", "printWhite"},
    {"sheet_cm", "sheetCm"},
    {"inkjet_banding", "inkjetBanding"},
    {"inkjet_feed", "inkjetFeed"},
    {"crt_zoom", "crtZoom"},
    {"crt_phosphor", "crtPhosphor"},
    {"border", "border"},
    {"border_black", "borderBlack"},
    {"frame_style", "frameStyle"},
    {"frame_rough", "frameRough"},
    {"instant_frame", "instantFrame"},
    {"paper_base", "paperBase"},
    {"print_cm", "printCm"},
    {"print_texture", "printTexture"},
    {"ink_roller", "inkRoller"},
    {"coat", "coat"},
    {"coat_rough", "coatRough"},
    {"pickup", "pickup"},
    {"relief", "relief"},
    {"plate_mark", "plateMark"},
    {"table", "table"},
    {"table_width_cm", "tableWidthCm"},
    {"mat", "mat"},
    {"mat_width_cm", "matWidthCm"},
    {"filter_grad", "filterGrad"},
    {"grad_pos", "gradPos"},
    {"grad_angle", "gradAngle"},
    {"filter_rays", "filterRays"},
    {"rays_angle", "raysAngle"},
    {"format_120_cm", "format120Cm"},
    {"peel_size", "peelSize"},
    {"interlayer", "interlayer"},
    {"grain_rms", "grainRms"},
    {"emboss_line", "embossLine"},
    {"blind_stamp", "blindStamp"},
    {"stamp_text", "stampText"},
    {"stamp_size", "stampSize"},
    {"mat_color", "matColor"},
    {"mat_core", "matCore"},
    {"mat_bottom_weight", "matBottomWeight"},
    {"mat_bevel_mm", "matBevelMm"},
    {"mat_reveal_mm", "matRevealMm"},
    {"mat_reveal_color", "matRevealColor"},
    {"mat_grip_mm", "matGripMm"},
};

KnobChange named(const char* field)
{
    return {field, T(std::string("knob.") + field)};
}

bool differs(const RenderOptions& a, const RenderOptions& b, const char* option)
{
    const OptionRow& row = *findOption(option);
    Json before, after;
    row.write(a, before);
    row.write(b, after);
    return before != after;
}

std::optional<LensProfile> lensOf(const ProcessSettings& settings, const ProfileStore& store)
{
    try {
        return store.lens(settings.lens);
    } catch (const ProfileError&) {
        return std::nullopt;
    } catch (const TamloError&) {
        return std::nullopt;
    }
}

bool same(double a, double b)
{
    constexpr double kNothing = 1e-6;
    return std::abs(a - b) < kNothing;
}

const SieveDisc* discOf(const LensProfile& lens, const RenderOptions& options)
{
    if (!lens.discs) return nullptr;
    for (const SieveDisc& disc : *lens.discs)
        if (same(disc.glowMult, options.glowMult) && same(disc.glowRadiusMult, options.glowRadiusMult))
            return &disc;
    return nullptr;
}

/// One sieve disc of the lens was put in for another. Values that no disc has are two knobs.
std::optional<KnobChange> discChange(const ProcessSettings& from, const ProcessSettings& to,
                                     const ProfileStore& store)
{
    const RenderOptions &a = from.options, &b = to.options;
    if (same(a.glowMult, b.glowMult) && same(a.glowRadiusMult, b.glowRadiusMult)) return std::nullopt;
    const std::optional<LensProfile> lens = lensOf(to, store);
    if (!lens) return std::nullopt;
    const SieveDisc *before = discOf(*lens, a), *after = discOf(*lens, b);
    if (!before || !after || before == after) return std::nullopt;
    return KnobChange{"disc", T("knob.disc", {{"name", after->name}})};
}

} // namespace

std::vector<KnobChange> knobDiffs(const RenderOptions& a, const RenderOptions& b)
{
    std::vector<KnobChange> out;
    for (const Knob& knob : kKnobs)
        if (differs(a, b, knob.option) && (out.empty() || out.back().key != knob.field))
            out.push_back(named(knob.field));
    return out;
}

std::vector<KnobChange> differences(const ProcessSettings& from, const ProcessSettings& to)
{
    std::vector<KnobChange> out;
    if (from.stock != to.stock) out.push_back(named("stock"));
    if (from.lens != to.lens) out.push_back(named("lens"));
    if (from.paper != to.paper) out.push_back(named("paper"));
    for (KnobChange& knob : knobDiffs(from.options, to.options)) out.push_back(std::move(knob));
    return out;
}

KnobChange changeOf(const ProcessSettings& from, const ProcessSettings& to, const ProfileStore& store)
{
    if (from.stock != to.stock) return named("stock");
    if (from.lens != to.lens) return named("lens");
    if (from.paper != to.paper) return named("paper");
    if (auto disc = discChange(from, to, store)) return *disc;
    for (const Knob& knob : kKnobs)
        if (differs(from.options, to.options, knob.option)) return named(knob.field);
    return named("process");
}

} // namespace tamlo
