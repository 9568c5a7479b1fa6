#include "core/process/press/repro.h"

#include "core/image/render_profiler.h"
#include "core/process/crt/crt_screen.h"
#include "core/process/press/inkjet.h"
#include "core/process/press/offset.h"
#include "core/process/press/surface.h"
#include "core/process/raster/raster.h"

#include <utility>

namespace tamlo {

RGBImage Film::applyRepro(RGBImage image, const PaperProfile& paper, const RenderOptions& options, bool mono)
{
    using namespace ReproPrint;
    double pxUm = options.printPxUm;
    if (paper.isRepro()) {
        const RasterPlan raster = planRaster(paper, options, pxUm, image.size());
        const Size printed = grownSize(image.size(), raster.grow);
        pxUm /= raster.grow;
        const RenderProfiler::Scope booked("press", printed.width * printed.height);
        if (paper.repro == "offset")
            image = applyOffset(std::move(image), printed, planOffset(paper, options, pxUm, raster.ss, mono));
        else if (paper.repro == "crt")
            image = CRTScreen::apply(std::move(image), printed, paper, options, pxUm);
        else
            image = applyInkjet(std::move(image), printed, planInkjet(paper, options, pxUm, printed));
    }
    if (!paper.surface) return image;
    const RenderProfiler::Scope booked("surface", image.pixelCount());
    return applySurface(std::move(image), paper, options, pxUm);
}

} // namespace tamlo
