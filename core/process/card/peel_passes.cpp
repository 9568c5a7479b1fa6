#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/card/peel_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/image/vector_pixels-inl.h"
#include "core/process/card/peel_card.h"

#include <algorithm>
#include <array>

#ifndef TAMLO_CORE_PROCESS_CARD_PEEL_PASSES_ONCE
#define TAMLO_CORE_PROCESS_CARD_PEEL_PASSES_ONCE
namespace tamlo {
namespace {

constexpr float kBlot = 0.6f;
constexpr Vec3f kYellow{0.0f, 0.03f, 0.10f};  // taken from the base, of full yellowing
constexpr Vec3f kCream{0.0f, 0.015f, 0.045f}; // taken from it, where the emulsion is gone

/// A run of one row of the sheet; what is null is not there.
struct PeelRun {
    std::int64_t count = 0;
    Vec3f base{};
    const float* yellowX = nullptr; ///< yellowing from the ends of the row
    float yellowY = 0.0f;           ///< and from its own nearer edge
    const float* blot = nullptr;
    float blotGain = 0.0f;
    std::array<const float*, 2> fibre{};
    std::array<float, 2> fibreGain{};
    const float* mask = nullptr; ///< coverage of the emulsion; with it windowX and seen
    const float* windowX = nullptr;
    float windowY = 0.0f;
    const float* seen = nullptr; ///< the picture, interleaved
};

} // namespace
} // namespace tamlo
#endif

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void peelRun(float* out, const PeelRun& run)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const V one = hn::Set(d, 1.0f), zero = hn::Zero(d);
    const auto count = static_cast<std::size_t>(run.count);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = std::min(count - i, hn::Lanes(d));
        V base[3] = {hn::Set(d, run.base[0]), hn::Set(d, run.base[1]), hn::Set(d, run.base[2])};
        if (run.blot) {
            const V edge = hn::Max(loadRun(d, run.yellowX + i, n), hn::Set(d, run.yellowY));
            const V clouds = hn::Mul(hn::Set(d, run.blotGain), loadRun(d, run.blot + i, n));
            const V s = clamp01(d, hn::Mul(edge, hn::Add(one, clouds)));
            for (std::size_t c = 0; c < 3; ++c)
                base[c] = hn::Mul(base[c], hn::Sub(one, hn::Mul(hn::Set(d, kYellow[c]), s)));
        }
        if (run.fibre[0]) {
            V fibre = one;
            for (std::size_t k = 0; k < 2; ++k)
                fibre =
                    hn::Add(fibre, hn::Mul(loadRun(d, run.fibre[k] + i, n), hn::Set(d, run.fibreGain[k])));
            for (V& v : base) v = hn::Mul(v, fibre);
        }
        for (V& v : base) v = hn::Max(v, zero);
        if (run.mask) {
            const V m = loadRun(d, run.mask + i, n);
            const V window = hn::Mul(loadRun(d, run.windowX + i, n), hn::Set(d, run.windowY));
            const V bitten = clamp01(d, hn::Sub(window, m));
            const auto seen = loadTriple(d, run.seen + i * 3, n);
            const V picture[3] = {seen.r, seen.g, seen.b};
            const auto covered = hn::Gt(m, zero);
            for (std::size_t c = 0; c < 3; ++c) {
                const V paper = hn::Mul(base[c], hn::Sub(one, hn::Mul(bitten, hn::Set(d, kCream[c]))));
                const V mixed = hn::Add(hn::Mul(m, picture[c]), hn::Mul(hn::Sub(one, m), paper));
                base[c] = hn::IfThenElse(covered, hn::Max(mixed, zero), paper);
            }
        }
        storeTriple(d, Triple<V>{base[0], base[1], base[2]}, out + i * 3, n);
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "core/image/bands.h"
#include "core/image/gaussian.h"

#include <cmath>

