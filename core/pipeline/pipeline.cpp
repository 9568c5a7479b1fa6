#include "core/pipeline/pipeline.h"

#include "core/film/emulsion/dev_field.h"
#include "core/film/emulsion/development.h"
#include "core/film/filters/filters.h"
#include "core/film/lens/optics.h"
#include "core/film/light/emulsion_input.h"
#include "core/film/light/source_light.h"
#include "core/film/print/scan.h"
#include "core/image/orient.h"
#include "core/image/render_profiler.h"
#include "core/image/resample.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/output_plan.h"
#include "core/pipeline/render_size.h"
#include "core/process/altprint/brushed_coat.h"
#include "core/process/altprint/paper_base.h"
#include "core/process/altprint/plate_mark.h"
#include "core/process/border.h"
#include "core/process/card/card_relief.h"
#include "core/process/card/instant_card.h"
#include "core/process/finishing/finish_sheet.h"
#include "core/process/mat/mat_plan.h"
#include "core/process/mat/table.h"
#include "core/process/plates/plate_view.h"
#include "core/process/press/repro.h"
#include "core/process/rebate/frame_plan.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/film_format.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tamlo {
namespace {

/// The mask of the picture's window follows its resolution.
void resampleMask(std::optional<Plane>& mask, Size size, Resampling filter)
{
    if (mask) mask = pilResize(std::move(*mask), size, filter);
}

/// What a rebate is laid on.
struct RebateGround {
    const FilmProfile& film;
    const PaperProfile& paper;
    Vec3f base;
};

RGBImage layRebate(RGBImage image, const Pipeline::Rebate& rebate, const Plane& mask,
                   const RebateGround& ground)
{
    const RenderProfiler::Scope booked("rebate", image.pixelCount());
    // Through a hole in a negative the paper gets all the light there is.
    Vec3f hole = ground.base;
    if (!ground.film.isSlide() && !ground.film.isTricolor()) {
        const double span = ground.paper.dmax.value_or(2.0) - ground.paper.dmin.value_or(0.0);
        for (float& channel : hole) channel *= static_cast<float>(std::pow(10.0, -std::max(span, 0.0)));
    }
    return Pipeline::composite(std::move(image), rebate, mask, ground.base, hole);
}

/// The clear strips round a rebate, for a mat; a brushed coat has none.
OptList clearStrips(const Pipeline::Rebate& rebate, std::int64_t longSide, const PaperProfile& paper,
                    const RenderOptions& options)
{
    if (paper.isAlt() && AltPrint::coatStyle(paper, options) != "none") return std::nullopt;
    const auto whites = NegativeFrame::whiteMargins(rebate.picture, rebate.profiles);
    const double ratio = static_cast<double>(longSide) /
                         static_cast<double>(std::max(rebate.canvas.width, rebate.canvas.height));
    OptList out(std::in_place);
    for (const double white : whites) out->push_back(white * ratio);
    return out;
}

/// The card round an instant picture, and what lies over or under it. The scale of both is the card's.
RGBImage mountInstant(RGBImage image, const FilmProfile& film, RenderOptions options)
{
    const Size picture = image.size();
    const InstantFrameParams& frame = Pipeline::cardFrame(film);
    options = Pipeline::instantBareOptions(film, std::move(options), picture);
    std::optional<Plane> outline;
    if (options.instantFrame) {
        RenderOptions laid = options;
        // A table shows at the cut corners by their coverage; the card's own colour runs on to it.
        const bool onTable = Table::wantsTable(options) && !Finishing::wantsMat(options);
        const Vec3d base = CardRelief::baseTint(frame);
        if (onTable) laid.cardOutside = std::vector(base.begin(), base.end());
        GrainRNG rng = Pipeline::instantFrameRNG(film, options);
        image = Pipeline::addInstantFrame(std::move(image), frame, laid, rng);
        options = Pipeline::instantCardOptions(film, std::move(options), picture, image.size());
        if (onTable) outline = Pipeline::instantFinishMask(film, options.peelSize, picture, image.size());
    }
    if (!Pipeline::hasFinishing(options)) return image;
    const double thicknessMm = frame.thicknessMm.value_or(CardRelief::thicknessMmDefault);
    return Pipeline::finishSheet(std::move(image), options, thicknessMm, outline, false);
}

} // namespace

Vec3f Pipeline::paperBase(const PaperProfile& paper, const RenderOptions& options)
{
    if (paper.isAlt()) return AltPrint::resolveBase(paper, options);
    const Vec3d base = paper.baseTint.value_or(Vec3d{1.0, 1.0, 1.0});
    return {static_cast<float>(base[0]), static_cast<float>(base[1]), static_cast<float>(base[2])};
}

bool Pipeline::hasFinishing(const RenderOptions& options)
{
    const auto chosen = [](const OptText& text) { return text && !text->empty() && *text != "none"; };
    return (options.table && *options.table != "none") || (options.mat && *options.mat != "none") ||
           chosen(options.embossLine) || options.blindStamp.value_or(false) ||
           (options.stampText && !options.stampText->empty());
}

Vec3f Pipeline::borderRGB(const Vec3f& base, const DevelopedFilm& developed, const PaperProfile& paper,
                          const RenderOptions& options, double pxUm)
{
    if (!options.borderBlack || paper.hasSheet() || options.border <= 0.0) return base;
    const Vec3d black = Film::printBlackRGB(developed, paper, options, pxUm);
    return {static_cast<float>(black[0]), static_cast<float>(black[1]), static_cast<float>(black[2])};
}

