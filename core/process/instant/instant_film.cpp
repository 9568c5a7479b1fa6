#include "core/process/instant/instant_film.h"

#include "core/film/emulsion/emulsion_soften.h"
#include "core/film/emulsion/halation.h"
#include "core/film/print/black_and_white.h"
#include "core/film/print/black_and_white_passes.h"
#include "core/film/print/color_negative_passes.h"
#include "core/film/print/slide.h"
#include "core/image/bands.h"
#include "core/image/blur_bands.h"
#include "core/image/render_profiler.h"
#include "core/process/instant/chatter.h"
#include "core/process/instant/reagent.h"
#include "core/process/instant/silk_lattice.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/options/peel_size.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

constexpr double kNoMottle = 1e-4; // a knob below this leaves a clean surface

/// Reagent and image dyes spread in the pod before they set: part of the light is a wide blur.
template <typename Image>
Image diffuse(Image image, double softenFrac, std::int64_t channels)
{
    constexpr float kSharp = 0.35f, kSoft = 0.65f;
    constexpr double kLeastPx = 0.5;
    if (!(softenFrac > 0.0)) return image;
    const RenderProfiler::Scope booked("pod diffusion", image.width * image.height);
    const double longSide = static_cast<double>(std::max(image.width, image.height));
    const std::int64_t samples = image.width * channels;
    float* data = image.mutableData();
    blurInBands(
        image.size(), channels, std::max(softenFrac * longSide, kLeastPx),
        [&](std::int64_t y, float* to) { std::copy_n(data + y * samples, samples, to); },
        [&](std::int64_t y, const float* soft) {
            float* to = data + y * samples;
            for (std::int64_t i = 0; i < samples; ++i) to[i] = kSharp * to[i] + kSoft * soft[i];
        });
    return image;
}

/// All that is laid into the density of one picture.
struct Surface {
    std::uint64_t seed = 0;
    std::optional<Film::ReagentPlan> reagent;
    std::optional<Film::ChatterPlan> chatter;
    std::optional<Film::LatticePlan> lattice;
};

Surface planSurface(Size picture, int layers, const DevelopedFilm& film, const RenderOptions& options)
{
    const RenderProfiler::Scope booked("surface fields", picture.width * picture.height);
    Surface surface;
    surface.seed = Film::surfaceSeed(options);
    if (!film.film.texture) return surface;
    const TextureParams& texture = *film.film.texture;
    const Film::PictureScale scale = Film::pictureScale(film.film, options, picture);
    surface.reagent = Film::instantTexture(picture, layers, texture, scale, film.devMottle, surface.seed);
    if (film.devMottle <= kNoMottle) return surface;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film);
    if (texture.chatter) {
        const std::string_view key =
            film.film.frame ? Pipeline::peelSizeCfg(*film.film.frame, options.peelSize).key : "";
        surface.chatter = Film::peelChatter(picture, layers, *texture.chatter, scale,
                                            {film.devMottle, film.tempRough}, key, rng);
    }
    if (texture.silkLattice)
        surface.lattice = Film::silkLattice(picture, *texture.silkLattice, scale, film.devMottle,
                                            static_cast<std::uint32_t>(surface.seed), rng);
    return surface;
}

/// Adds a surface to rows of density, one band's at a time.
class SurfaceRows {
public:
    SurfaceRows(const Surface& surface, Size picture, int layers) : surface_(surface)
    {
        if (surface.reagent) reagent_.emplace(*surface.reagent, picture, layers);
        if (surface.chatter) chatter_.emplace(*surface.chatter, picture);
    }
    void apply(std::int64_t y, const DensityRow& density)
    {
        if (reagent_) reagent_->apply(y, density);
        if (chatter_) chatter_->apply(y, density);
        if (surface_.lattice && surface_.lattice->gain.amp != 0.0f)
            silk_apply(density, surface_.lattice->pattern.row(y), surface_.lattice->gain);
    }

private:
    const Surface& surface_;
    std::optional<Film::ReagentRows> reagent_;
    std::optional<Film::ChatterRows> chatter_;
};

/// The density that shows as white. An aged pack shows its stain against what it was when it was fresh.
float whiteReference(const FilmProfile& film, const std::array<HDCurve, 3>& curves)
{
    float least = std::min({curves[0].fDmin, curves[1].fDmin, curves[2].fDmin});
    if (!film.dminRef || film.dminRef->empty()) return least;
    double fresh = film.dminRef->begin()->second;
    for (const auto& [layer, dmin] : *film.dminRef) fresh = std::min(fresh, dmin);
    return static_cast<float>(fresh);
}

const ColorLayers& layersOf(const FilmProfile& film)
{
    if (!film.layers) throw ProfileError::invalid("instant film without 'layers'");
    return *film.layers;
}

