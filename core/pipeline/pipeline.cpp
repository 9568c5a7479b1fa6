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
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/pending_stages.h"
#include "core/pipeline/render_size.h"
#include "core/process/altprint/paper_base.h"
#include "core/process/altprint/plate_mark.h"
#include "core/process/border.h"
#include "core/process/finishing/finish_sheet.h"
#include "core/process/mat/table.h"
#include "core/process/plates/plate_view.h"
#include "core/process/press/repro.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/film_format.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tamlo {
namespace {

double cardThicknessMm(const FilmProfile& film)
{
    constexpr double kIntegralMm = 0.45;
    return film.frame ? film.frame->thicknessMm.value_or(kIntegralMm) : kIntegralMm;
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
    if (!isInstant && paper.repro != "crt") image = Pending::drawRebate(std::move(image));
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
        if (ratio > 1.001 || ratio < 0.999) afterScanCap(baseLong, options, ratio);
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
        options = instantBareOptions(film, std::move(options), image.size());
        if (options.instantFrame) image = Pending::addInstantFrame(std::move(image));
        if (hasFinishing(options))
            image = finishSheet(std::move(image), options, cardThicknessMm(film), std::nullopt, false);
        hooks.progress("done", 1.0);
        return image;
    }

    // The sheet.
    if (windowMask) image = Pending::compositeWindow(std::move(image));
    const Vec3f base = paperBase(paper, options);
    const double border = resolveBorder(options, paper, {baseLong, longSide, length.fmtUm},
                                        frameInsetFrac(std::nullopt, baseLong));
    const Vec3f colour = borderRGB(base, developed, paper, options, pxUm);
    options.plateInsetPx = plateInset(paper, options);
    image = Finishing::addBorder(std::move(image), borderMarginPx(border, longSide), colour);
    if (paper.hasSheet() && paper.isAlt()) image = AltPrint::embossPlate(std::move(image), paper, options);
    image = finishSheet(std::move(image), options, paper.thicknessMm.value_or(Table::paperThicknessMm),
                        std::nullopt, !paper.hasSheet());
    hooks.progress("done", 1.0);
    return image;
}

} // namespace tamlo
