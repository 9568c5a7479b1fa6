#include "core/process/card/card_relief.h"

#include "core/image/bands.h"
#include "core/image/each_pixel.h"
#include "core/process/card/card_light.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using namespace CardRelief;

constexpr double kMostMm = 1e4; // a card of ten metres

Corner cornerOf(const OptText& style, const OptNumber& mm, const OptNumber& roundMm)
{
    Corner corner;
    corner.isChamfer = style == "chamfer";
    corner.mm = std::clamp(mm.value_or(cornerMm), 0.0, kMostMm);
    corner.roundMm = std::clamp(roundMm.value_or(chamferRoundFrac * corner.mm), 0.0, kMostMm);
    return corner;
}

template <typename Value>
Value orElse(const Value& own, const Value& common)
{
    return own ? own : common;
}

/// Distance from a place to a stretch between two others.
double distanceToStretch(double x, double y, const std::array<double, 4>& s)
{
    const double dx = s[2] - s[0], dy = s[3] - s[1];
    const double square = dx * dx + dy * dy;
    const double t = square > 0.0 ? std::clamp(((x - s[0]) * dx + (y - s[1]) * dy) / square, 0.0, 1.0) : 0.0;
    return std::hypot(x - s[0] - t * dx, y - s[1] - t * dy);
}

/// A quadrant with its corner cut straight, the two ends of the cut rounded.
double chamferField(double ax, double ay, double halfW, double halfH, const CornerPx& corner)
{
    const double k = 2.0 - std::numbers::sqrt2;
    const double r = std::clamp(corner.round, 0.0, corner.size / k);
    const double w = halfW - r, h = halfH - r, cut = std::max(corner.size - r * k, 0.0);
    const double distance = std::min({distanceToStretch(ax, ay, {w, 0.0, w, h - cut}),
                                      distanceToStretch(ax, ay, {w, h - cut, w - cut, h}),
                                      distanceToStretch(ax, ay, {w - cut, h, 0.0, h})});
    const bool isInside = ax <= w && ay <= h && ax + ay <= w + h - cut;
    return (isInside ? -distance : distance) - r;
}

CardLattice planLattice(double embossUm, const Lying& lying, double linePx, GrainRNG& rng)
{
    constexpr double kRadians = std::numbers::pi / 180.0;
    const double tilt = embossTiltDeg * (2.0 * rng.random() - 1.0);
    CardLattice lattice;
    // Both families run 30° off the axis in which the card left the camera.
    const std::array<double, 2> degrees = lying.turned ? std::array{150.0, 210.0} : std::array{120.0, 60.0};
    for (std::size_t q = 0; q < 2; ++q) {
        lattice.phaseMm[q] = static_cast<float>(embossPitchMm * rng.random());
        lattice.wx[q] = static_cast<float>(std::cos((degrees[q] + tilt) * kRadians));
        lattice.wy[q] = static_cast<float>(std::sin((degrees[q] + tilt) * kRadians));
    }
    const double heightMm = std::min(embossUm, 1e4) / 1000.0;
    lattice.height = static_cast<float>(heightMm * std::numbers::pi / embossRidgeMm);
    lattice.gain = static_cast<float>(std::min(embossPitchMm * lying.pxMm / embossMinPitchPx, 1.0));
    lattice.bandPx = static_cast<float>(std::max(linePx, minBandPx));
    return lattice;
}

} // namespace

Corners CardRelief::corners(const InstantFrameParams& frame)
{
    if (!frame.corner) {
        if (frame.hasCornerKey) return {};
        const Corner usual;
        return {usual, usual, usual, usual};
    }
    const CornerSpec& common = *frame.corner;
    const auto corner = [&](bool has, const std::optional<CornerLeaf>& leaf) -> std::optional<Corner> {
        if (has && !leaf) return std::nullopt;
        const CornerLeaf own = leaf.value_or(CornerLeaf{});
        return cornerOf(orElse(own.style, common.style), orElse(own.mm, common.mm),
                        orElse(own.roundMm, common.roundMm));
    };
    return {corner(common.hasTL, common.tl), corner(common.hasTR, common.tr), corner(common.hasBL, common.bl),
            corner(common.hasBR, common.br)};
}

Corners CardRelief::displayCorners(const Corners& native, bool turned)
{
    if (!turned) return native;
    const auto& [tl, tr, bl, br] = native;
    return {tr, br, tl, bl}; // a quarter turn counter-clockwise
}

