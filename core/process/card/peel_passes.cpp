#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/process/card/peel_card.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr double kYellowMm = 2.5;
constexpr float kBlot = 0.6f;
constexpr Vec3f kYellow{0.0f, 0.03f, 0.10f};  // taken from the base, of full yellowing
constexpr Vec3f kCream{0.0f, 0.015f, 0.045f}; // taken from it, where the emulsion is gone
constexpr double kFibre[2] = {0.003, 0.0025};
constexpr std::uint32_t kFibreLayer[2] = {42, 43};

struct Part {
    std::int64_t x = 0, y = 0, width = 0, height = 0;
};

float share(float v)
{
    return std::clamp(v, 0.0f, 1.0f);
}

/// One part of the sheet, with all that its own pixels ask for.
class SheetPart {
public:
    /// isPlain: paper alone, out of the window's reach.
    SheetPart(const PeelParams& params, Part part, bool isPlain) : p_(params), part_(part)
    {
        if (!isPlain) mask_ = maskPart();
        fibre_[0] = fibrePart(0);
        fibre_[1] = fibrePart(1);
        yellowX_ = yellowing(part.x, part.width, params.canvas.width);
        yellowY_ = yellowing(part.y, part.height, params.canvas.height);
    }

    void compose(RGBImage& to, const RGBImage& picture) const
    {
        float* out = to.mutableData();
        const std::int64_t outWidth = to.width;
        // Rows of the sheet are columns of a turned one: bands then share rows, but no pixel.
        parallelBands(part_.height, part_.width * 6, [&](std::int64_t start, std::int64_t end) {
            std::optional<NoiseField::Rows> blot;
            if (p_.blot) blot.emplace(*p_.blot);
            for (std::int64_t j = start; j < end; ++j) {
                const float* clouds = blot ? blot->row(part_.y + j) + part_.x : nullptr;
                for (std::int64_t i = 0; i < part_.width; ++i) {
                    const Vec3f v = pixel(i, j, clouds ? clouds[i] : 0.0f, picture);
                    const std::int64_t x = part_.x + i, y = part_.y + j;
                    const std::int64_t at =
                        p_.turned ? (p_.canvas.width - 1 - x) * outWidth + y : y * outWidth + x;
                    std::copy_n(v.begin(), 3, out + at * 3);
                }
            }
        });
    }

private:
    /// Coverage of the emulsion at a pixel of the sheet, not yet softened.
    float hardMask(std::int64_t x, std::int64_t y) const
    {
        if (x < 0 || y < 0 || x >= p_.canvas.width || y >= p_.canvas.height) return 0.0f;
        const auto cx = static_cast<std::size_t>(x), cy = static_cast<std::size_t>(y);
        const float px = static_cast<float>(x) + 0.5f, py = static_cast<float>(y) + 0.5f;
        return share(py - p_.topEdge[cx] + 0.5f) * share(p_.bottomEdge[cx] - py + 0.5f) *
               share(px - p_.leftEdge[cy] + 0.5f) * share(p_.rightEdge[cy] - px + 0.5f);
    }

    /// What of a plane a part needs round it for a blur.
    static std::int64_t reachOf(double sigma) { return static_cast<std::int64_t>(4.0 * sigma + 0.5); }

    Plane inner(const Plane& wide, std::int64_t pad) const
    {
        Plane out(part_.width, part_.height);
        float* to = out.mutableData();
        for (std::int64_t y = 0; y < part_.height; ++y)
            std::copy_n(wide.row(y + pad) + pad, part_.width, to + y * part_.width);
        return out;
    }

    Plane maskPart() const
    {
        const std::int64_t pad = p_.maskSigmaPx > 0.0 ? reachOf(p_.maskSigmaPx) : 0;
        Plane mask(part_.width + 2 * pad, part_.height + 2 * pad);
        float* to = mask.mutableData();
        parallelBands(mask.height, mask.width * 2, [&](std::int64_t start, std::int64_t end) {
            for (std::int64_t y = start; y < end; ++y)
                for (std::int64_t x = 0; x < mask.width; ++x)
                    to[y * mask.width + x] = hardMask(part_.x + x - pad, part_.y + y - pad);
        });
        if (pad == 0) return mask;
        return inner(gaussianFilter(std::move(mask), p_.maskSigmaPx, EdgeMode::reflect), pad);
    }

    /// Fibre of the paper: noise that goes on beyond every edge, its deviation known from the kernel.
    Plane fibrePart(std::size_t k) const
    {
        const double sigma = p_.fibreSigmaPx[k];
        const std::int64_t pad = reachOf(sigma);
        Plane noise = noisePlane({part_.width + 2 * pad, part_.height + 2 * pad}, {p_.seed, kFibreLayer[k]},
                                 {part_.x - pad, part_.y - pad});
        Plane out = inner(gaussianFilter(std::move(noise), sigma, EdgeMode::nearest), pad);
        const auto gain = static_cast<float>(kFibre[k] / kernelPower(gaussianHalfKernel(sigma)));
        float* to = out.mutableData();
        for (std::int64_t i = 0; i < out.count(); ++i) to[i] *= gain;
        return out;
    }

