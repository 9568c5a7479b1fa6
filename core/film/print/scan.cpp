#include "core/film/print/scan.h"

#include "core/film/print/scan_passes.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"

#include <algorithm>

namespace tamlo {
namespace {

struct ScanPlan {
    double softSigmaPx = 0.0; // 0: none
    std::optional<Size> size;
    double sharpenSigmaPx = 0.0; // 0: none
    float sharpenK = 0.0f;
    float clip = 1.0f;
};

ScanPlan planScan(const ScanParams& scan, Size size)
{
    ScanPlan plan;
    const double width = static_cast<double>(size.width);
    if (scan.mtf.value_or(0.0) > 0.001) plan.softSigmaPx = std::max(*scan.mtf * 0.0016 * width, 0.4);
    plan.size = Film::scanSize(size, scan);
    if (scan.sharpen.value_or(0.0) > 0.001) {
        const Size scanned = plan.size.value_or(size);
        const double sigmaPx = scan.sharpenFrac.value_or(0.0007) * static_cast<double>(scanned.width);
        plan.sharpenSigmaPx = std::max(sigmaPx, 0.5);
        plan.sharpenK = static_cast<float>(1.5 * *scan.sharpen);
    }
    if (scan.highlightClip.value_or(0.0) > 0.0001) plan.clip = static_cast<float>(1.0 - *scan.highlightClip);
    return plan;
}

} // namespace

std::optional<Size> Film::scanSize(Size size, const ScanParams& scan)
{
    const std::int64_t ceiling = scan.longPx.value_or(0);
    const std::int64_t longSide = std::max(size.width, size.height);
    if (ceiling <= 0 || ceiling >= longSide) return std::nullopt;
    const double r = static_cast<double>(ceiling) / static_cast<double>(longSide);
    const auto scaled = [&](std::int64_t side) {
        return std::max<std::int64_t>(pyRound(r * static_cast<double>(side)), 1);
    };
    return Size{scaled(size.width), scaled(size.height)};
}

RGBImage Film::applyScan(RGBImage image, const PaperProfile& paper)
{
    const RenderProfiler::Scope booked("scan", image.pixelCount());
    if (!paper.scan) return image;
    const ScanPlan plan = planScan(*paper.scan, image.size());
    if (plan.softSigmaPx > 0.0) image = blur(std::move(image), plan.softSigmaPx);
    if (plan.size) image = pilResize(image, *plan.size, Resampling::lanczos);
    if (plan.sharpenSigmaPx > 0.0) unsharp(image, blur(image, plan.sharpenSigmaPx), plan.sharpenK);
    scan_clip(image, plan.clip);
    return image;
}

} // namespace tamlo
