#include "core/film/print/plate_positive.h"

#include "core/film/print/black_and_white.h"
#include "core/image/render_profiler.h"
#include "core/process/plates/plate_view.h"

#include <algorithm>
#include <utility>

namespace tamlo {

RenderOptions Film::plateFloorOptions(RenderOptions options, std::int64_t longIn, std::int64_t side)
{
    options.platePour = 0.0;
    options.halationMult = 0.0;
    options.formatLongUm *=
        static_cast<double>(side) / static_cast<double>(std::max<std::int64_t>(longIn, 1));
    return options;
}

double Film::plateFloor(const DevelopedFilm& film, const RenderOptions& options, double pxUm, double dmin,
                        std::int64_t longIn)
{
    if (!(options.grainMult > 0.0)) return dmin;
    const std::int64_t side = std::clamp<std::int64_t>(longIn, 1, kPlateFloorPx);
    return bwNegativeDb(RGBImage(side, side), film, plateFloorOptions(options, longIn, side), pxUm)
        .density.mean();
}

RGBImage Film::renderPlateView(RGBImage light, const DevelopedFilm& film, const PaperProfile& paper,
                               RenderOptions options, double pxUm)
{
    const std::int64_t longIn = light.longSide();
    options.ev += Plate::positiveEv(paper);
    const SilverNegative plate = bwNegativeDb(std::move(light), film, options, pxUm);
    const RenderProfiler::Scope booked("plate view", plate.density.count());
    const Plate::Range range{plateFloor(film, options, pxUm, plate.curve.dmin, longIn),
                             film.film.negative->dmax};
    return Plate::viewPlate(plate.density, paper, options, range, film.silverTint);
}

} // namespace tamlo
