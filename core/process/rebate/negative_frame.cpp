#include "core/process/rebate/negative_frame.h"

#include "core/image/bands.h"
#include "core/image/ring_bands.h"
#include "core/process/altprint/alt_passes.h"
#include "core/process/noise/line_noise.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using namespace NegativeFrame;
using Line = std::vector<float>;

constexpr double kWidest = 0.2;     // share of the long side: a rebate, not a frame round a frame
constexpr double kRoughest = 4.0;   // far beyond an edge that keeps its margin
constexpr double kFilmShare = 0.55; // of a margin, up to the film's edge

/// Adds exp(-((i - c) / s)²) × d.
void addBump(Line& line, double centre, double sigma, double depth)
{
    for (std::size_t i = 0; i < line.size(); ++i) {
        const double e = (static_cast<double>(i) - centre) / sigma;
        line[i] += static_cast<float>(depth * std::exp(-e * e));
    }
}

/// Distance of an edge from its side of the canvas.
Line edgeProfile(std::int64_t n, double m, const StyleParams& p, GrainRNG& rng, std::optional<double> black)
{
    constexpr double kSlow = 5.0, kFileDraws = 1.5;
    const double length = static_cast<double>(n), draws = static_cast<double>(kLineDraws);
    const double s = p.rough * p.sideVar * (2.0 * rng.random() - 1.0);
    const double base = black ? s * m + (m - *black) : (s + kFilmShare) * m;
    Line line = unitNoise1D(n, draws / kSlow, rng);
    for (float& v : line) v = static_cast<float>(base + p.rough * p.wave * m * static_cast<double>(v));
    if (p.file > 0.0) {
        const Line filed = unitNoise1D(n, kFileDraws, rng);
        for (std::size_t i = 0; i < line.size(); ++i)
            line[i] += static_cast<float>(p.rough * p.file * m * static_cast<double>(filed[i]));
    }
    if (p.bulge > 0.0) {
        const double b = p.rough * p.bulge * m * (0.3 + 0.7 * rng.random());
        const double sigma = 0.08 * std::max(length - 1.0, 1.0);
        addBump(line, 0.0, sigma, b);
        addBump(line, length - 1.0, sigma, b);
    }
    const double u1 = rng.random(), u2 = rng.random();
    const int nicks = (u1 < p.rough * 0.5 * p.notch ? 1 : 0) + (u2 < p.rough * 0.3 * p.notch ? 1 : 0);
    for (int k = 0; k < nicks; ++k) {
        const double centre = length * (0.1 + 0.8 * rng.random());
        addBump(line, centre, std::max(0.25 * m, 3.0), p.rough * 0.14 * m * (0.5 + 0.5 * rng.random()));
    }
    for (float& v : line) v = std::clamp(v, 0.0f, static_cast<float>(0.95 * m));
    return line;
}

Line edgeOf(std::int64_t n, const Layout& layout, std::size_t side, GrainRNG& rng)
{
    const double m = static_cast<double>(layout.margins[side]);
    const auto black = layout.black ? std::optional((*layout.black)[side]) : std::nullopt;
    if (!layout.filmEdges[side]) return edgeProfile(n, m, layout.style, rng, black);
    return Line(static_cast<std::size_t>(n), static_cast<float>(black ? m - *black : kFilmShare * m));
}

Line fromFarEnd(Line line, std::int64_t size)
{
    for (float& v : line) v = static_cast<float>(size - 1) - v;
    return line;
}

double meanMargin(const Layout& layout)
{
    double sum = 0.0;
    for (const std::int64_t m : layout.margins) sum += static_cast<double>(m);
    return sum / 4.0;
}

/// How far a film's edge is clear, seen from a distance within it.
float edgeRamp(float distance, float t, float open, float band)
{
    const float low = 1.0f - (1.0f - open) * t;
    if (low >= 0.999f) return 1.0f;
    const float wide = std::max(band * (0.35f + 0.65f * t), 1.0f);
    return low + (1.0f - low) * std::clamp(distance / wide, 0.0f, 1.0f);
}

