#include "core/film/light/source_light.h"

#include "core/film/light/emulsion_input.h"
#include "core/film/light/source_light_passes.h"
#include "core/image/luminance.h"
#include "core/image/render_profiler.h"
#include "core/image/zcolor.h"

#include <cmath>

namespace tamlo {

Plane Film::lumaPlane(const RGBImage& image)
{
    return tamlo::lumaPlane(image);
}

std::optional<Vec3f> SourceLight::gains(const FilmProfile& film, const RenderOptions& options)
{
    if (std::abs(options.wbTemp) <= 1e-6 && std::abs(options.wbTint) <= 1e-6) return std::nullopt;
    return ZColor::wbFilterGains(options.wbTemp, options.wbTint,
                                 Film::filmIlluminantK(film, Film::sceneRefK));
}

std::optional<SourceLight::SourceScale> SourceLight::sourceScale(const FilmProfile& film,
                                                                 const RenderOptions& options)
{
    SourceScale scale;
    scale.k = static_cast<float>(options.sourceGain);
    scale.useK = scale.k != 1.0f;
    if (const auto g = gains(film, options)) {
        scale.g = *g;
        scale.useG = true;
    }
    if (!scale.useK && !scale.useG) return std::nullopt;
    return scale;
}

RGBImage SourceLight::applySource(RGBImage image, const FilmProfile& film, const RenderOptions& options)
{
    const RenderProfiler::Scope booked("source light", image.pixelCount());
    if (const auto scale = sourceScale(film, options)) in_source(image, *scale);
    return image;
}

double SourceLight::meanLuma(const RGBImage& image)
{
    return luma_mean(image);
}

} // namespace tamlo
