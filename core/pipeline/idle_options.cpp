#include "core/pipeline/idle_options.h"

#include "core/film/emulsion/development.h"
#include "core/film/lens/optics.h"
#include "core/film/light/emulsion_input.h"
#include "core/process/card/card_geometry.h"
#include "core/process/card/card_relief.h"
#include "core/process/mat/mat_plan.h"
#include "core/process/mat/table.h"
#include "core/process/rebate/frame_plan.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/option_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using Choices = RenderChoices;

bool chosen(const OptText& text)
{
    return text && !text->empty() && *text != "none";
}

bool nonZero(const OptNumber& value)
{
    return std::abs(value.value_or(0.0)) > 1e-9;
}

// The film.

bool isColour(const Choices& c)
{
    return c.film.type == "color";
}
bool isInstant(const Choices& c)
{
    return c.film.isInstant();
}
bool isNoInstant(const Choices& c)
{
    return !c.film.isInstant();
}
bool isPeelApart(const Choices& c)
{
    return c.film.isInstant() && c.film.frame && c.film.frame->style == "peel";
}
/// Something is seen beyond the corners of the card.
bool hasACutCard(const Choices& c)
{
    if (!c.film.isInstant() || !c.options.instantFrame) return false;
    const InstantFrameParams& frame = Pipeline::cardFrame(c.film);
    const bool onTable = Table::wantsTable(c.options) && !Finishing::wantsMat(c.options);
    return !Pipeline::isPeel(frame) && CardRelief::isCut(frame) && !onTable;
}
bool isTricolor(const Choices& c)
{
    return c.film.isTricolor();
}
bool isPoured(const Choices& c)
{
    return c.film.isCollodion() || c.film.dryplate.has_value();
}
bool canBeIntensified(const Choices& c)
{
    return c.film.isCollodion() && c.film.negative && c.film.negative->dmaxIntensified;
}
bool canExpire(const Choices& c)
{
    return !c.film.dryplate && !c.film.isCollodion() && !c.film.isTricolor();
}
bool hasItsDeveloper(const Choices& c)
{
    return Developers::applied(c.options.dev, c.film) == Developers::effective(c.options.dev, c.film);
}
bool isDevelopedByHand(const Choices& c)
{
    return isColour(c) && c.options.dev == Development::hand;
}
bool isDevelopedInATank(const Choices& c)
{
    return !c.film.isInstant() && !c.film.isCollodion();
}
bool returnsLight(const Choices& c)
{
    return (c.film.halation && c.film.halation->strength.value_or(0.0) > 1e-5) ||
           (c.options.redscale && isColour(c));
}
bool hasDataSheetDyes(const Choices& c)
{
    if (c.film.isBW()) return false;
    if (Film::sensitizationMatrix(c.film, true)) return true;
    const bool isPositive = c.film.isSlide() || (c.film.isInstant() && !c.film.isMonoInstant());
    const bool mixes = isColour(c) || isPositive;
    return mixes && c.film.couplers && c.film.couplers->matrixDs && (isPositive || !c.film.couplers->matrix);
}
bool hasDataSheetGrain(const Choices& c)
{
    return c.film.grain && c.film.grain->amountRms.has_value();
}
bool hasItsOwnLight(const Choices& c)
{
    return c.options.wbMode != "custom" ||
           (!c.film.isBW() && Film::balanceGains(c.film, Film::sceneRefK).has_value());
}

// The frame on the film.

bool hasFrameSize(const Choices& c)
{
    if (!c.options.format || !c.options.frameSize) return true;
    const auto name = Formats::normalizeFormat(rawText(*c.options.format), c.options.frameSize);
    return !name.size || *name.size != "custom" || *c.options.frameSize == "custom";
}
bool isSized120(const Choices& c)
{
    return c.options.format == FilmFormat::f120;
}
bool hasACrop(const Choices& c)
{
    return c.options.crop.has_value();
}

// The lens and the filters.

