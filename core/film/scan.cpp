#include "core/film/scan.h"

#include "core/image/bands.h"
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

/// f(sample, its index) on every sample in place.
template <typename F>
void eachSample(RGBImage& image, const F& f)
{
    float* v = image.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * image.width * 3; i < end * image.width * 3; ++i) v[i] = f(v[i], i);
    });
}

/// (1 + k) E - k × blur(E).
void unsharp(RGBImage& image, const RGBImage& blurred, float k)
{
    const float* soft = blurred.data.data();
    eachSample(image, [&](float v, std::int64_t i) { return (1.0f + k) * v - k * soft[i]; });
}

/// All above `clip` is compressed fourfold, then held to 0...1.
void scan_clip(RGBImage& image, float clip)
{
    eachSample(image, [&](float v, std::int64_t) {
        return std::clamp(v > clip ? clip + (v - clip) * 0.25f : v, 0.0f, 1.0f);
    });
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
