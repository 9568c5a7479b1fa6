#include "core/image/source_exposure.h"

#include "core/image/each_pixel.h"
#include "core/image/luminance.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

std::string_view SourceExposure::rawText(Mode mode)
{
    switch (mode) {
    case Mode::asShot:
        return "as_shot";
    case Mode::highlights:
        return "highlights";
    case Mode::shadows:
        return "shadows";
    case Mode::auto_:
        break;
    }
    return "auto";
}

SourceExposure::Mode SourceExposure::fromKey(std::optional<std::string_view> key)
{
    for (const Mode mode : allCases)
        if (key && *key == rawText(mode)) return mode;
    return Mode::auto_;
}

Plane SourceExposure::luminance(const RGBImage& image)
{
    return lumaPlane(image);
}

Size SourceExposure::statsShape(Size size)
{
    const std::int64_t longSide = std::max(size.width, size.height);
    if (longSide <= statsPx) return size;
    const std::int64_t shortSide = std::min(size.width, size.height);
    const std::int64_t reduced = std::max<std::int64_t>(
        pyRound(static_cast<double>(shortSide * statsPx) / static_cast<double>(longSide)), 1);
    return size.width >= size.height ? Size{statsPx, reduced} : Size{reduced, statsPx};
}

double SourceExposure::percentile(std::vector<double>& values, double p)
{
    if (values.empty()) return 0.0;
    if (values.size() < 2) return values.front();
    const double index = p / 100.0 * static_cast<double>(values.size() - 1);
    const std::size_t lo = static_cast<std::size_t>(std::floor(index));
    const std::size_t hi = std::min(lo + 1, values.size() - 1);
    const auto at = [&](std::size_t i) {
        const auto nth = values.begin() + static_cast<std::ptrdiff_t>(i);
        std::nth_element(values.begin(), nth, values.end());
        return *nth;
    };
    const double a = at(lo), b = at(hi);
    const double frac = index - static_cast<double>(lo);
    // Two forms of one line: the nearer end carries the last bit, which every measurement must share.
    return frac >= 0.5 ? b - (1.0 - frac) * (b - a) : a + frac * (b - a);
}

SourceExposure::Stats SourceExposure::stats(const Plane& luminance)
{
    const Size shape = statsShape(luminance.size());
    const Plane measured = shape == luminance.size()
                               ? luminance
                               : pilResize(luminance, shape.width, shape.height, Resampling::box);
    std::vector<double> values(measured.data.begin(), measured.data.end());
    Stats result;
    result.p10 = percentile(values, shadowQ);
    result.p50 = percentile(values, 50.0);
    result.p995 = percentile(values, highlightQ);
    result.height = luminance.height;
    result.width = luminance.width;
    return result;
}

double SourceExposure::gain(const Stats& stats, Mode mode)
{
    if (mode == Mode::asShot) return asShotGain;
    double g = 1.0;
    if (stats.p50 > minStat) g = std::clamp(autoMedianTo / stats.p50, gainMin, gainMax);
    if (mode == Mode::highlights && stats.p995 > minStat)
        g = std::clamp(std::min(g, highlightTo / stats.p995), gainMin, gainMax);
    if (mode == Mode::shadows && stats.p10 > minStat)
        g = std::clamp(std::max(g, shadowTo / stats.p10), gainMin, gainMax);
    return g;
}

double SourceExposure::gain(const RGBImage& image, Mode mode)
{
    return mode == Mode::asShot ? asShotGain : gain(stats(luminance(image)), mode);
}

RGBImage SourceExposure::apply(double gain, RGBImage image)
{
    const float k = static_cast<float>(gain);
    if (k != 1.0f)
        eachPixel(image, [k](float* p) {
            for (std::size_t c = 0; c < 3; ++c) p[c] *= k;
        });
    return image;
}

} // namespace tamlo
