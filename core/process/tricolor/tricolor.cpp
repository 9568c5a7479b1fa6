#include "core/process/tricolor/tricolor.h"

#include "core/film/print/black_and_white.h"
#include "core/image/render_profiler.h"
#include "core/image/rounding.h"
#include "core/process/tricolor/plate_passes.h"
#include "core/process/tricolor/registration.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <string>
#include <utility>

namespace tamlo {
namespace {

using namespace Tricolor;

constexpr std::uint64_t kGrainSalt = 544; // one stream a plate from here on

TricolorParams paramsOf(const FilmProfile& film)
{
    return film.tricolor.value_or(TricolorParams{});
}

Film::PlateExposure exposureOf(const TricolorParams& tricolor, std::size_t plate, double ev,
                               const RenderOptions& options)
{
    Film::PlateExposure out;
    out.weights = Vec3d{1.0, 1.0, 1.0};
    if (tricolor.filters)
        if (const auto own = tricolor.filters->find(std::string(plates[plate]));
            own != tricolor.filters->end())
            out.weights = own->second;
    out.evExtra = ev;
    out.grainSeed = grainSeed(options, plate);
    return out;
}

PlateOpening openingOf(Size size, const Margins& margins)
{
    const double w = static_cast<double>(size.width), h = static_cast<double>(size.height);
    return {pyRound(margins.l * w), size.width - pyRound(margins.r * w), pyRound(margins.t * h),
            size.height - pyRound(margins.b * h)};
}

std::optional<std::array<Vec3f, 3>> projectionOf(const TricolorParams& tricolor)
{
    if (!tricolor.projection) return std::nullopt;
    const auto matrix = asMatrix3(*tricolor.projection);
    if (!matrix) return std::nullopt;
    std::array<Vec3f, 3> out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) out[i][j] = static_cast<float>((*matrix)[i][j]);
    return out;
}

} // namespace

Tricolor::Curves Tricolor::curves(const FilmProfile& film)
{
    Curves out;
    if (const auto& n = film.negative)
        out.neg = HDCurve(n->dmin, n->dmax, n->gamma, n->toe.value_or(1.6), n->midDensity.value_or(0.95));
    else
        out.neg = HDCurve(0.1, 2.6, 0.85, 1.5, 0.95);
    if (const auto& p = paramsOf(film).positive)
        out.pos = HDCurve(p->dmin, p->dmax, p->gamma, p->toe.value_or(1.3), p->midDensity.value_or(0.9));
    else
        out.pos = HDCurve(0.05, 2.8, 1.6, 1.3, 0.9);
    return out;
}

std::array<double, 3> Tricolor::plateEV(const FilmProfile& film, GrainRNG& rng)
{
    const TricolorParams tricolor = paramsOf(film);
    const double jitter = tricolor.evJitter.value_or(0.0);
    std::array<double, 3> out{};
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (tricolor.plateEv)
            if (const auto own = tricolor.plateEv->find(std::string(plates[i]));
                own != tricolor.plateEv->end())
                out[i] = own->second;
        if (jitter > 0.0) out[i] += jitter * rng.nextNormal();
    }
    return out;
}

std::uint32_t Tricolor::grainSeed(const RenderOptions& options, std::size_t plate)
{
    return static_cast<std::uint32_t>(
        Seeds::streamRNG(options, Seeds::SeedStream::film, kGrainSalt + plate).nextUInt64());
}

RGBImage Tricolor::render(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                          double pxUm)
{
    const TricolorParams tricolor = paramsOf(film.film);
    const Size size = light.size();
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film, salt);
    const std::array<double, 3> ev = plateEV(film.film, rng);
    const RegPlan registration = tricolorRegistrationPlan(tricolor, options, pxUm, rng);

    const HDCurve positive = curves(film.film).pos;
    RGBImage out;
    for (std::size_t i = 0; i < plates.size(); ++i) {
        const Film::PlateExposure exposure = exposureOf(tricolor, i, ev[i], options);
        const bool last = i + 1 == plates.size();
        Film::SilverNegative negative =
            Film::bwNegativeDb(last ? std::move(light) : light, film, options, pxUm, exposure);
        const RenderProfiler::Scope booked("three plates", size.width * size.height);
        const HDCurve& neg = negative.curve;
        plate_positive(negative.density,
                       {positive, neg.fD0, openingOf(size, registration.plates[i].margins)});
        const auto field = RegistrationField::of(registration, i, size);
        if (i == 0) out = RGBImage(size.width, size.height);
        plate_sample(out, static_cast<int>(i), negative.density, field ? &*field : nullptr);
    }
    RenderProfiler::cpu("three plates", out.pixelCount(),
                        [&] { plate_combine(out, projectionOf(tricolor)); });
    return out;
}

} // namespace tamlo