RGBImage Pipeline::process(RGBImage image, const FilmProfile& film, const LensProfile& lens,
                           const PaperProfile& paper, RenderOptions options, const RenderHooks& hooks)
{
    if (image.pixelCount() == 0) throw TamloError::invalidArgument(T("pipeline.err.noPixels"));
    const bool isInstant = film.isInstant();
    const Size source = image.size();
    hooks.progress("film", 0.0);

    // The film, the cut of the source and the film under it.
    DevelopedFilm developed = applyFilmStateAndDevelopment(film, options);
    image = rotateCropInput(std::move(image), options.crop);
    const FilmLength length = filmLength(film, options, source, image.size());
    image = RenderProfiler::cpu("orientation", image.pixelCount(), [&] {
        return Orientation::orientImage(std::move(image), options.rotate, options.mirror);
    });
    if (options.masterCap)
        image = applyMasterCap(std::move(image), length.fmtUm, masterLongPx(film, length.capUm));
    image = cropToCard(std::move(image), film, options);
    std::int64_t baseLong = image.longSide();
    hooks.cancellationPoint();

    // Light, filters and lens.
    hooks.progress("light", 0.1);
    image = SourceLight::applySource(std::move(image), film, options);
    image = Filters::applyFront(std::move(image), options, ProfileStore::shared(), true);
    hooks.progress("lens", 0.15);
    const Optics::Controls controls{options.stop, options.glowMult, options.glowRadiusMult,
                                    options.distortion};
    const Vec3f means =
        RenderProfiler::cpu("channel means", image.pixelCount(), [&] { return image.channelMeans(); });
    image = Optics::apply(std::move(image), lens, means, controls);
    image = Filters::apply(std::move(image), developed.film, options, ProfileStore::shared());

    // The frame on the film, and the physical scale of all that follows.
    std::optional<Plane> windowMask;
    std::optional<Rebate> rebate;
    if (!isInstant && paper.repro != "crt")
        rebate = RenderProfiler::cpu("rebate", image.pixelCount(), [&] {
            return addRebate(image, film, options, {length.fmtUm, length.whole});
        });
    std::optional<std::array<double, 4>> insetsPx;
    if (rebate) {
        windowMask = std::move(rebate->mask);
        insetsPx = rebate->plan.insetsPx();
    }
    const std::array<double, 4> insetFrac = frameInsetFrac(insetsPx, baseLong);
    std::int64_t longSide = image.longSide();
    const double pxUm = length.fmtUm / static_cast<double>(longSide);
    options.formatLongUm = length.fmtUm;
    developed.unevenField = RenderProfiler::cpu("tank field", image.pixelCount(), [&] {
        return DevField::unevenField(image.size(), pxUm, Formats::devFieldFormat(film, options), film,
                                     options);
    });
    resolvePrintScale(options, paper, {baseLong, longSide, length.fmtUm}, isInstant);

    // The emulsion and the print.
    hooks.progress("emulsion", 0.3);
    image = Film::applyEmulsion(std::move(image), film, options.interlayer, options.wbMode);
    hooks.cancellationPoint();
    if (film.isCollodion()) developed = Plate::withoutGlassOnOpaque(std::move(developed), paper);
    image = Film::render(std::move(image), {developed, paper, options, pxUm, windowMask});
    longSide = image.longSide(); // a brushed coat widens the sheet and leaves the print's scale

    // Reproduction may enlarge the picture and a scan reduce it; the sizes follow.
    const auto followResolution = [&] {
        const double ratio = static_cast<double>(image.longSide()) / static_cast<double>(longSide);
        if (ratio > 1.001 || ratio < 0.999) {
            resampleMask(windowMask, image.size(), ratio > 1.0 ? Resampling::bicubic : Resampling::box);
            afterScanCap(baseLong, options, ratio);
        }
        longSide = image.longSide();
    };
    if (paper.isRepro()) hooks.cancellationPoint();
    hooks.progress("print", 0.8);
    if (paper.isRepro() || paper.surface)
        image = Film::applyRepro(std::move(image), paper, options, film.isBW());
    followResolution();
    if (paper.isScan()) image = Film::applyScan(std::move(image), paper);
    followResolution();

    if (isInstant) {
        image = mountInstant(std::move(image), film, std::move(options));
        hooks.progress("done", 1.0);
        return image;
    }

    // The sheet.
    const Vec3f base = paperBase(paper, options);
    if (rebate) {
        if (windowMask) image = layRebate(std::move(image), *rebate, *windowMask, {film, paper, base});
        windowMask.reset();
        options.frameWhitePx = clearStrips(*rebate, image.longSide(), paper, options);
    }
    const double border = resolveBorder(options, paper, {baseLong, longSide, length.fmtUm}, insetFrac);
    const Vec3f colour = borderRGB(base, developed, paper, options, pxUm);
    options.plateInsetPx = plateInset(paper, options);
    image = Finishing::addBorder(std::move(image), borderMarginPx(border, longSide), colour);
    if (paper.hasSheet() && paper.isAlt()) image = AltPrint::embossPlate(std::move(image), paper, options);
    image = finishSheet(std::move(image), options, paper.thicknessMm.value_or(Table::paperThicknessMm),
                        std::nullopt, !paper.hasSheet());
    hooks.progress("done", 1.0);
    return image;
}

void Pipeline::prepareGrain(Size source, const FilmProfile& film, const PaperProfile& paper,
                            RenderOptions options)
{
    const OutputPlan plan = outputPlan(source, film, paper, options, 1.0);
    if (!(plan.pxUm > 0.0)) return;
    options.formatLongUm = plan.fmtUm;
    Film::prepareGrain(applyFilmStateAndDevelopment(film, options), options,
                       std::llround(plan.fmtUm / plan.pxUm), plan.pxUm);
}

} // namespace tamlo
