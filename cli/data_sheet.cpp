#include "cli/data_sheet.h"

#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

namespace tamlo::cli {
namespace {

using Sensitometry::Report;

constexpr int kPageWidth = 840, kPageHeight = 1188;

template <typename... Values>
std::string format(const char* pattern, Values... values)
{
    char text[512];
    std::snprintf(text, sizeof text, pattern, values...);
    return text;
}

std::string escaped(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else
            out += c;
    }
    return out;
}

std::string label(double x, double y, const char* anchor, const std::string& text, int size = 13)
{
    return format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\" font-size=\"%d\">", x, y, anchor, size) +
           escaped(text) + "</text>\n";
}

struct Axis {
    double from = 0.0, to = 1.0;
    bool isLog = false;
    std::vector<double> ticks;
    std::string title;

    double place(double v) const
    {
        if (isLog) return (std::log(v) - std::log(from)) / (std::log(to) - std::log(from));
        return (v - from) / (to - from);
    }
};

/// A diagram: its frame on the page and its two axes.
struct Panel {
    double left, top, width, height;
    Axis x, y;

    double px(double v) const { return left + width * x.place(v); }
    double py(double v) const { return top + height * (1.0 - y.place(v)); }

    std::string frame(const std::string& title) const
    {
        std::string svg = label(left, top - 12, "start", title, 15);
        for (const double t : x.ticks) {
            svg += format("<path class=\"grid\" d=\"M%.1f %.1fV%.1f\"/>\n", px(t), top, top + height);
            svg += label(px(t), top + height + 17, "middle", format("%g", t), 12);
        }
        for (const double t : y.ticks) {
            svg += format("<path class=\"grid\" d=\"M%.1f %.1fH%.1f\"/>\n", left, py(t), left + width);
            svg += label(left - 7, py(t) + 4, "end", format("%g", t), 12);
        }
        svg += format("<rect class=\"frame\" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"/>\n", left,
                      top, width, height);
        svg += label(left + width / 2, top + height + 36, "middle", x.title);
        svg += format("<g transform=\"translate(%.1f %.1f) rotate(-90)\">", left - 38, top + height / 2) +
               label(0, 0, "middle", y.title) + "</g>\n";
        return svg;
    }

    std::string curve(const std::vector<double>& xs, const std::vector<double>& ys,
                      const std::string& colour) const
    {
        std::string d;
        for (std::size_t i = 0; i < xs.size() && ys[i] >= y.from; ++i)
            d += format("%c%.1f %.1f", d.empty() ? 'M' : 'L', px(xs[i]), py(std::min(ys[i], y.to)));
        return "<path class=\"curve\" stroke=\"" + colour + "\" d=\"" + d + "\"/>\n";
    }
};

std::vector<double> ticks(double from, double to, double step)
{
    std::vector<double> out;
    for (int i = 0; from + i * step <= to + 1e-9; ++i) out.push_back(from + i * step);
    return out;
}

std::string colourOf(const std::string& layer)
{
    if (layer == "red") return "#c0392b";
    if (layer == "green") return "#1e8449";
    if (layer == "blue") return "#1f5fa8";
    return "#222222";
}

Axis exposureAxis()
{
    return {-1.5, 1.5, false, ticks(-1.5, 1.5, 0.5), T("cli.sheet.exposure")};
}

std::string characteristicCurves(const Report& report, const Panel& place)
{
    double top = 0.0;
    for (const Sensitometry::Layer& layer : report.layers)
        top = std::max(top, *std::max_element(layer.density.begin(), layer.density.end()));
    Panel panel = place;
    panel.x = exposureAxis();
    panel.y = {0.0, std::ceil(2.0 * top + 0.2) / 2.0, false, {}, T("cli.sheet.density")};
    panel.y.ticks = ticks(0.0, panel.y.to, 0.5);
    std::string svg = panel.frame(T("cli.sheet.curves"));
    for (const Sensitometry::Layer& layer : report.layers) {
        svg += panel.curve(report.logExposure, layer.density, colourOf(layer.name));
        const bool falls = layer.gamma < 0.0;
        const double d = falls ? layer.density.front() : layer.density.back();
        svg += label(panel.px(falls ? -1.5 : 1.5) + (falls ? 6 : -6), panel.py(d) - 6,
                     falls ? "start" : "end", layerTitle(layer), 12);
    }
    return svg;
}

