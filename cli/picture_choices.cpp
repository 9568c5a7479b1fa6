#include "cli/picture_choices.h"

#include "cli/choice_notes.h"
#include "core/io/image_loader.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/output_plan.h"
#include "core/profiles/options/film_format.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo::cli {
namespace {

/// The named frame that the picture would be cut to; nothing where none is, or where the film has a card of
/// its own.
std::optional<double> frameAspect(const RenderChoices& render)
{
    if (render.film.isInstant()) return std::nullopt;
    const auto name = Formats::normalizeFormat(rawText(Formats::resolvedFormat(render.film, render.options)),
                                               render.options.frameSize);
    return Formats::formatAspect(name.format, name.size);
}

bool isCutByItsCamera(const RenderOptions& options)
{
    return options.format == FilmFormat::f120 && (options.frameSize == "6x6" || options.frameSize == "6x7");
}

/// The centre of a picture in the aspect of a frame; nothing where that is the picture.
std::optional<Crop> frameCrop(Size source, double aspect)
{
    const Pipeline::PixelRect rect = Pipeline::aspectRect(source, aspect);
    if (rect.width() == source.width && rect.height() == source.height) return std::nullopt;
    const double w = static_cast<double>(source.width), h = static_cast<double>(source.height);
    return Crop{static_cast<double>(rect.x0) / w, static_cast<double>(rect.y0) / h,
                static_cast<double>(rect.width()) / w, static_cast<double>(rect.height()) / h, 0.0};
}

/// Returns the aspect that the picture is cut to; nothing where the frame does not cut it.
std::optional<double> fit(PictureChoices& one, const DevelopChoices& choices, const std::string& file)
{
    RenderOptions& options = one.render.options;
    const std::optional<double> aspect = frameAspect(one.render);
    const bool byItself = !choices.fit && isCutByItsCamera(options) && options.cropGate == "full" &&
                          !choices.asked.contains("crop_gate");
    const std::string way = choices.fit.value_or(byItself ? "crop" : "");
    if (way.empty() || (byItself && options.crop)) return std::nullopt;
    if (!aspect || (way == "crop" && options.crop)) {
        const char* reason = !aspect ? "idle.needs.frameSize" : "idle.ownCrop";
        one.notes.push_back(T("cli.idle", {{"option", "--fit " + way}, {"reason", T(reason)}}));
        return std::nullopt;
    }
    if (way == "inside") {
        options.cropGate = "none";
        return std::nullopt;
    }
    options.crop = frameCrop(one.source, *aspect);
    if (options.crop && byItself)
        one.notes.push_back(T("cli.cutToFrame", {{"file", file}, {"size", *options.frameSize}}));
    return aspect;
}

} // namespace

PictureChoices choosePicture(const DevelopChoices& choices, const RenderArguments& arguments,
                             const std::filesystem::path& picture)
{
    const Size source = ImageLoader::pictureSize(picture, 0);
    PictureChoices one{choices.render, source, 0, source, {}};
    const std::optional<double> cutTo = fit(one, choices, picture.string());
    for (std::string& note : pictureNotes(choices, one, picture)) one.notes.push_back(std::move(note));
    if (ImageLoader::isRAW(picture)) one.render.options.srcLights = 0; // it has its lights
    if (!arguments.longPx) return one;
    RenderOptions& options = one.render.options;
    one.sourceLong = Pipeline::sourceLongFor(source, one.render.film, options, *arguments.longPx);
    one.exposed = resizedSize(ImageLoader::pictureSize(picture, one.sourceLong), one.sourceLong);
    if (cutTo)
        options.crop = frameCrop(one.exposed, *cutTo); // in its own pixels, or rounding bends the frame
    return one;
}

} // namespace tamlo::cli