    /// Yellowing by the distance from the nearer end of an axis.
    std::vector<float> yellowing(std::int64_t first, std::int64_t count, std::int64_t whole) const
    {
        std::vector<float> out(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double at = static_cast<double>(first) + static_cast<double>(i);
            const double px = std::min(at + 0.5, static_cast<double>(whole) - at - 0.5);
            out[i] = static_cast<float>(p_.yellow * std::exp(-px / p_.ppmm / kYellowMm));
        }
        return out;
    }

    Vec3f pixel(std::int64_t i, std::int64_t j, float cloud, const RGBImage& picture) const
    {
        const std::int64_t x = part_.x + i, y = part_.y + j;
        const auto at = static_cast<std::size_t>(j * part_.width + i);
        Vec3f base = p_.base;
        if (p_.yellow > 0.0) {
            const float edge =
                std::max(yellowX_[static_cast<std::size_t>(i)], yellowY_[static_cast<std::size_t>(j)]);
            const float s = share(edge * (1.0f + kBlot * p_.blot->scale() * cloud));
            for (std::size_t c = 0; c < 3; ++c) base[c] *= 1.0f - kYellow[c] * s;
        }
        const std::int64_t px = x - p_.side, py = y - p_.top;
        const bool inWindow = px >= 0 && py >= 0 && px < p_.picture.width && py < p_.picture.height;
        if (!inWindow) {
            const float fibre = 1.0f + fibre_[0].data[at] + fibre_[1].data[at];
            for (float& v : base) v *= fibre;
        }
        for (float& v : base) v = std::max(v, 0.0f);
        if (mask_.count() == 0) return base;
        const float m = mask_.data[at];
        const float window =
            p_.windowX[static_cast<std::size_t>(x)] * p_.windowY[static_cast<std::size_t>(y)];
        const float bitten = share(window - m);
        for (std::size_t c = 0; c < 3; ++c) base[c] *= 1.0f - bitten * kCream[c];
        if (m <= 0.0f) return base;
        const std::int64_t sx = std::clamp<std::int64_t>(px, 0, p_.picture.width - 1);
        const std::int64_t sy = std::clamp<std::int64_t>(py, 0, p_.picture.height - 1);
        const Vec3f seen = p_.turned ? picture.pixel(sy, p_.picture.width - 1 - sx) : picture.pixel(sx, sy);
        Vec3f out{};
        for (std::size_t c = 0; c < 3; ++c) out[c] = std::max(m * seen[c] + (1.0f - m) * base[c], 0.0f);
        return out;
    }

    const PeelParams& p_;
    Part part_;
    Plane mask_;
    std::array<Plane, 2> fibre_;
    std::vector<float> yellowX_, yellowY_;
};

/// The middle of the window, where all is picture.
void copyMiddle(RGBImage& to, const RGBImage& picture, Part middle, const PeelParams& p)
{
    if (middle.width <= 0 || middle.height <= 0) return;
    // Of the sheet as it lies.
    Part shown = middle;
    if (p.turned) shown = {middle.y, p.canvas.width - middle.x - middle.width, middle.height, middle.width};
    const std::int64_t left = p.turned ? p.top : p.side;
    const std::int64_t top = p.turned ? p.canvas.width - p.side - p.picture.width : p.top;
    float* out = to.mutableData();
    parallelBands(shown.height, shown.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = shown.y + start; y < shown.y + end; ++y) {
            const float* from = picture.row(y - top) + (shown.x - left) * 3;
            std::copy_n(from, shown.width * 3, out + (y * to.width + shown.x) * 3);
        }
    });
}

} // namespace

void peel_compose(RGBImage& to, const RGBImage& picture, const PeelParams& p)
{
    const std::int64_t width = p.canvas.width, height = p.canvas.height;
    const auto softPx = static_cast<std::int64_t>(std::ceil(4.0 * p.maskSigmaPx)) + 2;
    const auto inwards = [&](std::int64_t size) { return std::min(p.reachPx, (size + 1) / 2); };
    // From the edge of the sheet inwards: paper, the band of the window's edge, the picture.
    const std::int64_t x0 = p.side + inwards(p.picture.width);
    const std::int64_t x1 = std::max(x0, p.side + p.picture.width - inwards(p.picture.width));
    const std::int64_t y0 = p.top + inwards(p.picture.height);
    const std::int64_t y1 = std::max(y0, p.top + p.picture.height - inwards(p.picture.height));
    const std::int64_t left = std::max<std::int64_t>(p.side - softPx, 0),
                       top = std::max<std::int64_t>(p.top - softPx, 0);
    const std::int64_t right = std::min(p.side + p.picture.width + softPx, width),
                       bottom = std::min(p.top + p.picture.height + softPx, height);
    const auto compose = [&](const std::array<Part, 4>& parts, bool isPlain) {
        for (const Part part : parts)
            if (part.width > 0 && part.height > 0) SheetPart(p, part, isPlain).compose(to, picture);
    };
    compose({Part{0, 0, width, top}, Part{0, bottom, width, height - bottom},
             Part{0, top, left, bottom - top}, Part{right, top, width - right, bottom - top}},
            true);
    compose({Part{left, top, right - left, y0 - top}, Part{left, y1, right - left, bottom - y1},
             Part{left, y0, x0 - left, y1 - y0}, Part{x1, y0, right - x1, y1 - y0}},
            false);
    copyMiddle(to, picture, {x0, y0, x1 - x0, y1 - y0}, p);
}

} // namespace tamlo
