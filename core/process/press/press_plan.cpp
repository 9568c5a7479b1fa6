#include "core/process/press/press_plan.h"

#include "core/process/press/banding.h"
#include "core/process/raster/raster.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using namespace ReproPrint;

/// A drop's soft edge in shares of its cell, and the most that is drawn of it.
constexpr double kDropEdge = 0.15;
constexpr double kMostDropEdgePx = 10.0;
constexpr double kLeastSoftCellPx = 2.0;

Vec3f toFloat(const Vec3d& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

GrainRNG printStream(const RenderOptions& options)
{
    return Seeds::streamRNG(options, Seeds::SeedStream::print);
}

/// The seed of what lies on the sheet: a generator of its own, so that no draw of the press moves it.
std::uint32_t sheetSeed(const RenderOptions& options)
{
    return static_cast<std::uint32_t>(printStream(options).nextUInt64());
}

/// A shift of that many pixels in its whole part, within what is drawn.
std::int64_t wholeShift(double px)
{
    if (std::abs(px) < kMostShiftPx) return static_cast<std::int64_t>(px);
    return static_cast<std::int64_t>(px > 0.0 ? kMostShiftPx : -kMostShiftPx);
}

/// What a profile may name beyond any press, held where the arithmetic of the passes stays finite.
constexpr double kMostStrength = 100.0;
double strength(const OptNumber& value, double fallback)
{
    return std::clamp(value.value_or(fallback), 0.0, kMostStrength);
}

GainCurve gainCurve(const OptNumber& gain, double fallback, const OptNumber& comp)
{
    return {static_cast<float>(std::clamp(gain.value_or(fallback), -1.0, 1.0)),
            static_cast<float>(std::clamp(comp.value_or(0.85), 0.0, 1.0))};
}

/// Sizes of an offset press's clouds in micrometres of the sheet.
Laydown offsetLaydown(const OffsetParams& offset, double pxUm, std::uint32_t seed)
{
    Laydown out;
    out.pxUm = pxUm;
    out.psfSigmaPx = offset.psfUm.value_or(20.0) / pxUm;
    out.mottle = strength(offset.mottle, 0.0);
    out.fineUm = 90.0;
    out.wideUm = 1500.0;
    out.wideAmp = 0.8;
    out.fineLayer = 40;
    out.wideLayer = 41;
    out.seed = seed;
    return out;
}

Laydown inkjetLaydown(const InkjetParams& inkjet, double pxUm, std::uint32_t seed)
{
    Laydown out;
    out.pxUm = pxUm;
    out.psfSigmaPx = inkjet.psfUm.value_or(60.0) / pxUm;
    out.mottle = strength(inkjet.mottle, 0.0);
    out.fineUm = 60.0;
    out.wideUm = 900.0;
    out.wideAmp = 0.6;
    out.fineLayer = 42;
    out.wideLayer = 43;
    out.seed = seed;
    return out;
}

/// Where in its turn a plate's screen stands at the corner of the sheet, along both its axes.
std::array<double, 2> turnsAtCorner(const InkPlate& plate, double cellPx)
{
    const double angle = screenAngles[plate.ink] * std::numbers::pi / 180.0;
    const double dx = static_cast<double>(plate.dx) / cellPx, dy = static_cast<double>(plate.dy) / cellPx;
    return {plate.phase0 - dx * std::cos(angle) - dy * std::sin(angle),
            plate.phase1 + dx * std::sin(angle) - dy * std::cos(angle)};
}

/// Brings black into register with the rosette. Screens of one ruling 30 degrees apart are in resonance: the
/// waves of cyan's first axis (15 degrees) and black's second (135) beat as magenta's first does (75), and
/// those of black's first (45) and magenta's second (165) as cyan's second (105). Where the dots of the three
/// meet more often than chance has it, and where less, is told by the turns between such waves, and a whole
/// sheet would be greener or redder by its seed than its inks ask for. With the two turns half a turn apart
/// what one adds the other takes, and the tone is the inks' product again; the rosette's form and place stay
/// the seed's.
void registerBlack(OffsetPlan& plan)
{
    const auto cyan = turnsAtCorner(plan.plates[kCyan], plan.cellPx);
    const auto magenta = turnsAtCorner(plan.plates[kMagenta], plan.cellPx);
    const auto black = turnsAtCorner(plan.plates[kBlack], plan.cellPx);
    const double first = cyan[0] + black[1] - magenta[0], second = cyan[1] - black[0] - magenta[1];
    plan.plates[kBlack].phase0 += second - first - 0.5;
}

/// Brings yellow off the grid of drawn pixels. Its screen lies along their rows, and where a cell is a whole
/// number of them, as a print that grows for its dots has it, every dot meets the pixels alike: a whole sheet
/// would be up to a tenth bluer or yellower by its seed than it is asked for. What a dot gains or loses goes
/// by the cosine of its place in a pixel: where the two places add up to half a pixel, the axes cancel, and
/// the share of it is such that the waves of half the length do little (found over greys, within 1 %).
void placeYellow(OffsetPlan& plan)
{
    constexpr double kWholeCell = 1e-3; // beyond it the dots of a sheet meet the pixels in every way
    constexpr double kOff = 3.0 / 16.0; // of a pixel
    if (std::abs(plan.cellPx - std::rint(plan.cellPx)) > kWholeCell) return;
    // The nearest place that lies `off` pixels from a whole one.
    const auto placed = [&](double phase, double off) {
        const double px = phase * plan.cellPx, whole = std::rint(px);
        return (whole + std::copysign(off, px - whole)) / plan.cellPx;
    };
    InkPlate& yellow = plan.plates[kYellow];
    yellow.phase0 = placed(yellow.phase0, kOff);
    yellow.phase1 = placed(yellow.phase1, 0.5 - kOff);
}

} // namespace

