#include "tools/material_rows.h"

#include "core/film/emulsion/hd_curve.h"
#include "core/film/print/slide.h"
#include "core/profiles/catalogue/profile_ground.h"
#include "core/profiles/formats/json_codec.h"
#include "core/sensitometry/paper_sensitometry.h"
#include "core/sensitometry/sensitometry.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tamlo::Materials {
namespace {

using Values = std::vector<double>;

constexpr double kCurveFault = 0.03; // density, RMS
constexpr double kGrainFault = 0.10; // share of the published figure
constexpr const char* kNone = "–";

std::string number(double value, int decimals)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text[0] == '-' && std::atof(text) == 0.0 ? text + 1 : text;
}

std::string number(const std::optional<double>& value, int decimals)
{
    return value ? number(*value, decimals) : kNone;
}

std::string rowOf(const std::vector<std::string>& cells)
{
    std::string out = "|";
    for (const std::string& cell : cells) out += " " + cell + " |";
    return out + "\n";
}

std::string headOf(const std::vector<std::string>& cells)
{
    return rowOf(cells) + rowOf(std::vector<std::string>(cells.size(), "---"));
}

/// A small plot of curves over a span of x, density 0 to 4; a grey card's place is marked.
std::string plotOf(const Values& x, const std::vector<Values>& curves)
{
    constexpr double kWidth = 160, kHeight = 100, kMostDensity = 4.0;
    constexpr const char* kColours[] = {"#c0392b", "#1e8449", "#1f5fa8"};
    const double from = x.front(), span = x.back() - x.front();
    const auto across = [&](double v) { return std::lround((v - from) / span * kWidth); };
    const auto up = [&](double d) { return std::lround(kHeight - d / kMostDensity * kHeight); };
    std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"160\" height=\"100\">\n"
                      "<path d=\"M0 0H160V100H0Z\" fill=\"#fff\" stroke=\"#999\"/>\n"
                      "<path d=\"M" +
                      std::to_string(across(0.0)) + " 0V100M0 75H160M0 50H160M0 25H160\" stroke=\"#ddd\"/>\n";
    for (std::size_t c = 0; c < curves.size(); ++c) {
        std::string path;
        for (std::size_t i = 0; i < x.size(); i += 4)
            path += (path.empty() ? "M" : "L") + std::to_string(across(x[i])) + " " +
                    std::to_string(std::clamp(up(curves[c][i]), 0L, 100L));
        svg += "<path d=\"" + path + "\" fill=\"none\" stroke=\"" +
               (curves.size() == 1 ? "#222" : kColours[c]) + "\"/>\n";
    }
    return svg + "</svg>\n";
}

std::optional<double> at(const Values& x, const Values& y, double where)
{
    for (std::size_t i = 1; i < x.size(); ++i)
        if (x[i - 1] <= where && where <= x[i])
            return y[i - 1] + (y[i] - y[i - 1]) * (where - x[i - 1]) / (x[i] - x[i - 1]);
    return std::nullopt;
}

std::optional<double> crossing(const Values& x, const Values& y, double value)
{
    for (std::size_t i = 1; i < y.size(); ++i) {
        const double a = y[i - 1] - value, b = y[i] - value;
        if (a != b && a * b <= 0.0) return x[i - 1] + (x[i] - x[i - 1]) * a / (a - b);
    }
    return std::nullopt;
}

double slopeAtGrey(const Values& x, const Values& y)
{
    constexpr double kHalf = 0.15;
    return (*at(x, y, kHalf) - *at(x, y, -kHalf)) / (2.0 * kHalf);
}

std::optional<double> meanGradient(const Values& x, const Values& y, const Sensitometry::Layer& layer)
{
    constexpr double kOver = 1.30, kSlideFrom = 0.2, kSlideTo = 2.0;
    if (layer.gamma < 0.0) {
        const auto a = crossing(x, y, layer.dmin + kSlideTo), b = crossing(x, y, layer.dmin + kSlideFrom);
        return a && b ? std::optional((kSlideFrom - kSlideTo) / (*b - *a)) : std::nullopt;
    }
    if (!layer.speedPoint) return std::nullopt;
    const auto a = at(x, y, *layer.speedPoint), b = at(x, y, *layer.speedPoint + kOver);
    return a && b ? std::optional((*b - *a) / kOver) : std::nullopt;
}

