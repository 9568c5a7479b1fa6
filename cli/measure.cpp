#include "cli/measure.h"

#include "cli/catalogue.h"
#include "cli/columns.h"
#include "cli/data_sheet.h"
#include "cli/develop_choices.h"
#include "cli/messages.h"
#include "cli/usage_error.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/sensitometry/paper_sensitometry.h"
#include "core/text/loc.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iostream>
#include <utility>
#include <vector>

namespace tamlo::cli {
namespace {

using nlohmann::ordered_json;
using Sensitometry::PaperReport;
using Sensitometry::Report;

template <typename T>
ordered_json orNull(const std::optional<T>& value)
{
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json pressJson(const Sensitometry::PressReport& press)
{
    ordered_json inks = ordered_json::array();
    for (const Sensitometry::PrintedInk& ink : press.inks) {
        ordered_json one{{"name", ink.name}, {"lpi", nullptr}, {"angle_deg", nullptr}};
        if (ink.ruling) {
            one["lpi"] = ink.ruling->lpi;
            one["angle_deg"] = ink.ruling->angleDeg;
        }
        one["tone"] = ink.tone;
        one["solid_density"] = ink.solidDensity;
        inks.push_back(std::move(one));
    }
    return {{"inks", inks},
            {"asked_tone", Sensitometry::kAskedTones},
            {"paper_density", press.paperDensity},
            {"black_density", press.blackDensity},
            {"total_ink", orNull(press.totalInk)}};
}

ordered_json asJson(const std::string& film, const std::string& paper, const Report& report)
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
    if (report.surface) {
        ordered_json parts = ordered_json::object();
        for (const Sensitometry::SurfacePart& part : report.surface->parts) parts[part.name] = part.deviation;
        object["surface"] = {
            {"density", report.surface->density}, {"deviation", report.surface->whole}, {"parts", parts}};
    }
    object["mtf"] = mtf;
    object["mtf50_cyc_mm"] = orNull(report.mtf50);
    object["adjacency_overshoot"] = report.adjacencyOvershoot;
    object["halation_radius_um"] = orNull(report.halationRadiusUm);
    if (report.print)
        object["print"] = {{"paper", paper},
                           {"density", report.print->density},
                           {"dmin", report.print->dmin},
                           {"dmax", report.print->dmax},
                           {"iso_range", orNull(report.print->isoRange)}};
    if (report.press) object["press"] = pressJson(*report.press);
    if (const auto& plate = report.plate)
        object["plate"] = {{"unevenness", plate->unevenness},
                           {"thinnest", plate->thinnest},
                           {"thickest", plate->thickest},
                           {"veil", plate->veil},
                           {"rim", plate->rim},
                           {"bare_share", plate->bare},
                           {"crystal_share", plate->crystals},
                           {"ring_mm", orNull(plate->ringMm)}};
    if (report.tube)
        object["tube"] = {{"line_pitch_mm", report.tube->linePitchMm},
                          {"ripple", report.tube->ripple},
                          {"mask_cyc_mm", orNull(report.tube->maskCyclesPerMm)},
                          {"asked_grey", Sensitometry::kAskedGreys},
                          {"light", report.tube->light}};
    return object;
}

ordered_json asJson(const std::string& paper, const PaperReport& report)
{
    ordered_json object{{"paper", paper},
                        {"tablet_density", report.tabletDensity},
                        {"density", report.density},
                        {"dmin", report.dmin},
                        {"dmax", report.dmax},
                        {"gamma", orNull(report.gamma)},
                        {"iso_range", orNull(report.isoRange)}};
    if (report.structure)
        object["structure"] = {{"density", report.structure->density},
                               {"aperture_mm", Sensitometry::kStructureAperturesMm},
                               {"rms_1000", report.structure->rms},
                               {"size_mm", report.structure->sizeMm}};
    else
        object["structure"] = nullptr;
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

std::string asText(const std::string& title, const PaperReport& report)
{
    std::vector<std::pair<std::string, std::string>> rows{
        {T("cli.measure.printRange"), format("%.2f, %.2f", report.dmin, report.dmax)},
        {T("cli.measure.gamma"), optional("%.2f", report.gamma)},
        {T("cli.measure.isoRange"), optional("R %.0f", report.isoRange)}};
    if (const auto& s = report.structure) {
        rows.emplace_back(T("cli.measure.structure"),
                          format("%.1f, %.1f, %.1f", s->rms[0], s->rms[1], s->rms[2]));
        rows.emplace_back(T("cli.measure.structureSize"),
                          T("cli.measure.mm", {{"n", format("%.2f", s->sizeMm)}}));
    }
    std::string text = title + "\n";
    for (const auto& [name, value] : rows) text += "  " + name + ": " + value + "\n";
    text +=
        "  " + rightAligned(T("cli.measure.tablet"), 10) + rightAligned(T("cli.measure.print"), 10) + "\n";
    for (std::size_t i = 0; i < report.density.size(); ++i)
        text += format("  %10.2f%10.3f\n", report.tabletDensity[i], report.density[i]);
    return text;
}

/// A paper by itself, under a step tablet.
int measurePaperAlone(const MeasureArguments& arguments, std::ostream& results)
{
    if (!arguments.paper) throw UsageError(T("cli.measure.nothing"));
    if (arguments.plot) throw UsageError(T("cli.measure.plotNeedsFilm"));
    const DevelopChoices choices = resolveChoices(arguments, ProfileStore::shared());
    const PaperProfile& paper = choices.render.paper;
    if (!paper.isAlt()) throw UsageError(T("cli.measure.paperNeedsFilm", {{"paper", choices.paper}}));
    const PaperReport report = Sensitometry::measurePaper(paper, choices.render.options);
    for (const std::string& note : choices.notes) tellNote(note);
    if (arguments.json)
        results << asJson(choices.paper, report).dump(2) << std::endl;
    else
        results << asText(titleOf(paper, choices.paper), report);
    return 0;
}

} // namespace

int measure(const MeasureArguments& arguments, std::ostream& results)
{
    if (!arguments.film) return measurePaperAlone(arguments, results);
    if (arguments.plot && arguments.plot->extension() != ".svg")
        throw UsageError(T("cli.badPlotFile", {{"file", arguments.plot->string()}}));
    const DevelopChoices choices = resolveChoices(arguments, ProfileStore::shared());
    const RenderChoices& render = choices.render;
    const Report report =
        Sensitometry::measure(render.film, arguments.paper ? &render.paper : nullptr, render.options);

    const std::string film = titleOf(render.film, choices.film);
    const std::string paper = arguments.paper ? titleOf(render.paper, choices.paper) : "";
    for (const std::string& note : choices.notes) tellNote(note);
    if (arguments.plot) UserFiles::write(*arguments.plot, dataSheet(film, paper, report));
    const std::string title =
        paper.empty() ? film : T("cli.measure.title", {{"film", film}, {"paper", paper}});
    if (arguments.json)
        results << asJson(choices.film, choices.paper, report).dump(2) << std::endl;
    else
        results << asText(title, report);
    return 0;
}

} // namespace tamlo::cli