OffsetPlan ReproPrint::planOffset(const PaperProfile& paper, const RenderOptions& options, double pxUm,
                                  int ss, bool mono)
{
    const OffsetParams offset = paper.offset.value_or(OffsetParams{});
    const double p = std::max(pxUm, 1e-6), drawnUm = p / ss;
    const Raster screen = *raster(paper, drawnUm, options);

    OffsetPlan plan;
    Separation& s = plan.separation;
    s.rel = relativeInks(inks(offset.inks.value_or(""), "offset_coated"));
    s.gcr = static_cast<float>(strength(offset.gcr, 0.75));
    if (offset.tac) s.tac = static_cast<float>(*offset.tac);
    s.curve = gainCurve(offset.dotGain, 0.16, offset.gainComp);
    s.blackOnly = mono;
    s.printed = true;
    plan.base = toFloat(bases(offset.base.value_or(""), "coated"));
    plan.screened = screen.resolved;
    plan.cellPx = screen.cellPx;
    plan.ss = plan.screened ? ss : 1;
    plan.laydown = offsetLaydown(offset, p, sheetSeed(options));

    GrainRNG rng = printStream(options);
    const double misPx = offset.misregisterMm.value_or(0.05) * 1000.0 / drawnUm;
    for (std::size_t ink = mono ? kBlack : kCyan; ink < kInkCount; ++ink) {
        InkPlate plate;
        plate.ink = ink;
        if (ink != kBlack && misPx >= kLeastShiftPx) {
            plate.dx = wholeShift(misPx * rng.nextNormal());
            plate.dy = wholeShift(misPx * rng.nextNormal());
        }
        if (plan.screened) {
            plate.phase0 = rng.random();
            plate.phase1 = rng.random();
        }
        plan.plates.push_back(plate);
    }
    if (plan.screened && !mono) {
        registerBlack(plan);
        placeYellow(plan);
    }
    return plan;
}

InkjetPlan ReproPrint::planInkjet(const PaperProfile& paper, const RenderOptions& options, double pxUm,
                                  Size size)
{
    const InkjetParams inkjet = paper.inkjet.value_or(InkjetParams{});
    const double p = std::max(pxUm, 1e-6);
    const Raster drop = *raster(paper, p, options);

    InkjetPlan plan;
    Separation& s = plan.separation;
    s.rel = relativeInks(inks(inkjet.inks.value_or(""), "inkjet_office"));
    s.gcr = static_cast<float>(strength(inkjet.gcr, 0.7));
    s.curve = gainCurve(inkjet.gain, 0.25, inkjet.gainComp);
    plan.base = toFloat(bases(inkjet.base.value_or(""), "office"));
    plan.dither = drop.resolved && inkjet.dither.value_or(true);
    plan.cellPx = drop.cellPx;
    if (plan.dither && plan.cellPx >= kLeastSoftCellPx)
        plan.edgeSigmaPx = std::min(kDropEdge * plan.cellPx, kMostDropEdgePx);
    plan.laydown = inkjetLaydown(inkjet, p, sheetSeed(options));

    GrainRNG rng = printStream(options);
    plan.bandAlongX = options.inkjetFeed == "short";
    plan.band = banding(plan.bandAlongX ? size.width : size.height, p, inkjet, rng, options.inkjetBanding);
    if (plan.dither)
        for (auto& start : plan.start) start = {rng.integers(0, 256), rng.integers(0, 256)};
    const std::int64_t shift =
        wholeShift(inkjet.misalignDrops.value_or(1.0) * inkjet.dropUm.value_or(45.0) / p);
    if (shift > 0)
        for (std::size_t ink = 0; ink < kBlack; ++ink) {
            plan.shift[ink][0] = rng.integers(-shift, shift + 1);
            plan.shift[ink][1] = rng.integers(-shift, shift + 1);
        }
    return plan;
}

} // namespace tamlo