std::string ends(const std::vector<Sensitometry::Layer>& layers, double Sensitometry::Layer::*end)
{
    std::string out;
    for (const Sensitometry::Layer& layer : layers) out += (out.empty() ? "" : " ") + number(layer.*end, 2);
    return out;
}

/// L* of a reflection density.
double lightnessOf(double density)
{
    const double y = std::pow(10.0, -density);
    return y > 216.0 / 24389.0 ? 116.0 * std::cbrt(y) - 16.0 : 24389.0 / 27.0 * y;
}

/// The curves that a profile asks for by itself; none where its densities are made another way.
std::vector<HDCurve> curvesOf(const FilmProfile& film)
{
    const auto curve = [](const NegativeLayer& n, double toe, double mid) {
        return HDCurve(n.dmin, n.dmax, n.gamma, n.toe.value_or(toe), n.midDensity.value_or(mid));
    };
    if (film.type == "color" && film.layers) {
        const ColorLayers& l = *film.layers;
        return {curve(l.r, 1.5, 0.85), curve(l.g, 1.5, 0.85), curve(l.b, 1.5, 0.85)};
    }
    if (film.isBW() && film.negative) return {curve(*film.negative, 1.6, 0.95)};
    return {};
}

/// How far measured curves are off a profile's, RMS over both layers and exposures.
std::optional<double> offProfile(const FilmProfile& film, const Sensitometry::Curves& measured)
{
    const std::vector<HDCurve> asked = curvesOf(film);
    if (asked.size() != measured.density.size()) return std::nullopt;
    double sum = 0.0;
    for (std::size_t c = 0; c < asked.size(); ++c)
        for (std::size_t i = 0; i < measured.logExposure.size(); ++i) {
            const double d = asked[c].density(static_cast<float>(measured.logExposure[i]));
            sum += (measured.density[c][i] - d) * (measured.density[c][i] - d);
        }
    return std::sqrt(sum / static_cast<double>(asked.size() * measured.logExposure.size()));
}

std::string shortGround(const std::string& note)
{
    const auto ground = groundOf(note);
    return ground ? std::string(rawText(*ground)) : "not told";
}

/// The ground of a profile, and of each block that stands on another.
std::string groundsOf(const Json& profile)
{
    const std::string whole = shortGround(profile.value("source_note", ""));
    std::string out = whole;
    for (const auto& [name, block] : profile.items()) {
        if (!block.is_object()) continue;
        std::string own;
        for (const auto& [key, value] : block.items())
            if (key.ends_with("_note") && value.is_string() && own.empty())
                own = shortGround(value.get<std::string>());
        if (!own.empty() && own != whole) out += "; " + name + ": " + own;
    }
    return out;
}

Json jsonOf(const ProfileStore& store, ProfileKind kind, const std::string& id)
{
    return Json::parse(store.data(kind, id));
}

std::optional<double> publishedRms(const Json& profile)
{
    const auto grain = profile.find("grain");
    if (grain == profile.end() || !grain->contains("rms_granularity")) return std::nullopt;
    return grain->at("rms_granularity").get<double>();
}

template <typename Profile>
std::string titleOf(const Profile& profile, const std::string& id)
{
    return Loc::pick(profile.name.value_or(id), profile.nameEn);
}

std::string nameCell(const std::string& title, const std::string& id)
{
    return "![](plots/" + id + ".svg) | " + title + " `" + id + "`";
}

constexpr std::size_t kMiddle = 10; // step of the wedge that is a grey card

std::string greyCard(const std::optional<Sensitometry::PrintTone>& print)
{
    return print ? number(lightnessOf(print->density[kMiddle]), 0) : kNone;
}

/// What a set of three plates is measured by: nothing; its curves are those of its plates.
Row unmeasured(const std::string& id, const std::string& title, const std::string& ground, std::size_t cells)
{
    std::vector<std::string> row{nameCell(title, id)};
    row.resize(cells - 1, kNone);
    row.push_back(ground);
    return {id, rowOf(row), plotOf({-1.0, 1.0}, {}), {}};
}

