#include "core/process/rebate/film_edge.h"

#include "core/image/bands.h"
#include "platform/text_line.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

using NegativeFrame::Layout;

// ISO 1007: perforations of 135 film.
constexpr double kPitchMm = 4.75;
constexpr double kHoleAcrossMm = 2.8;
constexpr double kHoleAlongMm = 1.98;
constexpr double kHoleCornerMm = 0.5;
constexpr double kHoleFromEdgeMm = 2.0;

constexpr double kLetterMm = 1.45;  // em; capitals stand a millimetre high between the holes and the edge
constexpr double kBaselineMm = 1.5; // from the film's edge
constexpr double kEndMm = 2.0;      // free at both ends of a line
constexpr Vec3f kPrintLight{0.9f, 0.8f, 0.6f}; // two stops over a grey card, by the warm lamp of the printer

/// The strip as if it lay: u along the film, v across it from the upper edge, both in pixels.
struct Strip {
    Size canvas;
    bool alongX;
    double upperEdge, lowerEdge; ///< of the film, v
    double start, end;           ///< of the picture, u

    Strip(const FilmEdge::Plan& plan, const Layout& layout, Size size) : canvas(size), alongX(plan.alongX)
    {
        const std::int64_t before = layout.margins[alongX ? NegativeFrame::top : NegativeFrame::left];
        const std::int64_t behind = layout.margins[alongX ? NegativeFrame::bottom : NegativeFrame::right];
        const std::int64_t first = layout.margins[alongX ? NegativeFrame::left : NegativeFrame::bottom];
        const std::int64_t last = layout.margins[alongX ? NegativeFrame::right : NegativeFrame::top];
        const double film = plan.filmMm * plan.ppm;
        upperEdge = static_cast<double>(before) - film;
        lowerEdge = static_cast<double>(across() - behind) + film;
        start = static_cast<double>(first);
        end = static_cast<double>(along() - last);
    }
    std::int64_t along() const { return alongX ? canvas.width : canvas.height; }
    std::int64_t across() const { return alongX ? canvas.height : canvas.width; }
    /// The pixel at (u, v); a standing film is a lying one turned to the left.
    std::int64_t index(std::int64_t u, std::int64_t v) const
    {
        return alongX ? v * canvas.width + u : (canvas.height - 1 - u) * canvas.width + v;
    }
};

/// As much of a text as a line of that many ems holds, cut at a character.
std::string fitting(std::string text, double ems)
{
    const auto isTail = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    while (!text.empty() && platform::TextLine(text).widthEm() > ems) {
        // A first guess by the width, then a character at a time.
        const double width = platform::TextLine(text).widthEm();
        auto keep =
            static_cast<std::size_t>(static_cast<double>(text.size()) * std::min(ems / width * 1.2, 1.0));
        keep = std::min(keep, text.size() - 1);
        while (keep > 0 && isTail(text[keep])) --keep;
        text.resize(keep);
    }
    return text;
}

/// Adds the light of a line of type. Units: pixels; `baseline` is v, `left` u.
void exposeLine(RGBImage& image, const Strip& strip, const std::string& text, double em, double left,
                double baseline)
{
    constexpr double kSmallestPx = 2.0; // letters that no one could read are not drawn
    if (text.empty() || em < kSmallestPx) return;
    const platform::TextLine line(text);
    const auto u0 = static_cast<std::int64_t>(std::floor(left)) - 2;
    const auto v0 = static_cast<std::int64_t>(std::floor(baseline - em * 1.1));
    const std::int64_t w = static_cast<std::int64_t>(std::ceil(line.widthEm() * em)) + 5;
    const std::int64_t h = static_cast<std::int64_t>(std::ceil(em * 1.5));
    const auto cover =
        line.draw(static_cast<std::size_t>(w), static_cast<std::size_t>(h),
                  {em, left - static_cast<double>(u0), static_cast<double>(v0 + h) - baseline});
    float* pixels = image.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const std::int64_t u = u0 + x, v = v0 + y;
            if (u < 0 || u >= strip.along() || v < 0 || v >= strip.across()) continue;
            const float share = static_cast<float>(cover[static_cast<std::size_t>(y * w + x)]) / 255.0f;
            float* p = pixels + strip.index(u, v) * 3;
            for (std::size_t c = 0; c < 3; ++c) p[c] += share * kPrintLight[c];
        }
}

