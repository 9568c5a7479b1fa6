#include "core/process/rebate/format_frame.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using namespace FormatFrame;
using NegativeFrame::FourSides;
using NegativeFrame::Layout;
using NegativeFrame::Side;

constexpr double kFilmShare = 0.55; // of a margin, up to the film's edge
constexpr double kMostMm = 1e4;

struct Lengths {
    double ppm, scale;
    double operator()(double mm) const { return std::min(mm * ppm * scale, kMostMm * ppm); }
};

/// Roll film: two edges of the film where the back lets light in round the ends of a band, two gaps between
/// frames.
void layOut120(Plan& plan, Size picture, const Request& request, const Lengths& px)
{
    FourSides<double>& black = *plan.layout.black;
    if (!request.wide) {
        constexpr double kPlainMm = 0.6;
        black.fill(px(kPlainMm));
        for (const Side side :
             {NegativeFrame::top, NegativeFrame::bottom, NegativeFrame::left, NegativeFrame::right})
            plan.gate.ops.push_back(Gate::Closed{side, 0.0, {}});
        return;
    }
    constexpr double kBandMm = 1.2, kCornerMm = 0.45, kEarMm = 0.5, kGapMm = 0.85, kSlope = 0.6;
    const bool leftRight = bandsLeftRight(picture, request.cm120);
    const std::array<Side, 2> across{NegativeFrame::left, NegativeFrame::right};
    const std::array<Side, 2> down{NegativeFrame::top, NegativeFrame::bottom};
    for (const Side side : leftRight ? across : down) {
        black[side] = request.bandFilmMm ? *request.bandFilmMm * request.ppm : px(kCornerMm);
        plan.layout.filmEdges[side] = request.bandFilmMm.has_value();
        plan.gate.ops.push_back(
            Gate::BandEars{side, std::max(px(kBandMm) - px(kCornerMm), 0.0), px(kEarMm), kSlope});
    }
    for (const Side side : leftRight ? down : across) {
        black[side] = px(kGapMm);
        plan.gate.ops.push_back(Gate::Closed{side, 0.0, {}});
    }
}

constexpr double kEdgeMm = 0.6, kFlapMm = 2.2;

/// A sheet in its holder: two rails, a closed end, and the flap beside which the notches are cut.
void layOutSheet(Plan& plan, Size picture, const Request& request, const Lengths& px)
{
    FourSides<double>& black = *plan.layout.black;
    if (!request.wide) {
        constexpr double kRailMm = 1.0;
        black.fill(px(kRailMm));
        for (const Side side :
             {NegativeFrame::top, NegativeFrame::bottom, NegativeFrame::left, NegativeFrame::right})
            plan.gate.ops.push_back(Gate::Closed{side, 0.0, {}});
        return;
    }
    constexpr double kRailInMm = 1.9, kEarMm = 18.0, kClosedMm = 2.8;
    const bool lying = picture.width > picture.height;
    const Side flap = lying ? NegativeFrame::right : NegativeFrame::top;
    const Side closed = lying ? NegativeFrame::left : NegativeFrame::bottom;
    const std::array<Side, 2> rails = lying ? std::array{NegativeFrame::top, NegativeFrame::bottom}
                                            : std::array{NegativeFrame::left, NegativeFrame::right};
    plan.layout.filmEdges.fill(true);
    black[flap] = px(kFlapMm);
    black[closed] = px(kClosedMm);
    for (const Side rail : rails) {
        black[rail] = px(kEdgeMm);
        plan.gate.ops.push_back(
            Gate::Closed{rail, px(kRailInMm), Gate::Ear{px(kEarMm), px(kRailInMm), lying}});
    }
    plan.gate.ops.push_back(Gate::Closed{closed, 0.0, {}});
    plan.gate.ops.push_back(Gate::Closed{flap, 0.0, {}});
}

