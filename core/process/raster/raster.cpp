#include "core/process/raster/raster.h"

#include "core/image/rounding.h"
#include "core/process/raster/tube_geometry.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

/// A sum of factors that should meet a limit misses it by rounding: a cell within this of what it must be is
/// taken for it.
constexpr double kCellSlackPx = 1e-9;
/// An enlargement up to this is none: a whole resampling would buy a hundredth of a cell.
constexpr double kLeastGrow = 1.01;
/// The same of a tube, whose file stays as it is for a tenth.
constexpr double kLeastTubeGrow = 1.1;
/// A cell that misses its target by this share is not computed at the next factor, at four times the pixels.
constexpr double kFactorSlack = 0.01;

/// Fewest lines an inch and smallest drop that anything is worked out from.
constexpr double kLeastLpi = 1e-6;

double cellSizeUm(const PaperProfile& paper, const RenderOptions& options)
{
    if (paper.repro == "offset")
        return 25'400.0 / std::max(paper.offset.value_or(OffsetParams{}).lpi.value_or(150.0), kLeastLpi);
    if (paper.repro == "inkjet") {
        const InkjetParams inkjet = paper.inkjet.value_or(InkjetParams{});
        return std::max(inkjet.dropUm.value_or(45.0) + inkjet.spreadUm.value_or(30.0), 0.0);
    }
    return CRTScreen::hasMask(paper) ? CRTScreen::screen(paper, options).pitchMm * 1000.0 : 0.0;
}

} // namespace

std::optional<ReproPrint::Raster> ReproPrint::raster(const PaperProfile& paper, double pxUm,
                                                     const RenderOptions& options)
{
    if (!paper.isRepro()) return std::nullopt;
    Raster out;
    out.kind = *paper.repro;
    out.sizeUm = cellSizeUm(paper, options);
    out.cellPx = out.sizeUm / std::max(pxUm, 1e-6);
    if (out.kind == "offset") out.lpi = paper.offset.value_or(OffsetParams{}).lpi.value_or(150.0);
    if (out.kind == "inkjet") out.dropUm = paper.inkjet.value_or(InkjetParams{}).dropUm.value_or(45.0);
    out.resolved = out.cellPx >= (out.kind == "inkjet" ? rasterMinDropPx : rasterMinCellPx);
    return out;
}

ReproPrint::RasterPlan ReproPrint::planRaster(const PaperProfile& paper, const RenderOptions& options,
                                              double pxUm, Size size)
{
    RasterPlan plan;
    const std::optional<Raster> structure = raster(paper, pxUm, options);
    if (!structure || options.reproRaster == "off") return plan;
    const bool drops = structure->kind == "inkjet", tube = structure->kind == "crt";
    const double smallest = drops ? inkjetTargetPx : rasterMinCellPx;
    const double longSide = static_cast<double>(std::max<std::int64_t>({size.width, size.height, 1}));
    const double linePx = tube ? CRTScreen::geometry(paper, pxUm, size.height, options).linePx : 0.0;
    plan.cell0 = structure->cellPx;
    plan.target = drops ? inkjetTargetPx : structureTargetPx;

    double need = plan.cell0 > 0.0 ? plan.target / plan.cell0 : 0.0;
    if (linePx > 0.0) need = std::max(need, structureTargetLinePx / linePx);
    plan.grow = std::min({static_cast<double>(growLongMax) / longSide, need, growMax});
    const bool brings = plan.cell0 * plan.grow >= smallest - kCellSlackPx ||
                        linePx * plan.grow >= CRTScreen::minLinePx - kCellSlackPx;
    if (!brings || plan.grow <= (tube ? kLeastTubeGrow : kLeastGrow)) plan.grow = 1.0;

    plan.cell = plan.cell0 * plan.grow;
    plan.longPx = roundAway(longSide * plan.grow);
    if (!tube && plan.cell > 0.0 && plan.cell >= smallest - kCellSlackPx)
        plan.ss = static_cast<int>(
            std::clamp(std::ceil(plan.target / plan.cell - kFactorSlack), 1.0, static_cast<double>(ssMax)));
    return plan;
}

Size ReproPrint::grownSize(Size size, double grow)
{
    const auto side = [grow](std::int64_t v) {
        return std::max<std::int64_t>(roundAway(static_cast<double>(v) * grow), 1);
    };
    return {side(size.width), side(size.height)};
}

} // namespace tamlo
