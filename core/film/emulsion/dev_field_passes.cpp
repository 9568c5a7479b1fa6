#include "core/film/emulsion/dev_field_passes.h"

#include "core/film/emulsion/dev_field.h"
#include "core/image/bands.h"

namespace tamlo {

void dev_uneven(RGBImage& density, const Vec3f& dmins, const Plane& field, const Vec3f& weights)
{
    float* values = density.mutableData();
    const float* f = field.data.data();
    parallelBands(density.height, density.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * density.width; i < end * density.width; ++i)
            for (std::size_t c = 0; c < 3; ++c) {
                float& d = values[i * 3 + static_cast<std::int64_t>(c)];
                d = DevField::uneven(d, dmins[c], f[i], weights[c]);
            }
    });
}

void dev_uneven(Plane& density, float dmin, const Plane& field)
{
    float* values = density.mutableData();
    const float* f = field.data.data();
    parallelBands(density.height, density.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * density.width; i < end * density.width; ++i)
            values[i] = DevField::uneven(values[i], dmin, f[i], 1.0f);
    });
}

} // namespace tamlo