/// The film that a paper is printed from here.
std::string filmFor(const PaperProfile& paper)
{
    if (paper.isPlate()) return "collodion_wet";
    const bool takesSlides =
        paper.filmTypes && !paper.filmTypes->empty() && paper.filmTypes->front() == "slide";
    if (paper.isReversal() || takesSlides) return "provia100f";
    if (paper.layers) return "portra400"; // one print over the other, a colour each
    if (paper.isBW() || paper.isAlt()) return "trix400";
    return "portra400";
}

} // namespace

std::string filmHead()
{
    return headOf({"", "film", "speed", "γ grey", "γ most", "Ḡ", "Dmin", "Dmax", "RMS", "`grain_rms`",
                   "published", "MTF50", "halo", "edge", "paper", "grey card", "ground"});
}

std::string paperHead()
{
    return headOf({"", "paper", "film", "Dmin", "Dmax", "ISO R", "grey card", "ground"});
}

Row filmRow(const ProfileStore& store, const std::string& id)
{
    const FilmProfile film = store.film(id);
    const Json json = jsonOf(store, ProfileKind::films, id);
    const std::string title = titleOf(film, id), ground = groundsOf(json);
    if (film.isTricolor()) return unmeasured(id, title, ground, 16);
    const std::string paperID = ProfileStore::defaultPaperName(film);
    const PaperProfile paper = store.paper(paperID);
    RenderOptions options;
    const Sensitometry::Report report = Sensitometry::measure(film, &paper, options);
    const Sensitometry::Curves curves = Sensitometry::curves(film, options);
    const std::size_t eye = report.layers.size() == 3 ? 1 : 0;
    const Sensitometry::Layer& layer = report.layers[eye];
    const Values &x = curves.logExposure, &y = curves.density[eye];

    std::optional<double> drawn, rms;
    if (report.granularity) drawn = report.granularity->rms[1];
    options.grainRms = true;
    if (film.grain && film.grain->amountRms)
        if (const auto measured = Sensitometry::granularity(film, options)) rms = measured->rms[1];
    const std::optional<double> published = publishedRms(json), off = offProfile(film, curves);

    Row row{id, {}, plotOf(x, curves.density), {}};
    row.text = rowOf({nameCell(title, id), number(layer.speedPoint, 2), number(slopeAtGrey(x, y), 2),
                      number(layer.gamma, 2), number(meanGradient(x, y, layer), 2),
                      ends(report.layers, &Sensitometry::Layer::dmin),
                      ends(report.layers, &Sensitometry::Layer::dmax), number(drawn, 1), number(rms, 1),
                      number(published, 1), number(report.mtf50, 0), number(report.halationRadiusUm, 0),
                      number(100.0 * report.adjacencyOvershoot, 0) + " %",
                      report.print ? "`" + paperID + "`" : kNone, greyCard(report.print), ground});
    if (off && *off > kCurveFault)
        row.faults.push_back(title + " `" + id + "`, curve: " + number(*off, 2) + " D RMS off its profile");
    if (rms && published && std::abs(*rms / *published - 1.0) > kGrainFault)
        row.faults.push_back(title + " `" + id + "`, granularity: " + number(*rms, 1) +
                             " with `grain_rms`, published " + number(*published, 1));
    return row;
}

Row paperRow(const ProfileStore& store, const std::string& id)
{
    const PaperProfile paper = store.paper(id);
    const std::string filmID = filmFor(paper), title = titleOf(paper, id),
                      ground = groundsOf(jsonOf(store, ProfileKind::papers, id));
    const RenderOptions options;
    const Sensitometry::Report report = Sensitometry::measure(store.film(filmID), &paper, options);
    if (!report.print) return unmeasured(id, title, ground, 7);
    const Sensitometry::PrintTone& print = *report.print;
    // Four points a curve are one a step here.
    Values x, y;
    for (std::size_t i = 0; i < print.density.size(); ++i) {
        x.insert(x.end(), 4, report.logExposure[i]);
        y.insert(y.end(), 4, print.density[i]);
    }
    return {id,
            rowOf({nameCell(title, id), "`" + filmID + "`", number(print.dmin, 2), number(print.dmax, 2),
                   number(print.isoRange, 0), greyCard(print), ground}),
            plotOf(x, {y}),
            {}};
}

} // namespace tamlo::Materials