/// Where the silver takes a warm tone, and how strongly.
std::optional<NoiseField> planToning(SilverParams32& to, Size picture, const DevelopedFilm& film,
                                     const RenderOptions& options, std::uint64_t seed)
{
    constexpr std::uint32_t kLayer = 7;
    constexpr double kScale = 0.09, kLeastPx = 3.0, kMostWidths = 64.0, kBias = 0.5;
    if (!film.film.toneMottle || film.devMottle <= kNoMottle) return std::nullopt;
    const ToneMottleParams& toning = *film.film.toneMottle;
    const double vary = std::clamp(toning.frameVar.value_or(0.0), 0.0, 1e3);
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::film);
    const double card = rng.uniform(std::max(1.0 - vary, 0.0), 1.0 + vary);
    const double amp = std::clamp(toning.amp.value_or(0.0), 0.0, 10.0) * card;
    if (amp <= 0.0 || !toning.warm) return std::nullopt;
    const double pxUm = Film::pictureScale(film.film, options, picture).pxUm;
    const double sigmaPx = std::max(
        std::min(toning.scale.value_or(kScale), kMostWidths) * static_cast<double>(picture.width), kLeastPx);
    NoiseField field =
        NoiseField::gaussian(picture, sigmaPx * pxUm, pxUm, {static_cast<std::uint32_t>(seed), kLayer});
    to.toning = static_cast<float>(amp);
    to.toningScale = field.scale();
    to.densityBias = static_cast<float>(std::clamp(toning.densityBias.value_or(kBias), 0.0, 1.0));
    for (std::size_t c = 0; c < 3; ++c)
        to.warm[c] = static_cast<float>(std::clamp((*toning.warm)[c], -10.0, 10.0));
    return field;
}

} // namespace

RGBImage Film::renderInstant(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                             double pxUm)
{
    layersOf(film.film);
    light = diffuse(std::move(light), film.film.softenFrac.value_or(0.0), 3);
    light = emulsionSoften(std::move(light), film.film, pxUm);
    light = applyHalation(std::move(light), film.film.halation, pxUm, options.halationMult);
    const CurvesColorParams params = planColorCurves(film, options);
    RenderProfiler::cpu("curves", light.pixelCount(), [&] { curves_color(light, params, nullptr); });

    const Surface surface = planSurface(light.size(), 3, film, options);
    const RenderProfiler::Scope booked("instant surface", light.pixelCount());
    const float reference = whiteReference(film.film, params.curves);
    const LookOp look(film.film.look);
    float* data = light.mutableData();
    const std::int64_t width = light.width;
    parallelBands(light.height, width * 12, [&](std::int64_t start, std::int64_t end) {
        SurfaceRows rows(surface, light.size(), 3);
        std::array<std::vector<float>, 3> layers;
        DensityRow density{{}, 3, width};
        for (std::size_t c = 0; c < 3; ++c) {
            layers[c].resize(static_cast<std::size_t>(width));
            density.layers[c] = layers[c].data();
        }
        for (std::int64_t y = start; y < end; ++y) {
            float* row = data + y * width * 3;
            split_layers(density, row);
            rows.apply(y, density);
            instant_positive(row, density, reference, look);
        }
    });
    return light;
}

RGBImage Film::renderInstantMono(RGBImage light, const DevelopedFilm& film, const RenderOptions& options,
                                 double pxUm)
{
    constexpr Vec3d kWeights{0.29, 0.37, 0.34};
    const HDCurve curve = positiveCurves(layersOf(film.film), kPositiveToe)[0];
    // Weighing the channels and blurring them may change places: one plane is blurred in place of three.
    Plane silver(light.width, light.height);
    dot3(silver, light, normalisedWeights(film.film.spectralWeights.value_or(kWeights)), {});
    silver = diffuse(std::move(silver), film.film.softenFrac.value_or(0.0), 1);
    silver = emulsionSoften(std::move(silver), film.film, pxUm);
    silver = applyHalation(std::move(silver), film.film.halation, pxUm, options.halationMult);
    const double ev = (options.ev + film.exposureShift) * LOG10_2;
    RenderProfiler::cpu("curves", silver.count(),
                        [&] { curve_bw(silver, curve, static_cast<float>(ev), true); });

    const Surface surface = planSurface(silver.size(), 1, film, options);
    const RenderProfiler::Scope booked("instant surface", silver.count());
    SilverParams32 params;
    params.reference = whiteReference(film.film, {curve, curve, curve});
    if (film.film.dminRef)
        if (const auto red = film.film.dminRef->find("r"); red != film.film.dminRef->end())
            params.reference = static_cast<float>(red->second);
    if (film.film.imageTone)
        for (std::size_t c = 0; c < 3; ++c) params.tone[c] = static_cast<float>((*film.film.imageTone)[c]);
    params.dmin = curve.fDmin;
    params.span = std::max(curve.fSpan, 1e-6f);
    const std::optional<NoiseField> toning = planToning(params, silver.size(), film, options, surface.seed);
    const LookOp look(film.film.look);
    // The scene has done its work; its pages take the picture, which fresh ones would cost a pass.
    float *data = silver.mutableData(), *to = light.mutableData();
    const std::int64_t width = silver.width;
    parallelBands(silver.height, width * 6, [&](std::int64_t start, std::int64_t end) {
        SurfaceRows rows(surface, silver.size(), 1);
        std::optional<NoiseField::Rows> toningRows;
        if (toning) toningRows.emplace(*toning);
        for (std::int64_t y = start; y < end; ++y) {
            float* row = data + y * width;
            rows.apply(y, {{row, nullptr, nullptr}, 1, width});
            mono_positive(to + y * width * 3, row, toningRows ? toningRows->row(y) : nullptr, width, params,
                          look);
        }
    });
    return light;
}

} // namespace tamlo