bool CardRelief::isCut(const InstantFrameParams& frame)
{
    if (!(frame.imageLongMm.value_or(0.0) > 0.0)) return false;
    const Corners all = corners(frame);
    return std::any_of(all.begin(), all.end(), [](const auto& c) { return c && c->mm > 0.0; });
}

Line CardRelief::windowLine(const InstantFrameParams& frame)
{
    const WindowLine line = frame.windowLine.value_or(WindowLine{});
    return {std::clamp(line.mm.value_or(ringMm), 0.0, kMostMm),
            std::clamp(line.gain.value_or(ringDark), 0.0, 10.0)};
}

Vec3d CardRelief::baseTint(const InstantFrameParams& frame)
{
    return frame.baseTint.value_or(Vec3d{1.0, 0.99, 0.975});
}

CardParams CardRelief::plan(const InstantFrameParams& frame, const Lying& lying, const Vec3f& base,
                            const Vec3f& outside, GrainRNG& rng)
{
    CardParams p;
    p.outline.canvas = lying.canvas;
    p.picture = lying.picture;
    p.left = lying.left;
    p.top = lying.top;
    p.base = base;
    p.outside = outside;
    p.isFlat = !(frame.imageLongMm.value_or(0.0) > 0.0);
    if (p.isFlat) return p;
    p.pxMm = lying.pxMm;
    p.outline = outline(frame, lying.canvas, lying.pxMm, lying.turned);
    const auto band = [](double px, double& strength) {
        if (px >= minBandPx) return px;
        strength *= px / minBandPx;
        return minBandPx;
    };
    const Line line = windowLine(frame);
    p.lineDev = line.gain - 1.0;
    p.linePx = band(line.mm * lying.pxMm, p.lineDev);
    p.skirtDepth = skirtDepth;
    p.skirtPx = band(skirtMm * lying.pxMm, p.skirtDepth);
    if (frame.embossUm.value_or(0.0) > 0.0)
        p.lattice = planLattice(*frame.embossUm, lying, line.mm * lying.pxMm, rng);
    return p;
}

Outline CardRelief::outline(const InstantFrameParams& frame, Size canvas, double pxMm, bool turned)
{
    Outline out;
    out.canvas = canvas;
    const Corners all = displayCorners(corners(frame), turned);
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i]) out.corners[i] = {all[i]->isChamfer, all[i]->mm * pxMm, all[i]->roundMm * pxMm};
    return out;
}

double CardRelief::sdf(const Outline& outline, double x, double y)
{
    const double halfW = 0.5 * static_cast<double>(outline.canvas.width);
    const double halfH = 0.5 * static_cast<double>(outline.canvas.height);
    const CornerPx& corner = outline.corners[(y < halfH ? 0u : 2u) + (x < halfW ? 0u : 1u)];
    const double ax = std::abs(x - halfW), ay = std::abs(y - halfH);
    const double qx = ax - halfW, qy = ay - halfH;
    if (!(corner.size > 0.0)) return std::max(qx, qy);
    if (corner.isChamfer) return chamferField(ax, ay, halfW, halfH, corner);
    const double px = qx + corner.size, py = qy + corner.size;
    return std::min(std::max(px, py), 0.0) + std::hypot(std::max(px, 0.0), std::max(py, 0.0)) - corner.size;
}

Plane CardRelief::mask(const Outline& outline)
{
    Plane out(outline.canvas.width, outline.canvas.height);
    float* to = out.mutableData();
    parallelBands(out.height, out.width * 4, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = 0; x < out.width; ++x) {
                const double d = sdf(outline, static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5);
                to[y * out.width + x] = static_cast<float>(std::clamp(0.5 - d, 0.0, 1.0));
            }
    });
    return out;
}

RGBImage CardRelief::flatten(RGBImage image, const Plane& mask)
{
    float* to = image.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        const float* cover = mask.row(0);
        for (std::int64_t i = start * image.width; i < end * image.width; ++i)
            for (int c = 0; c < 3; ++c) to[i * 3 + c] += 1.0f - cover[i];
    });
    return image;
}

RGBImage CardRelief::unmixed(RGBImage image, const Plane& mask)
{
    float* to = image.mutableData();
    parallelBands(image.height, image.width * 3, [&](std::int64_t start, std::int64_t end) {
        const float* cover = mask.row(0);
        for (std::int64_t i = start * image.width; i < end * image.width; ++i) {
            if (cover[i] <= 0.0f || cover[i] >= 1.0f) continue;
            for (int c = 0; c < 3; ++c) to[i * 3 + c] /= cover[i];
        }
    });
    return image;
}

} // namespace tamlo