namespace tamlo {
namespace {

HWY_EXPORT(peelRun);

constexpr double kYellowMm = 2.5;
constexpr double kFibre[2] = {0.003, 0.0025};
constexpr std::uint32_t kFibreLayer[2] = {42, 43};

struct Part {
    std::int64_t x = 0, y = 0, width = 0, height = 0;
};

float share(float v)
{
    return std::clamp(v, 0.0f, 1.0f);
}

Part common(Part a, Part b)
{
    const std::int64_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::max<std::int64_t>(std::min(a.x + a.width, b.x + b.width) - x, 0),
            std::max<std::int64_t>(std::min(a.y + a.height, b.y + b.height) - y, 0)};
}

/// One part of the sheet, with all that its own pixels ask for: paper of the margin, which has fibre, or a
/// band of the window along its edge, which has none.
class SheetPart {
public:
    /// masked: what of the part the emulsion may cover.
    SheetPart(const PeelParams& params, Part part, Part masked, bool isPaper)
        : p_(params), part_(part), masked_(masked), isPaper_(isPaper)
    {
        if (masked.width > 0 && masked.height > 0) mask_ = maskPart();
        if (isPaper)
            for (std::size_t k = 0; k < 2; ++k) fibre_[k] = fibrePart(k);
        for (std::size_t k = 0; k < 2; ++k)
            fibreGain_[k] =
                static_cast<float>(kFibre[k] / kernelPower(gaussianHalfKernel(params.fibreSigmaPx[k])));
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
            if (p_.yellow > 0.0) blot.emplace(*p_.blot);
            std::vector<float> line(static_cast<std::size_t>(p_.turned ? part_.width * 3 : 0));
            std::vector<float> seen(static_cast<std::size_t>(masked_.width * 3));
            for (std::int64_t y = part_.y + start; y < part_.y + end; ++y) {
                const float* clouds = blot ? blot->run(y, part_.x, part_.x + part_.width) + part_.x : nullptr;
                float* row = p_.turned ? line.data() : out + (y * outWidth + part_.x) * 3;
                if (isMasked(y)) see(seen, picture, y);
                composeRow(row, y, clouds, seen.data());
                if (!p_.turned) continue;
                for (std::int64_t i = 0; i < part_.width; ++i)
                    std::copy_n(row + i * 3, 3,
                                out + ((p_.canvas.width - 1 - part_.x - i) * outWidth + y) * 3);
            }
        });
    }