Notches notchesOf(Size picture, const Layout& layout, const Lengths& px)
{
    Notches out;
    out.flapTop = picture.width <= picture.height;
    const double mT = static_cast<double>(layout.margins[NegativeFrame::top]);
    const double r = static_cast<double>(layout.margins[NegativeFrame::left] + picture.width);
    if (out.flapTop) {
        out.edgeAcross = mT - px(kFlapMm);
        out.edgeAlong = r + px(kEdgeMm);
    } else {
        out.edgeAcross = r + px(kFlapMm);
        out.edgeAlong = mT - px(kEdgeMm);
    }
    out.startPx = px(5.0);
    out.gapPx = px(1.0);
    using enum NotchShape::Form;
    out.items = {
        {v, px(2.4), px(1.6)}, {u, px(1.8), px(1.6)}, {square, px(2.0), px(1.5)}, {v, px(2.4), px(1.6)}};
    return out;
}

/// Radius of each corner by the two sides that meet there.
FourSides<double> cornersOf(const Plan& plan, const Request& request, const Lengths& px)
{
    constexpr double kSheetCornerMm = 0.4;
    constexpr std::array<std::pair<Side, Side>, 4> kMeet{{{NegativeFrame::top, NegativeFrame::left},
                                                          {NegativeFrame::top, NegativeFrame::right},
                                                          {NegativeFrame::bottom, NegativeFrame::left},
                                                          {NegativeFrame::bottom, NegativeFrame::right}}};
    FourSides<double> out{};
    for (std::size_t i = 0; i < kMeet.size(); ++i) {
        const auto [a, b] = kMeet[i];
        const bool edgeA = plan.layout.filmEdges[a], edgeB = plan.layout.filmEdges[b];
        if (edgeA && edgeB && request.kind == Kind::sheet4x5) out[i] = px(kSheetCornerMm);
        if (!edgeA && !edgeB)
            out[i] = request.style.winRound * 0.5 *
                     static_cast<double>(plan.layout.margins[a] + plan.layout.margins[b]);
    }
    return out;
}

} // namespace

std::optional<FormatFrame::Kind> FormatFrame::kind(std::string_view format)
{
    if (format == "120") return Kind::f120;
    if (format == "sheet" || format == "4x5" || format == "plate") return Kind::sheet4x5;
    return std::nullopt;
}

bool FormatFrame::bandsLeftRight(Size picture, double cm120)
{
    return (picture.width > picture.height) == (roundAway(std::clamp(cm120, 0.0, 100.0)) == 6);
}

FormatFrame::Plan FormatFrame::build(Size picture, const Request& request)
{
    constexpr double kCornerMm = 0.15, kWhiteMm = 1.5, kPrintWhiteMm = 0.75;
    const bool sheet = request.kind == Kind::sheet4x5 && request.wide;
    const Lengths px{request.ppm, request.scale};
    Plan plan;
    plan.layout.style = request.style;
    plan.layout.black.emplace();
    plan.gate.penumbra = std::max((request.kind == Kind::f120 ? 0.15 : 0.06) * request.ppm, 1.0);
    for (std::size_t corner = 0; corner < 4; ++corner)
        plan.gate.ops.push_back(Gate::Round{corner, kCornerMm * request.ppm});
    if (request.kind == Kind::f120)
        layOut120(plan, picture, request, px);
    else
        layOutSheet(plan, picture, request, px);
    for (std::size_t side = 0; side < 4; ++side) {
        const double black = (*plan.layout.black)[side];
        double white = sheet ? px(kWhiteMm) : black * (1.0 - kFilmShare) / kFilmShare;
        if (!sheet && plan.layout.filmEdges[side]) white = kPrintWhiteMm * request.ppm;
        plan.layout.margins[side] = pyRound(black + white);
    }
    plan.layout.cornerR = cornersOf(plan, request, px);
    if (sheet) plan.notches = notchesOf(picture, plan.layout, px);
    return plan;
}

} // namespace tamlo
