#include "cli/choice_notes.h"

#include "cli/catalogue.h"
#include "cli/messages.h"
#include "cli/picture_choices.h"
#include "core/film/light/emulsion_input.h"
#include "core/io/image_loader.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/idle_options.h"
#include "core/profiles/options/film_format.h"

#include <algorithm>
#include <cmath>

namespace tamlo::cli {
namespace {

std::string formatOf(const DevelopChoices& choices)
{
    return std::string(rawText(Formats::resolvedFormat(choices.render.film, choices.render.options)));
}

/// The formats that have a frame of this size: "120", "sheet or plate".
std::string formatsWith(const std::string& size)
{
    std::vector<std::string> formats;
    for (const Formats::FrameSize& row : Formats::frameSizes())
        if (row.size == size) formats.emplace_back(row.format);
    return joined(formats, T("common.or"));
}

std::string idleNote(const DevelopChoices& choices, const Pipeline::IdleOption& idle)
{
    const RenderChoices& render = choices.render;
    const std::string reason =
        T(idle.reasonKey, {{"film", titleOf(render.film, choices.film)},
                           {"lens", titleOf(render.lens, choices.lens)},
                           {"paper", titleOf(render.paper, choices.paper)},
                           {"dev", rawText(render.options.dev)},
                           {"format", formatOf(choices)},
                           {"size", render.options.frameSize.value_or("")},
                           {"formats", formatsWith(render.options.frameSize.value_or(""))}});
    return T("cli.idle", {{"option", idle.key}, {"reason", reason}});
}

/// The crop ends at the picture's edge, or repeats it where it is tilted.
std::optional<std::string> cropNote(const RenderOptions& options, const std::string& file, Size source)
{
    constexpr double kTolerancePx = 1.0;
    if (!options.crop) return std::nullopt;
    const bool tilted = std::abs(options.crop->angle) > 1e-9;
    if (Pipeline::cropFits(options.crop, std::nullopt, source, kTolerancePx)) return std::nullopt;
    return T(tilted ? "cli.cropPastEdgeTilted" : "cli.cropPastEdge", {{"file", file}});
}

/// A picture that is longer than the frame it is laid in.
std::optional<std::string> frameNote(const DevelopChoices& choices, const PictureChoices& one,
                                     const std::string& file)
{
    const RenderOptions& options = one.render.options;
    const bool asked = choices.asked.contains("frame_size") || choices.asked.contains("format");
    if (!asked || one.render.film.isInstant()) return std::nullopt;
    const auto window = Formats::formatWindow(one.render.film, options,
                                              {one.source, Pipeline::croppedSize(options.crop, one.source)});
    if (window.k < 1.01 || !options.frameSize || *options.frameSize == "custom") return std::nullopt;
    return T("cli.widerThanFrame", {{"file", file},
                                    {"mm", Fmt::number(window.fmtUm / 1000.0, 0)},
                                    {"size", *options.frameSize},
                                    {"gate", Fmt::number(window.gateMm.longMm, 1)}});
}

/// A picture whose colours are finished turns blue on a film for lamplight, unless the light is turned back.
std::optional<std::string> balanceNote(const DevelopChoices& choices, const std::string& file)
{
    const FilmProfile& film = choices.render.film;
    const RenderOptions& options = choices.render.options;
    const bool isBalanced = film.isBW() || options.wbTemp > 0.0 ||
                            !Film::balanceGains(film, Film::sceneIlluminantK(film, options.wbMode));
    if (isBalanced) return std::nullopt;
    return T("cli.lamplightFilm", {{"file", file},
                                   {"film", titleOf(film, choices.film)},
                                   {"kelvin", Fmt::number(Film::filmIlluminantK(film, Film::sceneRefK), 0)}});
}

} // namespace

void addChoiceNotes(DevelopChoices& choices)
{
    for (const Pipeline::IdleOption& idle : Pipeline::idleOptions(choices.render, choices.asked))
        choices.notes.push_back(idleNote(choices, idle));
}

std::vector<std::string> pictureNotes(const DevelopChoices& choices, const PictureChoices& one,
                                      const std::filesystem::path& picture)
{
    std::vector<std::string> notes;
    const std::string file = picture.string();
    const RenderOptions defaults, &options = one.render.options;
    if (const auto note = cropNote(options, file, one.source)) notes.push_back(*note);
    if (const auto note = frameNote(choices, one, file)) notes.push_back(*note);
    if (ImageLoader::isRAW(picture)) {
        if (choices.asked.contains("src_lights") && choices.render.options.srcLights > 0.0)
            notes.push_back(T(
                "cli.idle", {{"option", "src_lights"}, {"reason", T("idle.displayOnly", {{"file", file}})}}));
        return notes;
    }
    if (const auto note = balanceNote(choices, file)) notes.push_back(*note);
    const auto rawOnly = [&](const char* key) {
        if (choices.asked.contains(key))
            notes.push_back(
                T("cli.idle", {{"option", key}, {"reason", T("idle.rawOnly", {{"file", file}})}}));
    };
    if (options.srcExposure != defaults.srcExposure) rawOnly("src_exposure");
    if (options.wbMode == "asshot") rawOnly("wb_mode");
    return notes;
}

} // namespace tamlo::cli
