#include "core/process/rebate/frame_plan.h"

#include "core/image/rounding.h"
#include "core/profiles/options/film_format.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using namespace Pipeline;
using NegativeFrame::Layout;

constexpr double k135FilmMm = 5.5;  // (35 mm - 24 mm) / 2
constexpr double k120FilmMm = 2.75; // (61.5 mm - 56 mm) / 2
constexpr double kPrintWhiteMm = 0.75;
constexpr double kGapFilmMm = 0.8; // of the 2 mm between two frames

/// A half frame stands on the film: its long side lies across.
bool isHalf(const FilmProfile& film, const RenderOptions& options)
{
    return Formats::devFieldFormat(film, options) == "half" || options.format == FilmFormat::half;
}

std::string formatOf(const FilmProfile& film, const RenderOptions& options)
{
    const std::string format(rawText(Formats::resolvedFormat(film, options)));
    return Formats::normalizeFormat(format, options.frameSize).format;
}

Layout plainLayout(Size picture, const NegativeFrame::StyleParams& style)
{
    const double longSide = static_cast<double>(std::max(picture.width, picture.height));
    Layout layout;
    layout.style = style;
    const std::int64_t margin = roundAway(style.frac * longSide);
    layout.margins.fill(margin);
    layout.gateRoundPx = style.gateRound * longSide;
    layout.winRoundPx = style.winRound * static_cast<double>(margin);
    return layout;
}

/// A strip of 135 out to its edges, with half of the gap to the next frames.
Layout stripLayout(Size picture, const NegativeFrame::StyleParams& style, bool alongX, double ppm)
{
    Layout layout = plainLayout(picture, style);
    layout.black.emplace();
    layout.cornerR.emplace();
    for (std::size_t side = 0; side < 4; ++side) {
        const bool lying = side == NegativeFrame::top || side == NegativeFrame::bottom;
        const bool edge = lying == alongX;
        (*layout.black)[side] = (edge ? k135FilmMm : kGapFilmMm) * ppm;
        layout.margins[side] = pyRound((*layout.black)[side] + kPrintWhiteMm * ppm);
        layout.filmEdges[side] = edge;
    }
    return layout;
}

/// What a film is called beside its maker: its name without remarks and, where letters remain, without its
/// first word. Makers' names are not drawn.
std::string plainName(const FilmProfile& film)
{
    std::string name = film.nameEn.value_or(film.name.value_or(""));
    name.resize(std::min(name.find_first_of("(,"), name.size()));
    while (!name.empty() && name.back() == ' ') name.pop_back();
    const std::size_t space = name.find(' ');
    if (space == std::string::npos) return name;
    const auto isLetter = [](char c) {
        return std::isalpha(static_cast<unsigned char>(c)) || (c & 0x80) != 0;
    };
    const bool named = std::any_of(name.begin() + static_cast<std::ptrdiff_t>(space), name.end(), isLetter);
    return named ? name.substr(space + 1) : name;
}

FilmEdge::Plan printOf(const FilmProfile& film, const RenderOptions& options, double ppm)
{
    FilmEdge::Plan print;
    print.word = options.framePrintText.empty() ? plainName(film) : options.framePrintText;
    print.number = std::max<std::int64_t>(options.frameNumber, 0);
    print.ppm = ppm;
    return print;
}

} // namespace

RenderOptions Pipeline::frameOptions(const FilmProfile& film, const RenderOptions& options)
{
    RenderOptions out = options;
    if (out.frameStyle == FrameStyle::wide && (film.isCollodion() || Formats::isPlateFormat(film, options)))
        out.frameStyle = FrameStyle::thin;
    return out;
}

bool Pipeline::hasFilmPrint(const FilmProfile& film, const RenderOptions& asked, const FilmWindow& window)
{
    const RenderOptions options = frameOptions(film, asked);
    if (!options.framePrint || options.frameStyle != FrameStyle::wide || !window.whole) return false;
    const std::string format = formatOf(film, options);
    return format == "135" || format == "120";
}

