#include "core/process/finishing/sheet_marks_passes.h"

#include <cmath>

namespace tamlo::Finishing {
namespace {

/// Half-widths beyond which nothing is left of a line: exp(-20), and of a dot's edge, tanh(8).
constexpr float kLineReach = 4.5f, kStampReach = 8.0f;

/// Signed distance of a rounded rectangle, from the distances to its core.
float roundedBox(float qx, float qy, float r)
{
    if (qx <= 0.0f || qy <= 0.0f) return std::max(qx, qy) - r; // beside a straight side
    return std::sqrt(qx * qx + qy * qy) - r;
}

/// The same with its corner eased over `ease` pixels. In a corner tighter than the groove is wide the
/// distance has a crease, along the diagonal inside it and round the arc's centre, and a crease's curvature
/// grows with the pixels a millimetre: it would show as a bright scratch.
float easedBox(float qx, float qy, float r, float ease)
{
    const auto above = [&](float q) { return 0.5f * (q + std::sqrt(q * q + ease * ease)); };
    const float a = above(qx), b = above(qy);
    const float in = std::min(above(-qx), above(-qy)), over = in / std::max(above(-qx), above(-qy));
    return std::sqrt(a * a + b * b) - in / std::sqrt(std::sqrt(1.0f + over * over * over * over)) - r;
}

/// Half-widths of radius below which a line's corner is eased, and how far.
constexpr float kTightCorner = 3.0f, kEase = 0.5f;

/// How far from the corner along a side the easing reaches.
float easeReach(const SheetPlan::LineStep& g, float lw)
{
    return g.r < kTightCorner * lw ? 12.0f * kEase * lw : 0.0f;
}

float lineBox(float x, float y, const SheetPlan::LineStep& g, float lw)
{
    const float qx = std::abs(x - g.cx) - g.bx, qy = std::abs(y - g.cy) - g.by;
    const float far = easeReach(g, lw);
    if (far > 0.0f && std::min(qx, qy) > -far) return easedBox(qx, qy, g.r, kEase * lw);
    return roundedBox(qx, qy, g.r);
}

/// A groove's depth d half-widths from its middle.
float groove(float d)
{
    return std::abs(d) > kLineReach ? 0.0f : -std::exp(-d * d);
}

float grooveHeight(float x, float y, const SheetPlan::Line& line)
{
    float height = 0.0f;
    for (const SheetPlan::LineStep& g : line.geo) {
        if (line.tb) {
            const float seg = std::max(std::abs(x - g.cx) - g.half, 0.0f);
            for (const float yl : {g.top, g.bot}) {
                height += groove(std::sqrt(seg * seg + (y - yl) * (y - yl)) / line.lw);
            }
        } else {
            height += groove(lineBox(x, y, g, line.lw) / line.lw);
        }
    }
    return height;
}

/// How far from the middle a row's height is all one, since the grooves run straight along it; below 0 for a
/// row where they turn or run across.
float straightReach(float y, const SheetPlan::Line& line)
{
    float reach = line.tb ? line.geo.front().half : line.geo.front().bx;
    for (const SheetPlan::LineStep& g : line.geo) {
        reach = std::min(reach, line.tb ? g.half : g.bx - easeReach(g, line.lw));
        if (!line.tb && std::abs(y - g.cy) <= g.by) return -1.0f;
    }
    return reach;
}

/// tanh that stays finite far from the edge.
float softStep(float x)
{
    const float e = std::exp(-2.0f * std::abs(x));
    const float t = (1.0f - e) / (1.0f + e);
    return x < 0.0f ? -t : t;
}

float stampHeight(float x, float y, const SheetPlan::Stamp& s)
{
    // The relief is bounded softly, or its crease would show more at every enlargement.
    constexpr float kHighest = 1.4f;
    const float frame = roundedBox(std::abs(x - s.cx) - s.hx, std::abs(y - s.cy) - s.hy, s.r) / s.lw;
    const float dx = x - s.gx, dy = y - s.gy0;
    const float dot = (std::sqrt(dx * dx + dy * dy) - s.gr) / s.lw;
    const float v = std::exp(-frame * frame) + 0.5f * (1.0f - softStep(dot)) + 0.9f * std::exp(-dot * dot);
    return kHighest * softStep(v / kHighest);
}

/// What of a rectangle in 32-bit floats lies on the sheet.
SheetRect onSheet(const RGBImage& image, float x0, float y0, float x1, float y1)
{
    const auto cut = [](float v, std::int64_t n) {
        return static_cast<std::int64_t>(std::clamp(v, 0.0f, static_cast<float>(n)));
    };
    return {cut(std::floor(x0), image.width), cut(std::floor(y0), image.height),
            cut(std::ceil(x1) + 1.0f, image.width), cut(std::ceil(y1) + 1.0f, image.height)};
}

/// The strips of a sheet that a line's grooves reach into: above and below over the whole width, between them
/// at both sides. They do not overlap.
std::vector<SheetRect> lineStrips(const RGBImage& image, const SheetPlan::Line& line)
{
    const SheetPlan::LineStep& outer = line.geo.front();
    const SheetPlan::LineStep& inner = line.geo.back();
    float widest = kLineReach * line.lw + std::abs(line.steps.front());
    for (const SheetPlan::LineStep& g : line.geo) widest = std::max(widest, g.r);
    const auto w = static_cast<float>(image.width);
    const SheetRect top = onSheet(image, 0.0f, outer.top - widest, w, inner.top + widest);
    SheetRect bottom = onSheet(image, 0.0f, inner.bot - widest, w, outer.bot + widest);
    bottom.y0 = std::clamp(bottom.y0, top.y1, std::max(bottom.y1, top.y1));
    if (line.tb) return {top, bottom};
    SheetRect left =
        onSheet(image, outer.cx - outer.half - widest, 0.0f, inner.cx - inner.half + widest, 0.0f);
    SheetRect right =
        onSheet(image, inner.cx + inner.half - widest, 0.0f, outer.cx + outer.half + widest, 0.0f);
    right.x0 = std::clamp(right.x0, left.x1, std::max(right.x1, left.x1));
    left.y0 = right.y0 = top.y1;
    left.y1 = right.y1 = bottom.y0;
    return {top, bottom, left, right};
}

float reserved(const Reserve& reserve, std::int64_t x, std::int64_t y)
{
    float share = 0.0f;
    for (const Reserve::Box& box : reserve.boxes)
        share += box.sign * box.x[static_cast<std::size_t>(x)] * box.y[static_cast<std::size_t>(y)];
    return share;
}

} // namespace

void coverage_mask(Plane& mask, std::span<const std::uint8_t> coverage)
{
    float* data = mask.mutableData();
    parallelBands(mask.height, mask.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * mask.width; i < end * mask.width; ++i)
            data[i] = static_cast<float>(coverage[static_cast<std::size_t>(i)]) / 255.0f;
    });
}

