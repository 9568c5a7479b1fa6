#include "app/shell/knob_table.h"

#include "core/profiles/formats/json_codec.h"
#include "core/profiles/options/option_table.h"
#include "core/text/loc.h"

#include <algorithm>

namespace tamlo {

namespace {

constexpr Knob kKnobs[] = {
    {"ev", "ev", 0.1},
    {"src_exposure", "srcExposure"},
    {"src_lights", "srcLights", 0.05},
    {"wb_mode", "wbMode"},
    {"wb_temp", "wbTemp", 1},
    {"wb_tint", "wbTint", 1},
    {"stop", "stop", 1.0 / 3},
    {"glow_mult", "glowMult", 0.05},
    {"glow_radius_mult", "glowRadiusMult", 0.05},
    {"distortion", "distortion"},
    {"filter_cut", "filterCut"},
    {"filter_cut_amount", "filterCutAmount", 0.05},
    {"filter_diffusion", "filterDiffusion"},
    {"filter_diffusion_amount", "filterDiffusionAmount", 0.05},
    {"format", "format"},
    {"frame_size", "format"},
    {"push", "push", 0.5},
    {"dev", "dev"},
    {"dev_temp_c", "devTempC", 0.2},
    {"dev_mottle", "devMottle", 0.05},
    {"dev_uneven", "devUneven", 0.05},
    {"c41_temp_c", "c41TempC", 0.2},
    {"redscale", "redscale"},
    {"expired_years", "expiredYears", 1},
    {"plate_shift", "plateShift", 0.1},
    {"plate_pour", "platePour", 0.1},
    {"intensify", "intensify", 0.05},
    {"grain_mult", "grainMult", 0.05},
    {"grain_size_mult", "grainSizeMult", 0.05},
    {"halation_mult", "halationMult", 0.05},
    {"print_ev", "printEv", 0.1},
    {"grade", "grade", 0.1},
    {"print_black", "printBlack", 0.02},
    {"print_white", "printWhite", 0.02},
    {"sheet_cm", "sheetCm", 1},
    {"inkjet_banding", "inkjetBanding", 0.05},
    {"inkjet_feed", "inkjetFeed"},
    {"crt_zoom", "crtZoom", 0.1},
    {"crt_phosphor", "crtPhosphor"},
    {"border", "border", 0.005},
    {"border_black", "borderBlack"},
    {"frame_style", "frameStyle"},
    {"frame_rough", "frameRough", 0.05},
    {"frame_print", "framePrint"},
    {"frame_print_text", "framePrintText"},
    {"instant_frame", "instantFrame"},
    {"paper_base", "paperBase"},
    {"print_cm", "printCm", 1},
    {"print_texture", "printTexture", 0.05},
    {"ink_roller", "inkRoller", 0.02},
    {"coat", "coat"},
    {"coat_rough", "coatRough", 0.05},
    {"pickup", "pickup", 0.05},
    {"relief", "relief", 0.05},
    {"plate_mark", "plateMark"},
    {"table", "table"},
    {"table_width_cm", "tableWidthCm", 0.1},
    {"mat", "mat"},
    {"mat_width_cm", "matWidthCm", 0.1},
    {"filter_grad", "filterGrad"},
    {"grad_pos", "gradPos", 0.02},
    {"grad_angle", "gradAngle", 1},
    {"filter_rays", "filterRays"},
    {"rays_angle", "raysAngle", 1},
    {"format_120_cm", "format120Cm", 0.1},
    {"peel_size", "peelSize"},
    {"interlayer", "interlayer"},
    {"grain_rms", "grainRms"},
    {"emboss_line", "embossLine"},
    {"blind_stamp", "blindStamp"},
    {"stamp_text", "stampText"},
    {"stamp_size", "stampSize"},
    {"mat_color", "matColor"},
    {"mat_core", "matCore"},
    {"mat_bottom_weight", "matBottomWeight", 0.01},
    {"mat_bevel_mm", "matBevelMm", 0.1},
    {"mat_reveal_mm", "matRevealMm", 0.1},
    {"mat_reveal_color", "matRevealColor"},
    {"mat_grip_mm", "matGripMm", 0.1},
};

double numberOf(const OptionRow& row, const RenderOptions& options, double whenAbsent)
{
    Json value;
    row.write(options, value);
    return value.is_number() ? value.get<double>() : std::clamp(whenAbsent, row.low, row.high);
}

} // namespace

std::string Knob::title() const
{
    return T(std::string("knob.") + field);
}

bool Knob::turnsSign() const
{
    return std::string_view(option) == "print_ev";
}

std::span<const Knob> knobTable()
{
    return kKnobs;
}

const Knob* findKnob(std::string_view option)
{
    const auto found = std::ranges::find(kKnobs, option, &Knob::option);
    return found == std::end(kKnobs) ? nullptr : found;
}

KnobRow knobRow(const Knob& knob, const RenderOptions& options, double whenAbsent)
{
    const OptionRow& row = *findOption(knob.option);
    KnobRow out{.value = numberOf(row, options, whenAbsent),
                .def = numberOf(row, RenderOptions{}, whenAbsent),
                .low = row.low,
                .high = row.high,
                .step = knob.step,
                .isSigned = row.low < 0};
    if (!knob.turnsSign()) return out;
    out.value = -out.value;
    out.def = -out.def;
    out.low = -row.high;
    out.high = -row.low;
    return out;
}

void toDefault(const Knob& knob, RenderOptions& options)
{
    const OptionRow& row = *findOption(knob.option);
    Json usual;
    row.write(RenderOptions{}, usual);
    if (usual.is_null() && row.clear)
        row.clear(options);
    else
        row.read(options, usual, JsonPath());
}

void turn(const Knob& knob, RenderOptions& options, double shown)
{
    const OptionRow& row = *findOption(knob.option);
    row.read(options, knob.turnsSign() ? -shown : shown, JsonPath());
}

} // namespace tamlo
