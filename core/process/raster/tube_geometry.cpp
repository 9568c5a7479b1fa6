#include "core/process/raster/tube_geometry.h"

#include <algorithm>

namespace tamlo {

bool CRTScreen::hasMask(const PaperProfile& paper)
{
    return !paper.crt || paper.crt->mask != "none";
}

double CRTScreen::zoomFromLegacy(double nominal, double d)
{
    return std::clamp(nominal / std::max(d, 0.001), 1.0, kNearest);
}

CRTScreen::Screen CRTScreen::screen(const PaperProfile& paper, const RenderOptions& options)
{
    const CRTParams tube = paper.crt.value_or(CRTParams{});
    // A profile may name any size; what is far from a tube would print as a point or without end.
    const double nominal = std::clamp(tube.nominalIn.value_or(21.0), 0.1, 10'000.0);
    double zoom = options.crtZoom;
    if (zoom == 1.0 && options.crtSizeIn.value_or(0.0) > 0.0)
        zoom = zoomFromLegacy(nominal, *options.crtSizeIn);
    zoom = zoom > 0.0 ? std::clamp(zoom, 1.0, kNearest) : 1.0;

    Screen out;
    out.zoom = zoom;
    out.longCm = nominal * 2.54 * 0.8 / zoom;
    out.heightMm = nominal * 25.4 * 0.6 / zoom;
    out.pitchMm = tube.pitchMm.value_or(0.72);
    out.linesTube = std::max<std::int64_t>(tube.lines.value_or(576), 1);
    out.lines = static_cast<double>(out.linesTube) / zoom;
    out.frameCm = out.longCm;
    return out;
}

CRTScreen::Geometry CRTScreen::geometry(const PaperProfile& paper, double pxUm, std::int64_t heightPx,
                                        const RenderOptions& options)
{
    const Screen tube = screen(paper, options);
    Geometry out;
    if (hasMask(paper)) out.maskPx = tube.pitchMm * 1000.0 / std::max(pxUm, 1e-6);
    out.maskDrawn = out.maskPx >= minMaskPx;
    out.linePx = static_cast<double>(heightPx) / std::max(tube.lines, 1e-6);
    out.linesDrawn = out.linePx >= minLinePx;
    return out;
}

} // namespace tamlo