void press_line(RGBImage& image, const SheetPlan::Line& line, const Reserve& reserve,
                const ShadeParams& params)
{
    const auto heights = [&](std::int64_t y, std::int64_t x0, std::int64_t x1, float* out) {
        const auto fy = static_cast<float>(y);
        const float middle = line.geo.front().cx, reach = straightReach(fy, line);
        const float straight = grooveHeight(middle, fy, line);
        for (std::int64_t x = x0; x < x1; ++x) {
            const auto fx = static_cast<float>(x);
            const float height = std::abs(fx - middle) <= reach ? straight : grooveHeight(fx, fy, line);
            *out++ = height == 0.0f ? 0.0f : height * (1.0f - reserved(reserve, x, y));
        }
    };
    for (const SheetRect& strip : lineStrips(image, line)) height_shade(image, strip, params, heights);
}

void press_stamp(RGBImage& image, const SheetPlan::Stamp& s, const ShadeParams& params)
{
    const float rx = s.hx + s.r + kStampReach * s.lw, ry = s.hy + s.r + kStampReach * s.lw;
    const SheetRect rect = onSheet(image, s.cx - rx, s.cy - ry, s.cx + rx, s.cy + ry);
    height_shade(image, rect, params, [&](std::int64_t y, std::int64_t x0, std::int64_t x1, float* out) {
        for (std::int64_t x = x0; x < x1; ++x)
            *out++ = stampHeight(static_cast<float>(x), static_cast<float>(y), s);
    });
}

void press_text(RGBImage& image, const SheetPlan::Text& text, const ShadeParams& params, float tint)
{
    const Plane& mask = text.tile.mask;
    const SheetRect rect{std::max<std::int64_t>(text.x0, 0), std::max<std::int64_t>(text.y0, 0),
                         std::min(text.x0 + mask.width, image.width),
                         std::min(text.y0 + mask.height, image.height)};
    const auto at = [&](std::int64_t x, std::int64_t y) {
        const std::int64_t i = x - text.x0, j = y - text.y0;
        return i >= 0 && i < mask.width && j >= 0 && j < mask.height ? mask.at(i, j) : 0.0f;
    };
    height_shade(image, rect, params, [&](std::int64_t y, std::int64_t x0, std::int64_t x1, float* out) {
        for (std::int64_t x = x0; x < x1; ++x) *out++ = -at(x, y);
    });
    if (rect.isEmpty()) return;
    float* data = image.mutableData();
    parallelBands(rect.y1 - rect.y0, rect.x1 - rect.x0, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = rect.y0 + start; y < rect.y0 + end; ++y)
            for (std::int64_t x = rect.x0; x < rect.x1; ++x) {
                const float k = 1.0f - tint * at(x, y);
                for (int c = 0; c < 3; ++c) data[(y * image.width + x) * 3 + c] *= k;
            }
    });
}

} // namespace tamlo::Finishing
