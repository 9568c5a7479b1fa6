#include "core/process/mat/table.h"

#include "core/image/render_profiler.h"
#include "core/image/rounding.h"
#include "core/process/mat/canvas.h"
#include "core/process/mat/sheet_light.h"
#include "core/process/mat/table_passes.h"
#include "core/process/mat/table_shadow.h"
#include "core/process/mat/table_surface.h"

#include <algorithm>

namespace tamlo {
namespace {

double pxPerMm(double printPxUm)
{
    return 1000.0 / std::max(printPxUm, 1e-6);
}

/// The mask in the middle of a canvas of zeros.
Plane onCanvas(const Plane& mask, Size canvas, std::int64_t margin)
{
    Plane coverage(canvas.width, canvas.height);
    float* data = coverage.mutableData();
    for (std::int64_t y = 0; y < mask.height; ++y)
        std::copy_n(mask.row(y), mask.width, data + (y + margin) * canvas.width + margin);
    return coverage;
}

} // namespace

bool Table::wantsTable(const RenderOptions& options)
{
    return options.table && !options.table->empty() && *options.table != "none";
}

std::int64_t Table::marginPx(double widthCm, double printPxUm)
{
    constexpr double kWidestPx = 16'777'216.0; // sizes must stay whole numbers
    const double px = widthCm * 10.0 * pxPerMm(printPxUm);
    return std::max<std::int64_t>(pyRound(std::clamp(px, 0.0, kWidestPx)), 2);
}

RGBImage Table::apply(const RGBImage& image, std::string_view kind, const Lying& lying,
                      const std::optional<Plane>& mask, GrainRNG& rng)
{
    const std::int64_t m = marginPx(lying.widthCm, lying.printPxUm);
    const Size canvas{image.width + 2 * m, image.height + 2 * m};
    Finishing::checkCanvas(canvas);
    const RenderProfiler::Scope booked("table", canvas.width * canvas.height);
    const double ppmm = pxPerMm(lying.printPxUm), thicknessPx = lying.thicknessMm * ppmm;
    const Surface surface(kind, canvas, ppmm, rng);
    if (!mask)
        return lay_sheet(image, canvas, m, m, surface,
                         rectShadow(canvas, image.size(), m, m, thicknessPx, CardRelief::light));
    const Plane coverage = onCanvas(*mask, canvas, m);
    return lay_masked(image, m, m, surface, coverage, dropShadow(coverage, thicknessPx, CardRelief::light));
}

} // namespace tamlo