bool answersTheStop(const Choices& c)
{
    const OpticsParams& lens = c.lens.optics;
    const Optics::StopGains gains = Optics::stopGains(c.options.stop, lens);
    const auto moves = [](double gain) { return std::abs(gain - 1.0) > 1e-9; };
    const bool field = nonZero(lens.fieldCurvature) || nonZero(lens.astigmatism) || nonZero(lens.coma);
    const bool soft = nonZero(lens.bloom) || nonZero(lens.glow) || nonZero(lens.soften) || lens.chromaSoft;
    return (moves(gains.vig) && nonZero(lens.vignette)) || (moves(gains.sa) && (soft || field)) ||
           (moves(gains.swirl) && field);
}
bool glows(const Choices& c)
{
    return nonZero(c.lens.optics.glow);
}
bool distorts(const Choices& c)
{
    return nonZero(c.lens.optics.distortion) || nonZero(c.lens.optics.distortionK5);
}
bool hasNoNewerFilter(const Choices& c)
{
    return !chosen(c.options.filterCut) && !chosen(c.options.filterDiffusion);
}
bool hasFilter(const Choices& c)
{
    return chosen(c.options.filter) && hasNoNewerFilter(c);
}
bool hasCut(const Choices& c)
{
    return chosen(c.options.filterCut);
}
bool hasDiffusion(const Choices& c)
{
    return chosen(c.options.filterDiffusion);
}
bool hasRays(const Choices& c)
{
    return chosen(c.options.filterRays);
}
bool hasGrad(const Choices& c)
{
    return chosen(c.options.filterGrad);
}

// The print.

bool isNegative(const Choices& c)
{
    return isColour(c) || c.film.isBW() || c.film.isCollodion();
}
bool isReversalPrint(const Choices& c)
{
    return c.film.isSlide() && c.paper.isReversal();
}
bool isScannedPositive(const Choices& c)
{
    return (c.film.isSlide() || c.film.isTricolor()) && c.paper.scan && !isReversalPrint(c);
}
/// A negative or a slide goes through a curve whose exposure and contrast the printer has in hand.
bool isPrinted(const Choices& c)
{
    return isNegative(c) || isReversalPrint(c) || isScannedPositive(c);
}
bool hasOwnExposure(const Choices& c)
{
    return !isScannedPositive(c) || !c.paper.fixedExposure.value_or(false);
}
bool hasOwnGrade(const Choices& c)
{
    return !c.paper.fixedGrade.value_or(false) && !c.paper.isPlate();
}
bool hasOwnEnds(const Choices& c)
{
    return !c.paper.isPlate() && !(isScannedPositive(c) && c.paper.fixedGrade.value_or(false));
}
bool isAlternative(const Choices& c)
{
    return c.paper.isAlt() && isNegative(c) && !(c.film.isCollodion() && c.paper.isPlate());
}
bool isInked(const Choices& c)
{
    return isAlternative(c) && c.paper.pigment && c.paper.pigment->mode == "ink";
}
bool isCoated(const Choices& c)
{
    return isAlternative(c) && c.paper.coat.has_value();
}
bool isTransferred(const Choices& c)
{
    return isAlternative(c) && c.paper.transfer.has_value();
}
bool hasRelief(const Choices& c)
{
    return isAlternative(c) && c.paper.relief.has_value();
}
bool hasStructure(const Choices& c)
{
    return isAlternative(c) || c.paper.surface || c.paper.isRepro();
}
bool isInkjet(const Choices& c)
{
    return c.paper.repro == "inkjet";
}
bool isReproduced(const Choices& c)
{
    return c.paper.isRepro();
}
bool isOnScreen(const Choices& c)
{
    return c.paper.repro == "crt";
}
bool isOnAMonoTube(const Choices& c)
{
    return isOnScreen(c) && c.paper.crt && c.paper.crt->phosphor.has_value();
}
bool isNoScreen(const Choices& c)
{
    return !isOnScreen(c);
}
bool isNoPlate(const Choices& c)
{
    return !c.paper.isPlate();
}
bool hasNoSheetSize(const Choices& c)
{
    return c.options.sheetCm.value_or(0.0) <= 0.0;
}
bool hasABorder(const Choices& c)
{
    return c.options.border > 0.0;
}
bool hasNoSheet(const Choices& c)
{
    return !c.paper.hasSheet();
}
bool hasASheet(const Choices& c)
{
    return c.paper.hasSheet() || c.film.isInstant();
}

// The rebate and the mount.

bool hasARebate(const Choices& c)
{
    return c.options.frameStyle != FrameStyle::none || c.options.frame > 0.0;
}
/// Film lies beyond the picture as far as its own edge. Whether the picture is a whole frame is not known
/// here.
bool hasEdgeFilm(const Choices& c)
{
    RenderOptions printed = c.options;
    printed.framePrint = true;
    return isNoInstant(c) && isNoScreen(c) && Pipeline::hasFilmPrint(c.film, printed, {});
}
bool hasEdgePrint(const Choices& c)
{
    return c.options.framePrint && hasEdgeFilm(c);
}
bool hasATable(const Choices& c)
{
    return chosen(c.options.table);
}
bool hasAMat(const Choices& c)
{
    return chosen(c.options.mat);
}
bool hasADoubleMat(const Choices& c)
{
    return c.options.mat == "double";
}
bool hasAStampText(const Choices& c)
{
    return c.options.stampText && !c.options.stampText->empty();
}
bool never(const Choices&)
{
    return false;
}

