#include "core/process/mat/linen.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo::Table {
namespace {

constexpr double kPitchMm = 0.4;

/// The thread's profile at each pixel. A pixel shows the mean over its width: at pixels as wide as the pitch
/// the weave is gone, instead of standing there as stripes of millimetres.
std::vector<float> threads(std::int64_t n, double ppmm)
{
    const double turns = std::numbers::pi / (ppmm * kPitchMm); // half the phase of one pixel
    const double mean = std::sin(turns) / turns;
    std::vector<float> weave(static_cast<std::size_t>(n));
    for (std::int64_t i = 0; i < n; ++i)
        weave[static_cast<std::size_t>(i)] =
            static_cast<float>(mean * std::cos((2.0 * static_cast<double>(i) + 1.0) * turns));
    return weave;
}

/// Slubs to expect along an axis: half a one a centimetre, in steps that don't depend on the pixel count.
double expectedSlubs(std::int64_t n, double ppmm)
{
    return std::round(static_cast<double>(n) / ppmm / 10.0 * 0.5 * 100.0) / 100.0;
}

void addSlub(std::vector<float>& factors, double ppmm, double centreMm, double widthMm)
{
    constexpr double kReach = 6.0; // widths; exp(-36) is nothing
    const double n = static_cast<double>(factors.size());
    const auto index = [&](double mm) {
        return static_cast<std::size_t>(std::clamp(std::floor(mm * ppmm - 0.5), 0.0, n));
    };
    const std::size_t end = index(centreMm + kReach * widthMm);
    for (std::size_t i = index(centreMm - kReach * widthMm); i < end; ++i) {
        const double t = ((static_cast<double>(i) + 0.5) / ppmm - centreMm) / widthMm;
        factors[i] = static_cast<float>(factors[i] * (1.0 + 0.06 * std::exp(-t * t)));
    }
}

} // namespace

Linen planLinen(Size canvas, double ppmm, GrainRNG& rng)
{
    Linen linen;
    linen.cosX = threads(canvas.width, ppmm);
    linen.cosY = threads(canvas.height, ppmm);
    linen.colF.assign(linen.cosX.size(), 1.0f);
    linen.rowF.assign(linen.cosY.size(), 1.0f);
    const std::int64_t columns = Pipeline::poisson(expectedSlubs(canvas.width, ppmm), rng);
    const std::int64_t rows = Pipeline::poisson(expectedSlubs(canvas.height, ppmm), rng);
    for (std::int64_t slub = 0; slub < columns + rows; ++slub) {
        const bool alongRow = rng.random() >= 0.5;
        const double place = rng.random();
        const double widthMm = 0.3 + 0.6 * rng.random();
        const std::int64_t length = alongRow ? canvas.height : canvas.width;
        addSlub(alongRow ? linen.rowF : linen.colF, ppmm, static_cast<double>(length) / ppmm * place,
                widthMm);
    }
    return linen;
}

} // namespace tamlo::Table