/// The mask at a pixel; `solid` pixels within the film it is 1 everywhere.
float maskAt(std::int64_t x, std::int64_t y, Size canvas, const Profiles& p, float solid)
{
    const auto xi = static_cast<std::size_t>(x), yi = static_cast<std::size_t>(y);
    const float px = static_cast<float>(x), py = static_cast<float>(y);
    const float first = p.left[yi], last = p.right[yi], above = p.top[xi], below = p.bottom[xi];
    const FourSides<float> inside{py - above, below - py, px - first, last - px};
    float d = *std::min_element(inside.begin(), inside.end());
    if (!p.layout.style.styled) return std::clamp(d + 0.5f, 0.0f, 1.0f);
    if (d <= -0.5f) return 0.0f;
    if (d >= solid) return 1.0f;

    const auto open = static_cast<float>(p.layout.style.edgeOpen);
    const bool banded = open < 1.0f;
    float a = 1.0f;
    if (banded)
        for (std::size_t side = 0; side < 4; ++side)
            a = std::min(a, edgeRamp(inside[side], p.edgeT[side], open, p.edgeBandPx));

    const std::size_t corner = (2 * x >= canvas.width ? 1u : 0u) + (2 * y >= canvas.height ? 2u : 0u);
    const auto r = static_cast<float>(p.layout.cornerR ? (*p.layout.cornerR)[corner] : p.layout.winRoundPx);
    const float qx = std::max(first + r - px, px - (last - r)),
                qy = std::max(above + r - py, py - (below - r));
    if (r >= 0.5f && qx > 0.0f && qy > 0.0f) {
        const float arc = r - std::sqrt(qx * qx + qy * qy);
        d = std::min(d, arc);
        const float t = 0.25f * (p.edgeT[0] + p.edgeT[1] + p.edgeT[2] + p.edgeT[3]);
        if (banded) a = std::min(a, edgeRamp(arc, t, open, p.edgeBandPx));
    }
    return std::clamp(d + 0.5f, 0.0f, 1.0f) * a;
}

double largestCorner(const Layout& layout)
{
    if (!layout.cornerR) return layout.winRoundPx;
    return *std::max_element(layout.cornerR->begin(), layout.cornerR->end());
}

/// Distance from the film's edge behind which neither the band of a side nor a corner reaches.
float solidPx(const Profiles& p)
{
    const float strongest = *std::max_element(p.edgeT.begin(), p.edgeT.end());
    const float band = std::max(p.edgeBandPx * (0.35f + 0.65f * strongest), 1.0f);
    return std::max(band, static_cast<float>(largestCorner(p.layout))) + 1.0f;
}

} // namespace

StyleParams NegativeFrame::params(FrameStyle style)
{
    StyleParams p;
    p.styled = style != FrameStyle::none;
    if (!p.styled) {
        p.wave = 0.045;
        p.file = 0.018;
        p.bulge = 0.1;
        p.notch = 1.0;
        p.sideVar = 0.1;
        return p;
    }
    const bool wide = style == FrameStyle::wide;
    p.frac = wide ? 0.036 : 0.016;
    p.gateRound = 0.008;
    p.winRound = wide ? 0.62 : 0.5;
    p.wave = wide ? 0.05 : 0.028;
    p.sideVar = 0.045;
    p.edgeOpen = wide ? 0.55 : 0.6;
    p.edgeBand = wide ? 0.15 : 0.16;
    p.edgeVar = wide ? 0.9 : 0.8;
    return p;
}

StyleParams NegativeFrame::resolve(const RenderOptions& options)
{
    constexpr double kOwnRough = 1e-9;
    StyleParams p = params(options.frameStyle);
    if (!p.styled || options.frame > 0.0) p.frac = options.frame;
    if (!p.styled || std::abs(options.frameRough - 1.0) >= kOwnRough) p.rough = options.frameRough;
    p.frac = std::clamp(p.frac, 0.0, kWidest);
    p.rough = std::clamp(p.rough, 0.0, kRoughest);
    return p;
}

std::optional<Profiles> NegativeFrame::profiles(Size picture, const Layout& layout, GrainRNG& rng)
{
    if (*std::min_element(layout.margins.begin(), layout.margins.end()) < 1) return std::nullopt;
    const Size canvas = layout.canvas(picture);
    Profiles out;
    out.layout = layout;
    out.top = edgeOf(canvas.width, layout, Side::top, rng);
    out.bottom = fromFarEnd(edgeOf(canvas.width, layout, Side::bottom, rng), canvas.height);
    out.left = edgeOf(canvas.height, layout, Side::left, rng);
    out.right = fromFarEnd(edgeOf(canvas.height, layout, Side::right, rng), canvas.width);
    if (!layout.style.styled) return out;

    const double spread = std::max(layout.style.rough * layout.style.edgeVar, 0.0);
    for (float& t : out.edgeT) {
        // A third of the sides have hardly any band.
        constexpr double kBare = 0.32;
        const double u = rng.random();
        const double shape =
            u < kBare ? 0.3 * (u / kBare) * (u / kBare) : 0.6 + 0.75 * (u - kBare) / (1.0 - kBare);
        t = static_cast<float>(std::clamp(1.0 + spread * (shape - 1.0), 0.0, 1.6));
    }
    out.edgeBandPx = static_cast<float>(layout.style.edgeBand * meanMargin(layout));
    return out;
}

