#include "core/process/raster/raster_note.h"

#include "core/image/rounding.h"
#include "core/process/raster/tube_geometry.h"
#include "core/text/loc.h"

namespace tamlo {
namespace {

/// Lines and mask of a tube, in pixels of the enlarged picture, and whether they show.
std::string crtNote(const PaperProfile& paper, const RenderOptions& options, double pxUm,
                    std::int64_t heightPx)
{
    const CRTScreen::Screen tube = CRTScreen::screen(paper, options);
    const CRTScreen::Geometry seen = CRTScreen::geometry(paper, pxUm, heightPx, options);
    const std::string lines =
        T("crt.lines", {{"n", roundAway(tube.lines)}, {"px", Fmt::number(seen.linePx, 1)}});
    if (!CRTScreen::hasMask(paper))
        return T("crt.linesMaster", {{"lines", lines}}) +
               T(seen.linesDrawn ? "crt.linesVisible" : "crt.linesHidden") + T("crt.monitorTail");
    return T("crt.mask",
             {{"mm", Fmt::number(tube.pitchMm, 2)}, {"px", Fmt::number(seen.maskPx, 1)}, {"lines", lines}}) +
           T(seen.maskDrawn ? "crt.structureVisible" : "crt.structureHidden");
}

} // namespace

std::optional<std::string> ReproPrint::rasterNote(const PaperProfile& paper, const RenderOptions& options,
                                                  double pxUm, Size size)
{
    const std::optional<Raster> before = raster(paper, pxUm, options);
    if (!before) return std::nullopt;
    const bool drops = before->kind == "inkjet";
    const RasterPlan plan = planRaster(paper, options, pxUm, size);
    if (before->kind == "crt")
        return crtNote(paper, options, pxUm / plan.grow, grownSize(size, plan.grow).height);
    const Raster after = *raster(paper, pxUm / plan.grow, options);
    const std::string cell = Fmt::number(after.cellPx, 1);

    std::string note =
        drops ? T("repro.drop", {{"um", *before->dropUm}}) : T("repro.screen", {{"lpi", *before->lpi}});
    if (plan.grow > 1.001)
        note += T("repro.grown", {{"px", plan.longPx}, {"size", cell}});
    else
        note += T(drops ? "repro.cellShort" : "repro.cell", {{"size", cell}});
    return note + T(after.resolved ? "repro.dotsVisible" : "repro.dotsHidden");
}

} // namespace tamlo