private:
    bool isMasked(std::int64_t y) const
    {
        return masked_.width > 0 && y >= masked_.y && y < masked_.y + masked_.height;
    }

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

    Plane maskPart() const
    {
        const std::int64_t pad = p_.maskSigmaPx > 0.0 ? reachOf(p_.maskSigmaPx) : 0;
        Plane mask(masked_.width + 2 * pad, masked_.height + 2 * pad);
        float* to = mask.mutableData();
        parallelBands(mask.height, mask.width * 2, [&](std::int64_t start, std::int64_t end) {
            for (std::int64_t y = start; y < end; ++y)
                for (std::int64_t x = 0; x < mask.width; ++x)
                    to[y * mask.width + x] = hardMask(masked_.x + x - pad, masked_.y + y - pad);
        });
        if (pad == 0) return mask;
        return gaussianInside(mask, p_.maskSigmaPx, p_.maskSigmaPx, {pad, pad});
    }

    /// Fibre of the paper: noise that goes on beyond every edge, its deviation known from the kernel.
    Plane fibrePart(std::size_t k) const
    {
        const double sigma = p_.fibreSigmaPx[k];
        const std::int64_t pad = reachOf(sigma);
        const Plane noise = noisePlane({part_.width + 2 * pad, part_.height + 2 * pad},
                                       {p_.seed, kFibreLayer[k]}, {part_.x - pad, part_.y - pad});
        return gaussianInside(noise, sigma, sigma, {pad, pad});
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

    /// The picture under a row's masked stretch; beyond the window its edge is repeated.
    void see(std::vector<float>& to, const RGBImage& picture, std::int64_t y) const
    {
        const std::int64_t width = p_.picture.width;
        const std::int64_t sy = std::clamp<std::int64_t>(y - p_.top, 0, p_.picture.height - 1);
        for (std::int64_t i = 0; i < masked_.width; ++i) {
            const std::int64_t sx = std::clamp<std::int64_t>(masked_.x + i - p_.side, 0, width - 1);
            const float* from = p_.turned ? picture.row(width - 1 - sx) + sy * 3 : picture.row(sy) + sx * 3;
            std::copy_n(from, 3, to.data() + i * 3);
        }
    }

    /// Row y of the sheet: paper on both sides of what the emulsion may cover.
    void composeRow(float* out, std::int64_t y, const float* clouds, const float* seen) const
    {
        const std::int64_t first = isMasked(y) ? masked_.x - part_.x : part_.width;
        const std::int64_t end = isMasked(y) ? first + masked_.width : part_.width;
        composeRun(out, y, {0, first}, clouds, nullptr);
        composeRun(out, y, {first, end}, clouds, seen);
        composeRun(out, y, {end, part_.width}, clouds, nullptr);
    }

    /// Pixels span[0]...span[1] - 1 of the part's row; `seen` begins with them.
    void composeRun(float* out, std::int64_t y, std::array<std::int64_t, 2> span, const float* clouds,
                    const float* seen) const
    {
        const auto [first, end] = span;
        if (first >= end) return;
        PeelRun run;
        run.count = end - first;
        run.base = p_.base;
        if (clouds) {
            run.yellowX = yellowX_.data() + first;
            run.yellowY = yellowY_[static_cast<std::size_t>(y - part_.y)];
            run.blot = clouds + first;
            run.blotGain = kBlot * p_.blot->scale();
        }
        if (isPaper_)
            for (std::size_t k = 0; k < 2; ++k) run.fibre[k] = fibre_[k].row(y - part_.y) + first;
        run.fibreGain = fibreGain_;
        if (seen) {
            run.mask = mask_.row(y - masked_.y);
            run.windowX = p_.windowX.data() + masked_.x;
            run.windowY = p_.windowY[static_cast<std::size_t>(y)];
            run.seen = seen;
        }
        HWY_DYNAMIC_DISPATCH(peelRun)(out + first * 3, run);
    }

    const PeelParams& p_;
    Part part_, masked_;
    bool isPaper_;
    Plane mask_;
    std::array<Plane, 2> fibre_;
    std::array<float, 2> fibreGain_{};
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
    const Part window{p.side, p.top, p.picture.width, p.picture.height};
    const std::int64_t right = window.x + window.width, bottom = window.y + window.height;
    // What lies so deep in the window that all is picture.
    const std::int64_t x0 = window.x + inwards(window.width), y0 = window.y + inwards(window.height);
    const std::int64_t x1 = std::max(x0, right - inwards(window.width)),
                       y1 = std::max(y0, bottom - inwards(window.height));
    const Part soft{window.x - softPx, window.y - softPx, window.width + 2 * softPx,
                    window.height + 2 * softPx};
    const auto compose = [&](const std::array<Part, 4>& parts, bool isPaper) {
        for (const Part part : parts)
            if (part.width > 0 && part.height > 0)
                SheetPart(p, part, common(part, soft), isPaper).compose(to, picture);
    };
    compose({Part{0, 0, width, window.y}, Part{0, bottom, width, height - bottom},
             Part{0, window.y, window.x, window.height}, Part{right, window.y, width - right, window.height}},
            true);
    compose({Part{window.x, window.y, window.width, y0 - window.y},
             Part{window.x, y1, window.width, bottom - y1}, Part{window.x, y0, x0 - window.x, y1 - y0},
             Part{x1, y0, right - x1, y1 - y0}},
            false);
    copyMiddle(to, picture, {x0, y0, x1 - x0, y1 - y0}, p);
}

} // namespace tamlo
#endif
