#include "core/process/press/laydown.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/process/noise/noise_fields.h"
#include "core/process/press/sheet_passes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using namespace ReproPrint;

/// The clouds of unit deviation on a sheet of no pixels. Both fields keep what a pixel leaves of them, so
/// that a coarse render does not show structure that it can't resolve.
struct Clouds {
    NoiseField fine, wide;
    float fineFactor = 0.0f, wideFactor = 0.0f;
};

Clouds planClouds(Size size, const Laydown& plan)
{
    const double px = plan.pxUm;
    Clouds out;
    out.fine = NoiseField::gaussian(size, std::max(plan.fineUm, 0.6 * px), px, {plan.seed, plan.fineLayer});
    out.wide = NoiseField::gaussian(size, std::max(plan.wideUm, px), px, {plan.seed, plan.wideLayer});
    const double unit = 1.0 / std::sqrt(1.0 + plan.wideAmp * plan.wideAmp);
    out.fineFactor = static_cast<float>(unit * gaussianPixelGain(plan.fineUm, px)) * out.fine.scale();
    out.wideFactor =
        static_cast<float>(unit * plan.wideAmp * gaussianPixelGain(plan.wideUm, px)) * out.wide.scale();
    return out;
}

void mottle(RGBImage& print, const Vec3f& base, const Laydown& plan)
{
    const Clouds clouds = planClouds(print.size(), plan);
    MottleRow row;
    row.amount = static_cast<float>(plan.mottle);
    row.baseMean = (base[0] + base[1] + base[2]) / 3.0f;
    row.fineFactor = clouds.fineFactor;
    row.wideFactor = clouds.wideFactor;
    float* pixels = print.mutableData();
    parallelBands(print.height, print.width * 6, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows fine(clouds.fine), wide(clouds.wide);
        for (std::int64_t y = start; y < end; ++y)
            repro_mottle(pixels + y * print.width * 3, fine.row(y), wide.row(y), print.width, row);
    });
}

} // namespace

RGBImage ReproPrint::layDown(RGBImage print, const Vec3f& base, const Laydown& laydown)
{
    print = blur(std::move(print), laydown.psfSigmaPx);
    if (laydown.mottle > 0.0) mottle(print, base, laydown);
    return print;
}

} // namespace tamlo
