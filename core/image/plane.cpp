#include "core/image/plane.h"

#include <cmath>

namespace tamlo {

Plane::Plane(std::int64_t w, std::int64_t h, float fill)
    : width(w), height(h), data(static_cast<std::size_t>(w * h), fill)
{
    assert(w >= 0 && h >= 0);
}

Plane::Plane(std::int64_t w, std::int64_t h, FloatBuffer values)
    : width(w), height(h), data(std::move(values))
{
    assert(w >= 0 && h >= 0 && data.size() == static_cast<std::size_t>(w * h));
}

double Plane::mean() const
{
    if (data.empty()) return 0.0;
    double sum = 0.0;
    for (const float v : data) sum += v;
    return sum / static_cast<double>(count());
}

double Plane::std() const
{
    if (data.empty()) return 0.0;
    const double m = mean();
    double sum = 0.0;
    for (const float v : data) sum += (v - m) * (v - m);
    return std::sqrt(sum / static_cast<double>(count()));
}

} // namespace tamlo
