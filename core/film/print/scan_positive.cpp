#include "core/film/print/scan_positive.h"

#include "core/film/print/print.h"
#include "core/film/print/slide_passes.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

std::optional<Film::ScanPositive> Film::scanPositiveParams(const PaperProfile& paper,
                                                           const RenderOptions& options)
{
    if (!paper.scan) return std::nullopt;
    const ScanParams& scan = *paper.scan;
    const double dcap = scan.positiveDmax.value_or(3.6);
    double gamma = scan.positiveGamma.value_or(1.0), black = 0.0, white = 0.0;
    if (!paper.fixedGrade.value_or(false)) {
        gamma *= options.grade * 0.2 + 0.6;
        black = std::clamp(options.printBlack, 0.0, 1.0);
        white = std::clamp(options.printWhite, 0.0, 1.0);
    }
    ScanPositive params;
    params.flare = static_cast<float>(scan.flare.value_or(0.0));
    if (scan.positiveDmax) params.floor = static_cast<float>(std::pow(10.0, -dcap));
    if (!paper.fixedExposure.value_or(false))
        params.evMultiplier = static_cast<float>(std::exp2(-options.printEv));
    params.gamma = static_cast<float>(gamma);
    params.black = static_cast<float>(black * Print::blackMaxFrac * std::max(dcap - kPaperAnchor, 1e-6));
    params.white = static_cast<float>(white * Print::blackMaxFrac * kPaperAnchor);
    params.dcap = static_cast<float>(dcap);
    return params;
}

HDCurve Film::scanToneCurve(float black, float white, float dcap)
{
    HDCurve curve;
    curve.dmax = dcap;
    curve.fD0 = static_cast<float>(kPaperAnchor);
    curve.fShadowSpan = static_cast<float>(std::max(dcap - kPaperAnchor, 1e-6));
    curve.fLightSpan = static_cast<float>(kPaperAnchor);
    curve.black = black;
    curve.white = white;
    return curve;
}

RGBImage Film::scanPositive(RGBImage image, const PaperProfile& paper, const RenderOptions& options)
{
    const RenderProfiler::Scope booked("scan positive", image.pixelCount());
    const auto params = scanPositiveParams(paper, options);
    if (!params) return image;
    const bool isPlain =
        params->flare <= 1e-6f && !params->floor && std::abs(params->evMultiplier - 1.0f) <= 1e-6f &&
        std::abs(params->gamma - 1.0f) <= 1e-6f && params->black <= 1e-6f && params->white <= 1e-6f;
    if (!isPlain) scan_positive(image, *params);
    return image;
}

} // namespace tamlo
