#include "core/process/raster/raster_note.h"

#include "core/text/loc.h"

namespace tamlo {

std::optional<std::string> ReproPrint::rasterNote(const PaperProfile& paper, const RenderOptions& options,
                                                  double pxUm, Size size)
{
    const std::optional<Raster> before = raster(paper, pxUm, options);
    if (!before || before->kind == "crt") return std::nullopt;
    const bool drops = before->kind == "inkjet";
    const RasterPlan plan = planRaster(paper, options, pxUm, size);
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