RGBImage NegativeFrame::pad(const RGBImage& image, const Layout& layout)
{
    const Size canvas = layout.canvas(image.size());
    const std::int64_t mx = layout.margins[left], my = layout.margins[top];
    const double w = static_cast<double>(image.width), h = static_cast<double>(image.height);
    const double r = layout.gateRoundPx;
    const auto corner = static_cast<std::int64_t>(std::ceil(std::min(r, std::max(w, h)))) + 1;
    RGBImage out(canvas.width, canvas.height);
    float* to = out.mutableData();
    const auto rounded = [&](std::int64_t x, std::int64_t y) {
        const double px = static_cast<double>(x) + 0.5, py = static_cast<double>(y) + 0.5;
        const double dx = std::max({r - px, px - (w - r), 0.0}), dy = std::max({r - py, py - (h - r), 0.0});
        return static_cast<float>(std::clamp(r + 0.5 - std::sqrt(dx * dx + dy * dy), 0.0, 1.0));
    };
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t last) {
        for (std::int64_t y = start; y < last; ++y) {
            float* row = to + ((y + my) * canvas.width + mx) * 3;
            std::copy_n(image.row(y), image.width * 3, row);
            if (r < 0.5 || (y >= corner && y < image.height - corner)) continue;
            const auto round = [&](std::int64_t first, std::int64_t end) {
                for (std::int64_t x = first; x < end; ++x)
                    for (std::int64_t c = 0; c < 3; ++c) row[x * 3 + c] *= rounded(x, y);
            };
            round(0, std::min(corner, image.width));
            round(std::max(corner, image.width - corner), image.width);
        }
    });
    return out;
}

std::int64_t NegativeFrame::maskReach(const Profiles& profiles)
{
    constexpr double kWidestBand = 0.35 + 0.65 * 1.6;
    const auto& margins = profiles.layout.margins;
    const double margin = static_cast<double>(*std::max_element(margins.begin(), margins.end()));
    return static_cast<std::int64_t>(std::ceil(margin + largestCorner(profiles.layout) +
                                               kWidestBand * static_cast<double>(profiles.edgeBandPx))) +
           3;
}

Plane NegativeFrame::windowMask(Size picture, const Profiles& profiles)
{
    const Size canvas = profiles.layout.canvas(picture);
    Plane mask(canvas.width, canvas.height, 1.0f);
    float* values = mask.mutableData();
    const float solid = solidPx(profiles);
    inRing(canvas, maskReach(profiles), [&](std::int64_t y, std::int64_t first, std::int64_t end) {
        for (std::int64_t x = first; x < end; ++x)
            values[y * canvas.width + x] = maskAt(x, y, canvas, profiles, solid);
    });
    return mask;
}

RGBImage NegativeFrame::composite(RGBImage image, const Plane& mask, const Vec3f& base, std::int64_t reach)
{
    float* pixels = image.mutableData();
    inRing(image.size(), reach, [&](std::int64_t y, std::int64_t first, std::int64_t end) {
        composite_run(pixels + (y * mask.width + first) * 3, mask.row(y) + first, end - first, base);
    });
    return image;
}

FourSides<double> NegativeFrame::whiteMargins(Size picture, const Profiles& profiles)
{
    constexpr double kRoundTakes = 0.293; // 1 - 1 / √2 of a radius
    const Size canvas = profiles.layout.canvas(picture);
    const auto mean = [](const Line& line) {
        double sum = 0.0;
        for (const float v : line) sum += static_cast<double>(v);
        return sum / static_cast<double>(std::max<std::size_t>(line.size(), 1));
    };
    const auto radius = [&](std::size_t a, std::size_t b) {
        const auto& r = profiles.layout.cornerR;
        return r ? std::max((*r)[a], (*r)[b]) : profiles.layout.winRoundPx;
    };
    const double h = static_cast<double>(canvas.height - 1), w = static_cast<double>(canvas.width - 1);
    FourSides<double> out{mean(profiles.top) - kRoundTakes * radius(0, 1),
                          h - mean(profiles.bottom) - kRoundTakes * radius(2, 3),
                          mean(profiles.left) - kRoundTakes * radius(0, 2),
                          w - mean(profiles.right) - kRoundTakes * radius(1, 3)};
    for (double& side : out) side = std::max(side, 0.0);
    return out;
}

} // namespace tamlo
