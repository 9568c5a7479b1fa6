#include "core/film/filters/filters.h"

#include "core/film/filters/filter_passes.h"
#include "core/film/light/source_light.h"
#include "core/image/blur_bands.h"
#include "core/image/light_above.h"

#include <algorithm>
#include <utility>

namespace tamlo {

RGBImage Filters::applyDiffusion(RGBImage image, const FilterProfile& profile, double amount)
{
    constexpr double kNothing = 1e-5;
    const double bloom = amount * profile.bloom.value_or(0.0);
    const double haze = amount * profile.haze.value_or(0.0);
    if (image.pixelCount() == 0 || (bloom <= kNothing && haze <= kNothing)) return image;

    if (bloom > kNothing) {
        const double sigmaPx =
            std::max(profile.radiusFrac.value_or(0.04) * static_cast<double>(image.width), 1.0);
        const float threshold = static_cast<float>(profile.threshold.value_or(0.6));
        const float gain = static_cast<float>(bloom);
        float* light = image.mutableData();
        const std::int64_t samples = image.width * 3;
        blurInBands(
            image.size(), 3, sigmaPx,
            [&](std::int64_t y, float* to) { light_above(light + y * samples, samples, threshold, to); },
            [&](std::int64_t y, const float* glow) {
                diffusion_bloom(light + y * samples, glow, samples, gain);
            });
    }
    if (haze > kNothing) {
        const double mean = SourceLight::meanLuma(image);
        diffusion_haze(image, static_cast<float>(1.0 - 0.5 * haze), static_cast<float>(haze * mean));
    }
    return image;
}

} // namespace tamlo