std::optional<FramePlan> Pipeline::framePlan(Size picture, const FilmProfile& film,
                                             const RenderOptions& asked, const FilmWindow& window)
{
    const RenderOptions options = frameOptions(film, asked);
    const NegativeFrame::StyleParams style = NegativeFrame::resolve(options);
    if (style.frac <= 0.0) return std::nullopt;
    const double longSide = static_cast<double>(std::max(picture.width, picture.height));
    const double ppm = longSide / std::max(window.fmtUm / 1000.0, 1e-6);
    const std::string format = formatOf(film, options);
    const auto kind = style.styled ? FormatFrame::kind(format) : std::nullopt;
    const bool wide = options.frameStyle == FrameStyle::wide;
    const bool printed = hasFilmPrint(film, options, window);

    FramePlan plan;
    if (kind && (!wide || window.whole)) {
        FormatFrame::Request request;
        request.kind = *kind;
        request.wide = wide;
        request.style = style;
        request.ppm = ppm;
        request.cm120 = Formats::frameCm120(film, options);
        request.scale = style.frac / NegativeFrame::params(options.frameStyle).frac;
        if (printed) request.bandFilmMm = k120FilmMm;
        FormatFrame::Plan built = FormatFrame::build(picture, request);
        plan.layout = std::move(built.layout);
        plan.gate = std::move(built.gate);
        plan.notches = std::move(built.notches);
        if (printed) {
            plan.print = printOf(film, options, ppm);
            plan.print->alongX = !FormatFrame::bandsLeftRight(picture, request.cm120);
            plan.print->filmMm = k120FilmMm;
        }
    } else if (printed) {
        const bool lying = picture.width >= picture.height;
        plan.print = printOf(film, options, ppm);
        plan.print->alongX = lying != isHalf(film, options);
        plan.print->filmMm = k135FilmMm;
        plan.print->perforated = true;
        plan.layout = stripLayout(picture, style, plan.print->alongX, ppm);
    } else {
        plan.layout = plainLayout(picture, style);
    }
    const auto& margins = plan.layout.margins;
    if (*std::min_element(margins.begin(), margins.end()) < 1) return std::nullopt;
    return plan;
}

std::optional<Rebate> Pipeline::addRebate(RGBImage& image, const FilmProfile& film,
                                          const RenderOptions& options, const FilmWindow& window)
{
    const Size picture = image.size();
    std::optional<FramePlan> plan = framePlan(picture, film, options, window);
    if (!plan) return std::nullopt;
    GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::frame);
    std::optional<NegativeFrame::Profiles> edges = NegativeFrame::profiles(picture, plan->layout, rng);
    if (!edges) return std::nullopt;
    if (plan->gate) image = plan->gate->apply(std::move(image));
    image = NegativeFrame::pad(image, plan->layout);
    if (plan->print) image = FilmEdge::expose(std::move(image), *plan->print, plan->layout);

    Plane mask = NegativeFrame::windowMask(picture, *edges);
    if (plan->notches) mask = plan->notches->cut(std::move(mask));
    return Rebate{std::move(*plan), std::move(*edges), picture, image.size(), std::move(mask)};
}

RGBImage Pipeline::composite(RGBImage image, const Rebate& rebate, const Plane& mask, const Vec3f& base,
                             const Vec3f& hole)
{
    const double ratio =
        static_cast<double>(image.longSide()) /
        static_cast<double>(std::max({rebate.canvas.width, rebate.canvas.height, std::int64_t{1}}));
    if (rebate.plan.print) {
        FilmEdge::Plan print = rebate.plan.print.value();
        NegativeFrame::Layout layout = rebate.plan.layout;
        print.ppm *= ratio;
        for (std::int64_t& m : layout.margins) m = roundAway(static_cast<double>(m) * ratio);
        image = FilmEdge::punch(std::move(image), print, layout, hole);
    }
    const auto reach = static_cast<std::int64_t>(
        std::ceil(static_cast<double>(NegativeFrame::maskReach(rebate.profiles)) * ratio));
    return NegativeFrame::composite(std::move(image), mask, base, reach + 4);
}

} // namespace tamlo
