#include "core/image/growth_random.h"

#include <limits>
#include <numbers>

namespace tamlo::Grain {

double erfinvD(double x)
{
    if (!(std::abs(x) < 1.0)) return std::copysign(std::numeric_limits<double>::infinity(), x);
    double y = static_cast<double>(normalQuantile(static_cast<float>((x + 1.0) / 2.0))) / std::numbers::sqrt2;
    for (int step = 0; step < 3; ++step) {
        // Near the ends erf loses the digits that count, so its complement is compared there.
        const double error = std::abs(x) > 0.5
                                 ? std::copysign(1.0, x) * (1.0 - std::abs(x) - std::erfc(std::abs(y)))
                                 : std::erf(y) - x;
        y -= error / (2.0 * std::numbers::inv_sqrtpi * std::exp(-y * y));
    }
    return y;
}

} // namespace tamlo::Grain