struct Rule {
    const char* key;
    bool (*acts)(const Choices&);
    const char* reasonKey;
};

/// A key may have several rules; the first that does not hold gives the reason. An option without one always
/// acts.
constexpr Rule kRules[] = {
    {"wb_mode", hasItsOwnLight, "idle.daylightFilm"},
    {"stop", answersTheStop, "idle.lensIgnoresStop"},
    {"filter", hasNoNewerFilter, "idle.newerFilter"},
    {"filter_amount", hasFilter, "idle.needs.filter"},
    {"filter_cut_amount", hasCut, "idle.needs.filterCut"},
    {"filter_diffusion_amount", hasDiffusion, "idle.needs.filterDiffusion"},
    {"rays_angle", hasRays, "idle.needs.filterRays"},
    {"grad_pos", hasGrad, "idle.needs.filterGrad"},
    {"grad_angle", hasGrad, "idle.needs.filterGrad"},
    {"glow_mult", glows, "idle.lensHasNoGlow"},
    {"glow_radius_mult", glows, "idle.lensHasNoGlow"},
    {"distortion", distorts, "idle.lensIsStraight"},
    {"format", isNoInstant, "idle.instantSize"},
    {"format_120_cm", isNoInstant, "idle.instantSize"},
    {"format_120_cm", isSized120, "idle.needs.format120"},
    {"frame_size", isNoInstant, "idle.instantSize"},
    {"frame_size", hasFrameSize, "idle.otherFormatsSize"},
    {"crop_gate", isNoInstant, "idle.instantSize"},
    {"crop_gate", hasACrop, "idle.needs.crop"},
    {"push", isNoInstant, "idle.instantDevelopment"},
    {"dev", isNoInstant, "idle.instantDevelopment"},
    {"dev", hasItsDeveloper, "idle.otherDeveloper"},
    {"dev_temp_c", isInstant, "idle.needs.instant"},
    {"dev_mottle", isInstant, "idle.needs.instant"},
    {"dev_uneven", isDevelopedInATank, "idle.noTank"},
    {"c41_temp_c", isDevelopedByHand, "idle.needs.hand"},
    {"redscale", isColour, "idle.needs.colourNegative"},
    {"expired_years", canExpire, "idle.plateKeeps"},
    {"plate_shift", isTricolor, "idle.needs.tricolor"},
    {"plate_pour", isPoured, "idle.needs.plate"},
    {"intensify", canBeIntensified, "idle.needs.collodion"},
    {"interlayer", hasDataSheetDyes, "idle.noDataSheetDyes"},
    {"grain_mult", isNoInstant, "idle.instantGrain"},
    {"grain_size_mult", isNoInstant, "idle.instantGrain"},
    {"grain_rms", isNoInstant, "idle.instantGrain"},
    {"grain_engine", isNoInstant, "idle.instantGrain"},
    {"grain_rms", hasDataSheetGrain, "idle.noDataSheetGrain"},
    {"halation_mult", returnsLight, "idle.noHalation"},
    {"print_ev", isNoInstant, "idle.instantPrint"},
    {"print_ev", isPrinted, "idle.shownAsItIs"},
    {"print_ev", hasOwnExposure, "idle.fixedExposure"},
    {"grade", isNoInstant, "idle.instantPrint"},
    {"grade", isPrinted, "idle.shownAsItIs"},
    {"grade", hasOwnGrade, "idle.fixedGrade"},
    {"print_black", isNoInstant, "idle.instantPrint"},
    {"print_black", isPrinted, "idle.shownAsItIs"},
    {"print_black", hasOwnEnds, "idle.fixedGrade"},
    {"print_white", isNoInstant, "idle.instantPrint"},
    {"print_white", isPrinted, "idle.shownAsItIs"},
    {"print_white", hasOwnEnds, "idle.fixedGrade"},
    {"border", isNoInstant, "idle.instantPrint"},
    {"border", isNoPlate, "idle.plateIsThePrint"},
    {"border_black", isNoInstant, "idle.instantPrint"},
    {"border_black", hasNoSheet, "idle.paperBorder"},
    {"border_black", hasABorder, "idle.needs.border"},
    {"paper_base", isAlternative, "idle.needs.alternative"},
    {"print_cm", isNoInstant, "idle.instantSize"},
    {"print_cm", isNoPlate, "idle.plateIsThePrint"},
    {"print_cm", isNoScreen, "idle.screenSize"},
    {"print_cm", hasNoSheetSize, "idle.sheetDecides"},
    {"sheet_cm", isNoInstant, "idle.instantSize"},
    {"sheet_cm", isNoPlate, "idle.plateIsThePrint"},
    {"sheet_cm", isNoScreen, "idle.screenSize"},
    {"print_texture", hasStructure, "idle.smoothPaper"},
    {"inkjet_banding", isInkjet, "idle.needs.inkjet"},
    {"inkjet_feed", isInkjet, "idle.needs.inkjet"},
    {"repro_raster", isReproduced, "idle.needs.repro"},
    {"crt_zoom", isOnScreen, "idle.needs.screen"},
    {"crt_size_in", isOnScreen, "idle.needs.screen"},
    {"crt_phosphor", isOnAMonoTube, "idle.needs.monoTube"},
    {"ink_roller", isInked, "idle.needs.ink"},
    {"coat", isCoated, "idle.needs.coating"},
    {"coat_rough", isCoated, "idle.needs.coating"},
    {"pickup", isTransferred, "idle.needs.transfer"},
    {"relief", hasRelief, "idle.needs.relief"},
    {"plate_mark", isAlternative, "idle.needs.alternative"},
    {"frame", isNoInstant, "idle.instantRebate"},
    {"frame", isNoScreen, "idle.screenRebate"},
    {"frame_rough", isNoInstant, "idle.instantRebate"},
    {"frame_rough", isNoScreen, "idle.screenRebate"},
    {"frame_rough", hasARebate, "idle.needs.rebate"},
    {"frame_style", isNoInstant, "idle.instantRebate"},
    {"frame_style", isNoScreen, "idle.screenRebate"},
    {"frame_print", isNoInstant, "idle.instantRebate"},
    {"frame_print", hasEdgeFilm, "idle.needs.filmPrint"},
    {"frame_print_text", hasEdgePrint, "idle.needs.framePrint"},
    {"frame_number", hasEdgePrint, "idle.needs.framePrint"},
    {"instant_frame", isInstant, "idle.needs.instant"},
    {"peel_size", isPeelApart, "idle.needs.peelApart"},
    {"card_outside", isInstant, "idle.needs.instant"},
    {"card_outside", hasACutCard, "idle.needs.cutCard"},
    {"table", hasASheet, "idle.noSheet"},
    {"table_width_cm", hasATable, "idle.needs.table"},
    {"mat", hasASheet, "idle.noSheet"},
    {"mat_width_cm", hasAMat, "idle.needs.mat"},
    {"mat_bottom_weight", hasAMat, "idle.needs.mat"},
    {"mat_color", hasAMat, "idle.needs.mat"},
    {"mat_core", hasAMat, "idle.needs.mat"},
    {"mat_bevel_mm", hasAMat, "idle.needs.mat"},
    {"mat_reveal_mm", hasADoubleMat, "idle.needs.doubleMat"},
    {"mat_reveal_color", hasADoubleMat, "idle.needs.doubleMat"},
    {"mat_grip_mm", hasAMat, "idle.needs.mat"},
    {"emboss_line", hasASheet, "idle.noSheet"},
    {"blind_stamp", hasASheet, "idle.noSheet"},
    {"stamp_text", hasASheet, "idle.noSheet"},
    {"stamp_size", hasAStampText, "idle.needs.stampText"},
    {"social_px", never, "idle.exportsOnly"},
    {"social_by", never, "idle.exportsOnly"},
    {"social_crop45", never, "idle.exportsOnly"},
};

bool isDefault(const OptionRow& row, const RenderOptions& options)
{
    nlohmann::json now, usual;
    row.write(options, now);
    row.write(RenderOptions{}, usual);
    return now == usual || now == "" || (usual.is_null() && (now == "none" || now == false));
}

} // namespace

std::vector<Pipeline::IdleOption> Pipeline::idleOptions(const RenderChoices& choices,
                                                        const std::set<std::string>& asked)
{
    std::vector<IdleOption> idle;
    for (const OptionRow& row : optionTable()) {
        if (!asked.contains(row.key) || isDefault(row, choices.options)) continue;
        const auto broken = std::ranges::find_if(kRules, [&](const Rule& rule) {
            return std::string_view(rule.key) == row.key && !rule.acts(choices);
        });
        if (broken != std::end(kRules)) idle.push_back({row.key, broken->reasonKey});
    }
    return idle;
}

} // namespace tamlo
