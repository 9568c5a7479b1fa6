#include "core/film/emulsion/emulsion_soften.h"

#include "core/image/blur_bands.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"

#include <algorithm>
#include <numbers>

namespace tamlo {
namespace {

constexpr double kMinSigmaPx = 0.18; // a narrower spot changes no pixel that one could see: taste

/// 0 when nothing is to be done.
double planSigmaPx(const FilmProfile& film, double pxUm)
{
    const double f50 = film.mtf && film.mtf->f50CycMm ? *film.mtf->f50CycMm : 0.0;
    if (!(f50 > 0.0)) return 0.0;
    const double sigmaPx = Film::softenSigmaUm(f50) / std::max(pxUm, 1e-6);
    return sigmaPx < kMinSigmaPx ? 0.0 : sigmaPx;
}

} // namespace

double Film::softenSigmaUm(double f50CycMm)
{
    constexpr double kHalfHeight = 0.5887050112577373; // sqrt(ln 2 / 2)
    constexpr double kUmPerMm = 1000.0;
    return kHalfHeight / (std::numbers::pi * f50CycMm) * kUmPerMm;
}

RGBImage Film::emulsionSoften(RGBImage image, const FilmProfile& film, double pxUm)
{
    const RenderProfiler::Scope booked("softening", image.pixelCount());
    const double sigmaPx = planSigmaPx(film, pxUm);
    return blur(std::move(image), sigmaPx);
}

Plane Film::emulsionSoften(Plane image, const FilmProfile& film, double pxUm)
{
    const RenderProfiler::Scope booked("softening", image.width * image.height);
    const double sigmaPx = planSigmaPx(film, pxUm);
    return blurChannel(std::move(image), sigmaPx);
}

} // namespace tamlo