std::string modulationTransfer(const Report& report, const Panel& place)
{
    Panel panel = place;
    panel.x = {2.5, 200.0, true, {2.5, 5, 10, 20, 50, 100, 200}, T("cli.sheet.frequency")};
    panel.y = {2.0, 200.0, true, {2, 5, 10, 20, 50, 100, 200}, T("cli.sheet.response")};
    std::vector<double> f, r;
    for (const Sensitometry::MTFPoint& p : report.mtf) {
        f.push_back(p.cyclesPerMm);
        r.push_back(100.0 * p.response);
    }
    return panel.frame(T("cli.sheet.mtf")) + panel.curve(f, r, "#222222");
}

std::string printTones(const Report& report, const Panel& place)
{
    Panel panel = place;
    panel.x = exposureAxis();
    panel.y = {0.0,
               std::max(2.5, std::ceil(2.0 * report.print->dmax) / 2.0),
               false,
               {},
               T("cli.sheet.printDensity")};
    panel.y.ticks = ticks(0.0, panel.y.to, 0.5);
    return panel.frame(T("cli.sheet.printTones")) +
           panel.curve(report.logExposure, report.print->density, "#222222");
}

std::string figures(const Report& report, double left, double top)
{
    std::string svg = label(left, top - 12, "start", T("cli.sheet.figures"), 15);
    double y = top + 14;
    svg += label(left, y, "start", T("cli.layer")) + label(left + 130, y, "end", "Dmin") +
           label(left + 190, y, "end", "Dmax") + label(left + 250, y, "end", T("cli.measure.gamma")) +
           label(left + 330, y, "end", T("cli.sheet.speed"));
    for (const Sensitometry::Layer& layer : report.layers) {
        y += 20;
        svg += label(left, y, "start", layerTitle(layer)) +
               label(left + 130, y, "end", format("%.2f", layer.dmin)) +
               label(left + 190, y, "end", format("%.2f", layer.dmax)) +
               label(left + 250, y, "end", format("%.2f", layer.gamma)) +
               label(left + 330, y, "end", layer.speedPoint ? format("%+.2f", *layer.speedPoint) : "–");
    }
    y += 12;
    for (const auto& [name, value] : dataSheetFigures(report)) {
        y += 20;
        svg += label(left, y, "start", name) + label(left + 330, y, "end", value);
    }
    return svg + label(left, y + 28, "start", T("cli.sheet.speedNote"), 11);
}

} // namespace

std::string layerTitle(const Sensitometry::Layer& layer)
{
    return T("cli.layer." + layer.name);
}

namespace {

/// Deviation of density of a grey card, of the whole surface and of each of its parts.
void addSurface(std::vector<std::pair<std::string, std::string>>& rows,
                const Sensitometry::InstantSurface& surface)
{
    constexpr double kThousandths = 1000.0;
    rows.emplace_back(T("cli.measure.surface", {{"density", format("%.2f", surface.density)}}),
                      format("%.1f", kThousandths * surface.whole));
    for (const Sensitometry::SurfacePart& part : surface.parts)
        rows.emplace_back(T("cli.measure.surface." + part.name),
                          format("%.1f", kThousandths * part.deviation));
}

/// Screen, tones of a quarter, a half and three quarters, and solid of each ink; the total ink.
void addPress(std::vector<std::pair<std::string, std::string>>& rows, const Sensitometry::PressReport& press)
{
    for (const Sensitometry::PrintedInk& ink : press.inks) {
        const std::string screen =
            ink.ruling ? T("cli.measure.screen", {{"lpi", format("%.1f", ink.ruling->lpi)},
                                                  {"angle", format("%.1f", std::abs(ink.ruling->angleDeg))}})
                       : T("cli.measure.noScreen");
        rows.emplace_back(T("cli.measure.ink." + ink.name),
                          screen + format("; %.0f  %.0f  %.0f %%; %.2f", 100.0 * ink.tone[0],
                                          100.0 * ink.tone[1], 100.0 * ink.tone[2], ink.solidDensity));
    }
    if (press.totalInk)
        rows.emplace_back(T("cli.measure.totalInk"), format("%.0f %%", 100.0 * *press.totalInk));
}

/// The coat, its faults and the ring of the glass.
void addPlate(std::vector<std::pair<std::string, std::string>>& rows, const Sensitometry::PlateReport& plate)
{
    rows.emplace_back(T("cli.measure.plate.even"),
                      format("%.3f; %+.2f  %+.2f", plate.unevenness, plate.thinnest, plate.thickest));
    rows.emplace_back(T("cli.measure.plate.veil"), format("%.3f", plate.veil));
    rows.emplace_back(T("cli.measure.plate.rim"), format("%+.2f", plate.rim));
    rows.emplace_back(T("cli.measure.plate.bare"),
                      format("%.1f %%, %.1f %%", 100.0 * plate.bare, 100.0 * plate.crystals));
    rows.emplace_back(T("cli.measure.plate.ring"),
                      plate.ringMm ? T("cli.measure.mm", {{"n", format("%.1f", *plate.ringMm)}})
                                   : T("cli.measure.plate.noRing"));
}

/// Lines, mask and the light of four greys.
void addTube(std::vector<std::pair<std::string, std::string>>& rows, const Sensitometry::TubeReport& tube)
{
    rows.emplace_back(T("cli.measure.scanLines"),
                      T("cli.measure.mm", {{"n", format("%.3f", tube.linePitchMm)}}) +
                          format("; ±%.0f %%", 100.0 * tube.ripple));
    if (tube.maskCyclesPerMm)
        rows.emplace_back(T("cli.measure.mask"),
                          T("cli.measure.cycles", {{"n", format("%.2f", *tube.maskCyclesPerMm)}}));
    rows.emplace_back(T("cli.measure.screenTone"), format("%.2f  %.2f  %.2f  %.2f", tube.light[0],
                                                          tube.light[1], tube.light[2], tube.light[3]));
}

} // namespace

