// What a camera back covers and what is punched out of a sheet, pixel by pixel along the sides concerned.
#include "core/image/bands.h"
#include "core/process/rebate/format_frame.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

using namespace FormatFrame;
using NegativeFrame::Side;

/// Signed distance of a rounded rectangle's corner region: inside below 0.
double boxDistance(double x, double y)
{
    const double ax = std::max(x, 0.0), ay = std::max(y, 0.0);
    return std::min(std::max(x, y), 0.0) + std::sqrt(ax * ax + ay * ay);
}

/// Multiplies the pixels near one side by light(d, c): distances from the side and along it, of centres.
template <typename Light>
void alongSide(RGBImage& image, Side side, double depth, const Light& light)
{
    const bool lying = side == NegativeFrame::top || side == NegativeFrame::bottom;
    const bool far = side == NegativeFrame::bottom || side == NegativeFrame::right;
    const std::int64_t across = lying ? image.height : image.width;
    const auto rows =
        static_cast<std::int64_t>(std::clamp(std::ceil(depth) + 2.0, 0.0, static_cast<double>(across)));
    float* pixels = image.mutableData();
    const std::int64_t width = image.width;
    parallelBands(image.height, lying ? width : rows, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const std::int64_t row = far ? image.height - 1 - y : y;
            if (lying && row >= rows) continue;
            const std::int64_t count = lying ? width : rows;
            for (std::int64_t i = 0; i < count; ++i) {
                const std::int64_t x = lying ? i : far ? width - 1 - i : i;
                const double d = static_cast<double>(lying ? row : i) + 0.5;
                const double c = static_cast<double>(lying ? i : y) + 0.5;
                const auto factor = static_cast<float>(light(d, c));
                for (std::int64_t k = 0; k < 3; ++k) pixels[(y * width + x) * 3 + k] *= factor;
            }
        }
    });
}

double lengthOf(const RGBImage& image, Side side)
{
    const bool lying = side == NegativeFrame::top || side == NegativeFrame::bottom;
    return static_cast<double>(lying ? image.width : image.height);
}

/// Draws one operation of a gate.
struct Cover {
    RGBImage& image;
    double penumbra;

    double soft(double v) const { return std::clamp(v / std::max(penumbra, 1.0) + 0.5, 0.0, 1.0); }
    double half() const { return penumbra / 2.0; }

    void operator()(const Gate::Closed& op) const
    {
        const double length = lengthOf(image, op.side);
        alongSide(image, op.side, penumbra + op.inset, [&](double d, double c) {
            if (!op.ear) return soft(d - half() - op.inset);
            const double a = op.ear->fromEnd ? length - c : c;
            const double y = op.ear->r - op.inset + d, x = op.ear->len + op.ear->r - a;
            return soft(std::min(d - half(), boxDistance(x, y) - op.ear->r));
        });
    }

    void operator()(const Gate::BandEars& op) const
    {
        const double length = lengthOf(image, op.side);
        const double per = 1.0 / std::sqrt(op.slope * op.slope + 1.0);
        alongSide(image, op.side, penumbra + op.bandIn, [&](double d, double c) {
            const double q = (d * op.slope - (std::min(c, length - c) - op.ear)) * per;
            return soft(std::min(d - half(), std::max(d - op.bandIn, q)));
        });
    }

    void operator()(const Gate::Round& op) const
    {
        if (op.r < 0.5) return;
        const bool atRight = op.corner % 2 == 1, atBottom = op.corner >= 2;
        const double reach = std::ceil(penumbra + op.r) + 2.0;
        const auto columns = static_cast<std::int64_t>(std::min(reach, static_cast<double>(image.width)));
        const auto rows = static_cast<std::int64_t>(std::min(reach, static_cast<double>(image.height)));
        float* pixels = image.mutableData();
        for (std::int64_t row = 0; row < rows; ++row)
            for (std::int64_t column = 0; column < columns; ++column) {
                const double a = std::max(op.r - (static_cast<double>(column) + 0.5), 0.0);
                const double b = std::max(op.r - (static_cast<double>(row) + 0.5), 0.0);
                const auto factor = static_cast<float>(soft(op.r - std::sqrt(a * a + b * b)));
                const std::int64_t x = atRight ? image.width - 1 - column : column;
                const std::int64_t y = atBottom ? image.height - 1 - row : row;
                for (std::int64_t k = 0; k < 3; ++k) pixels[(y * image.width + x) * 3 + k] *= factor;
            }
    }
};

/// Signed distance of a notch, below 0 inside it.
double notchDistance(const NotchShape& item, double e, double across)
{
    const double g = item.width / 2.0, off = std::abs(e);
    if (item.form == NotchShape::Form::square) return boxDistance(off - g, across - item.depth);
    if (item.form == NotchShape::Form::v) {
        const double w = across - item.depth * (1.0 - off / g);
        return off <= g ? w : std::max(w, off - g);
    }
    const double v = across - (item.depth - g);
    return std::min(boxDistance(off - g, v), std::sqrt(e * e + v * v) - g);
}

} // namespace

RGBImage FormatFrame::Gate::apply(RGBImage image) const
{
    for (const Op& op : ops) std::visit(Cover{image, penumbra}, op);
    return image;
}

Plane FormatFrame::Notches::cut(Plane mask) const
{
    double deepest = 0.0;
    for (const NotchShape& item : items) deepest = std::max(deepest, item.depth);
    const double n = std::ceil(deepest) + 3.0;
    const double w = static_cast<double>(mask.width), h = static_cast<double>(mask.height);
    const auto lastRow =
        static_cast<std::int64_t>(flapTop ? std::clamp(std::ceil(n + edgeAcross) + 1.0, 0.0, h) : h);
    const auto firstColumn =
        static_cast<std::int64_t>(flapTop ? 0.0 : std::clamp(std::floor(edgeAcross - n) - 1.0, 0.0, w));
    float* values = mask.mutableData();
    const std::int64_t width = mask.width;
    parallelBands(lastRow, (width - firstColumn) * 16, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = firstColumn; x < width; ++x) {
                const double px = static_cast<double>(x) + 0.5, py = static_cast<double>(y) + 0.5;
                const double along = flapTop ? edgeAlong - px : py - edgeAlong;
                const double across = flapTop ? py - edgeAcross : edgeAcross - px;
                double cover = 0.0, p = startPx;
                for (const NotchShape& item : items) {
                    const double t = notchDistance(item, along - (p + item.width / 2.0), across);
                    cover = std::max(cover, std::clamp(0.5 - t, 0.0, 1.0));
                    p += item.width + gapPx;
                }
                values[y * width + x] *= static_cast<float>(1.0 - cover);
            }
    });
    return mask;
}

} // namespace tamlo