/// Coverage of a hole at a distance from its centre, pixels.
double holeCover(double du, double dv, double ppm)
{
    const double r = kHoleCornerMm * ppm;
    const double x = std::abs(du) - kHoleAlongMm * ppm / 2.0 + r;
    const double y = std::abs(dv) - kHoleAcrossMm * ppm / 2.0 + r;
    const double ax = std::max(x, 0.0), ay = std::max(y, 0.0);
    const double outside = std::min(std::max(x, y), 0.0) + std::sqrt(ax * ax + ay * ay) - r;
    return std::clamp(0.5 - outside, 0.0, 1.0);
}

} // namespace

RGBImage FilmEdge::expose(RGBImage padded, const Plan& plan, const Layout& layout)
{
    const Strip strip(plan, layout, padded.size());
    const double em = kLetterMm * plan.ppm, end = kEndMm * plan.ppm;
    const double length = strip.end - strip.start;
    const std::string word = fitting(plan.word, std::max(length - 2.0 * end, 0.0) / em);
    exposeLine(padded, strip, word, em, strip.start + end, strip.upperEdge + kBaselineMm * plan.ppm);
    if (plan.number > 0) {
        const std::string number = fitting(std::to_string(plan.number), length / em);
        const double width = number.empty() ? 0.0 : platform::TextLine(number).widthEm() * em;
        exposeLine(padded, strip, number, em, (strip.start + strip.end - width) / 2.0,
                   strip.lowerEdge - (kBaselineMm - kLetterMm * 0.7) * plan.ppm);
    }
    return padded;
}

RGBImage FilmEdge::punch(RGBImage image, const Plan& plan, const Layout& layout, const Vec3f& colour)
{
    if (!plan.perforated) return image;
    const Strip strip(plan, layout, image.size());
    const double ppm = plan.ppm;
    float* pixels = image.mutableData();
    const auto hole = [&](double u, double v) {
        const double reachU = kHoleAlongMm * ppm / 2.0 + 1.0, reachV = kHoleAcrossMm * ppm / 2.0 + 1.0;
        const auto first = [](double at) { return std::max<std::int64_t>(static_cast<std::int64_t>(at), 0); };
        const auto last = [](double at, std::int64_t n) {
            return std::min<std::int64_t>(static_cast<std::int64_t>(at) + 1, n);
        };
        for (std::int64_t y = first(v - reachV); y < last(v + reachV, strip.across()); ++y)
            for (std::int64_t x = first(u - reachU); x < last(u + reachU, strip.along()); ++x) {
                const auto cover = static_cast<float>(
                    holeCover(static_cast<double>(x) + 0.5 - u, static_cast<double>(y) + 0.5 - v, ppm));
                float* p = pixels + strip.index(x, y) * 3;
                for (std::size_t c = 0; c < 3; ++c) p[c] += cover * (colour[c] - p[c]);
            }
    };
    // Eight holes a frame of 38 mm; the picture's middle lies between two.
    const double middle = (strip.start + strip.end) / 2.0, pitch = kPitchMm * ppm;
    const double fromEdge = (kHoleFromEdgeMm + kHoleAcrossMm / 2.0) * ppm;
    const double holes = std::ceil(static_cast<double>(strip.along()) / pitch) + 1.0;
    for (double k = -holes; k <= holes; k += 1.0) {
        const double u = middle + (k + 0.5) * pitch;
        if (u < -pitch || u > static_cast<double>(strip.along()) + pitch) continue;
        hole(u, strip.upperEdge + fromEdge);
        hole(u, strip.lowerEdge - fromEdge);
    }
    return image;
}

} // namespace tamlo
