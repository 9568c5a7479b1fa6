#include "cli/measure.h"

#include "cli/columns.h"
#include "cli/data_sheet.h"
#include "cli/develop_choices.h"
#include "cli/usage_error.h"
#include "core/profiles/user_files.h"
#include "core/text/loc.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iostream>

namespace tamlo::cli {
namespace {

using nlohmann::ordered_json;
using Sensitometry::Report;

template <typename T>
ordered_json orNull(const std::optional<T>& value)
{
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json asJson(const std::string& film, const std::optional<std::string>& paper, const Report& report)
{
    ordered_json layers = ordered_json::array();
    for (const Sensitometry::Layer& layer : report.layers)
        layers.push_back({{"name", layer.name},
                          {"density", layer.density},
                          {"dmin", layer.dmin},
                          {"dmax", layer.dmax},
                          {"gamma", layer.gamma},
                          {"speed_point", orNull(layer.speedPoint)}});
    ordered_json mtf = ordered_json::array();
    for (const Sensitometry::MTFPoint& p : report.mtf) mtf.push_back({p.cyclesPerMm, p.response});
    ordered_json object{{"film", film}, {"log_exposure", report.logExposure}, {"layers", layers}};
    if (report.granularity)
        object["granularity"] = {{"aperture_um", Sensitometry::kAperturesUm},
                                 {"rms_1000", report.granularity->rms},
                                 {"selwyn_um", report.granularity->selwyn}};
    else
        object["granularity"] = nullptr;
    object["mtf"] = mtf;
    object["mtf50_cyc_mm"] = orNull(report.mtf50);
    object["adjacency_overshoot"] = report.adjacencyOvershoot;
    object["halation_radius_um"] = orNull(report.halationRadiusUm);
    if (report.print)
        object["print"] = {{"paper", *paper},
                           {"density", report.print->density},
                           {"dmin", report.print->dmin},
                           {"dmax", report.print->dmax},
                           {"iso_range", orNull(report.print->isoRange)}};
    return object;
}

template <typename... Values>
std::string format(const char* pattern, Values... values)
{
    char text[160];
    std::snprintf(text, sizeof text, pattern, values...);
    return text;
}

std::string optional(const char* pattern, const std::optional<double>& value)
{
    return value ? format(pattern, *value) : "–";
}

std::string asText(const std::string& title, const Report& report)
{
    std::string text = title + "\n  " + leftAligned(T("cli.layer"), 8) + "   Dmin    Dmax" +
                       rightAligned(T("cli.measure.gamma"), 8) + "   " + T("cli.measure.speedPoint") + "\n";
    for (const Sensitometry::Layer& layer : report.layers)
        text += "  " + leftAligned(layerTitle(layer), 8) +
                format(" %6.2f  %6.2f  %6.2f   ", layer.dmin, layer.dmax, layer.gamma) +
                optional("%+.2f", layer.speedPoint) + "\n";
    for (const auto& [name, value] : dataSheetFigures(report)) text += "  " + name + ": " + value + "\n";
    text += "  " + leftAligned(T("cli.measure.logH"), 7);
    for (const Sensitometry::Layer& layer : report.layers) text += rightAligned(layerTitle(layer), 8);
    text += (report.print ? rightAligned(T("cli.measure.print"), 8) : "") + "\n";
    for (std::size_t i = 0; i < report.logExposure.size(); ++i) {
        text += format("  %+5.2f  ", report.logExposure[i]);
        for (const Sensitometry::Layer& layer : report.layers) text += format("%8.3f", layer.density[i]);
        text += (report.print ? format("%8.3f", report.print->density[i]) : "") + "\n";
    }
    return text;
}

template <typename Profile>
std::string nameOf(const Profile& profile, const std::string& id)
{
    return Loc::pick(profile.name.value_or(id), profile.nameEn);
}

} // namespace

int measure(const MeasureArguments& arguments, std::ostream& results)
{
    if (arguments.plot && arguments.plot->extension() != ".svg")
        throw UsageError(T("cli.badPlotFile", {{"file", arguments.plot->string()}}));
    const RenderChoices render = resolveChoices(arguments, ProfileStore::shared()).render;
    const Report report =
        Sensitometry::measure(render.film, arguments.paper ? &render.paper : nullptr, render.options);

    const std::string film = nameOf(render.film, *arguments.film);
    const std::string paper = arguments.paper ? nameOf(render.paper, *arguments.paper) : "";
    if (arguments.plot) UserFiles::write(*arguments.plot, dataSheet(film, paper, report));
    const std::string title =
        paper.empty() ? film : T("cli.measure.title", {{"film", film}, {"paper", paper}});
    if (arguments.json)
        results << asJson(*arguments.film, arguments.paper, report).dump(2) << std::endl;
    else
        results << asText(title, report);
    return 0;
}

} // namespace tamlo::cli