std::vector<std::pair<std::string, std::string>> dataSheetFigures(const Report& report)
{
    std::vector<std::pair<std::string, std::string>> rows;
    if (report.surface) {
        addSurface(rows, *report.surface);
    } else if (report.granularity) {
        const Sensitometry::Granularity& g = *report.granularity;
        rows.emplace_back(T("cli.measure.granularity"), format("%.1f", g.rms[1]));
        rows.emplace_back(T("cli.measure.selwyn"),
                          format("%.2f  %.2f  %.2f", g.selwyn[0], g.selwyn[1], g.selwyn[2]));
    } else {
        rows.emplace_back(T("cli.measure.granularity"), T("cli.measure.noNetDensity"));
    }
    rows.emplace_back(T("cli.measure.mtf50"),
                      report.mtf50 ? T("cli.measure.cycles", {{"n", format("%.0f", *report.mtf50)}})
                                   : T("cli.measure.aboveCycles", {{"n", 200}}));
    rows.emplace_back(T("cli.measure.adjacency"), format("%.1f %%", 100.0 * report.adjacencyOvershoot));
    rows.emplace_back(T("cli.measure.halation"),
                      report.halationRadiusUm
                          ? T("cli.measure.um", {{"n", format("%.0f", *report.halationRadiusUm)}})
                          : T("cli.measure.noHalation"));
    if (report.print) {
        rows.emplace_back(T("cli.measure.printRange"),
                          format("%.2f  %.2f", report.print->dmin, report.print->dmax));
        if (report.print->isoRange)
            rows.emplace_back(T("cli.measure.isoRange"), format("R%.0f", *report.print->isoRange));
    }
    if (report.press) addPress(rows, *report.press);
    if (report.plate) addPlate(rows, *report.plate);
    if (report.tube) addTube(rows, *report.tube);
    return rows;
}

std::string dataSheet(const std::string& film, const std::string& paper, const Report& report)
{
    std::string svg = format("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %d\" "
                             "font-family=\"Helvetica, Arial, sans-serif\" fill=\"#222\">\n",
                             kPageWidth, kPageHeight);
    svg +=
        "<style>.grid{stroke:#ddd}.frame{fill:none;stroke:#222}.curve{fill:none;stroke-width:2.2}</style>\n";
    svg += format("<rect width=\"%d\" height=\"%d\" fill=\"#fff\"/>\n", kPageWidth, kPageHeight);
    svg += label(70, 64, "start", film, 26);
    svg += label(
        70, 88, "start",
        T("cli.sheet.method", {{"steps", Sensitometry::kWedgeSteps}, {"step", Sensitometry::kStepLogE}}));
    if (!paper.empty()) svg += label(70, 108, "start", T("cli.sheet.printOn", {{"paper", paper}}));
    svg += characteristicCurves(report, {90, 150, 690, 390, {}, {}});
    svg += modulationTransfer(report, {90, 650, 310, 300, {}, {}});
    svg += figures(report, 460, 650);
    if (report.print) svg += printTones(report, {520, 970, 260, 150, {}, {}});
    return svg + "</svg>\n";
}

} // namespace tamlo::cli
