#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/card/card_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/card/card_passes.h"

#include "core/image/vector_noise-inl.h"
#include "core/image/vector_pixels-inl.h"
#include "core/process/card/card_light.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

void embossRun(float* factors, std::int64_t first, std::int64_t end, std::int64_t y, const CardParams& p)
{
    using namespace CardRelief;
    const hn::ScalableTag<float> d;
    const hn::RebindToSigned<decltype(d)> di;
    using V = hn::Vec<decltype(d)>;
    const auto set = [&](double v) HWY_ATTR { return hn::Set(d, static_cast<float>(v)); };
    const CardLattice& lattice = *p.lattice;
    const double halfW = 0.5 * static_cast<double>(p.picture.width);
    const double halfH = 0.5 * static_cast<double>(p.picture.height);
    const double down = std::abs(static_cast<double>(y) + 0.5 - static_cast<double>(p.top) - halfH) - halfH;
    const double ym = (static_cast<double>(y) + 0.5) / p.pxMm;
    const V one = set(1.0), half = set(0.5), pitch = set(embossPitchMm);
    const auto count = static_cast<std::size_t>(end - first);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const std::size_t n = std::min(count - i, hn::Lanes(d));
        const auto column = hn::Iota(di, static_cast<std::int32_t>(first) + static_cast<std::int32_t>(i));
        const V x = hn::Add(hn::ConvertTo(d, column), half);
        const V across = hn::Sub(hn::Abs(hn::Sub(x, set(static_cast<double>(p.left) + halfW))), set(halfW));
        const V outside = hn::Max(across, set(down));
        const V cover = clamp01(d, hn::Add(hn::Sub(outside, set(lattice.bandPx)), half));
        const V xm = hn::Mul(x, set(1.0 / p.pxMm));
        V hx = hn::Zero(d), hy = hn::Zero(d);
        for (std::size_t q = 0; q < 2; ++q) {
            const V along = hn::Mul(xm, set(lattice.wx[q]));
            const V turns = hn::Mul(hn::Add(along, set(ym * lattice.wy[q] + lattice.phaseMm[q])),
                                    set(1.0 / embossPitchMm));
            const V s = hn::Sub(hn::Mul(hn::Sub(turns, hn::Floor(turns)), pitch), set(0.5 * embossPitchMm));
            // sin(2π t) as the cosine of a quarter turn less.
            const V t = hn::Sub(hn::Mul(s, set(1.0 / embossRidgeMm)), set(0.25));
            const V wave = cosTurns(d, hn::Sub(t, hn::Floor(t)));
            const V slope = hn::Mul(wave, set(-lattice.height));
            const V ds = hn::IfThenElseZero(hn::Lt(hn::Abs(s), set(0.5 * embossRidgeMm)), slope);
            hx = hn::Add(hx, hn::Mul(ds, set(lattice.wx[q])));
            hy = hn::Add(hy, hn::Mul(ds, set(lattice.wy[q])));
        }
        const V length = hn::Sqrt(hn::Add(one, hn::Add(hn::Mul(hx, hx), hn::Mul(hy, hy))));
        const V tilt = hn::Add(hn::Mul(hx, set(light[0])), hn::Mul(hy, set(light[1])));
        const V lit = hn::Max(hn::Div(hn::Sub(set(light[2]), tilt), length), hn::Zero(d));
        const V shaded = hn::Mul(hn::Add(set(ambient), hn::Mul(set(diffuse), lit)), set(1.0 / flat));
        const V change = hn::Mul(hn::Mul(hn::Sub(shaded, one), set(lattice.gain)), cover);
        float* to = factors + first + static_cast<std::int64_t>(i);
        storeRun(d, hn::Mul(loadRun(d, to, n), hn::Add(one, change)), to, n);
    }
}

/// A colour or a stretch of the picture, under the factors.
void shadeRun(float* pixels, const float* factors, std::int64_t count)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    eachTriple(d, pixels, static_cast<std::size_t>(count),
               [&](Triple<V> c, std::size_t i, std::size_t n) HWY_ATTR {
                   const V f = loadRun(d, factors + i, n), zero = hn::Zero(d);
                   return Triple<V>{hn::Max(hn::Mul(c.r, f), zero), hn::Max(hn::Mul(c.g, f), zero),
                                    hn::Max(hn::Mul(c.b, f), zero)};
               });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include "core/image/bands.h"
#include "core/process/card/card_relief.h"

#include <vector>

namespace tamlo {
namespace {

HWY_EXPORT(embossRun);
HWY_EXPORT(shadeRun);

/// Half-open run of pixels of a row.
struct Run {
    std::int64_t first = 0, end = 0;
};

/// Two runs of a row that do not meet: its left and its right end, or the whole row and nothing.
using RowRuns = std::array<Run, 2>;

RowRuns rowRuns(bool whole, std::int64_t width, Run left, Run right)
{
    if (whole) return {Run{0, width}, Run{width, width}};
    const auto within = [&](Run run) {
        return Run{std::clamp<std::int64_t>(run.first, 0, width),
                   std::clamp<std::int64_t>(run.end, 0, width)};
    };
    RowRuns runs{within(left), within(right)};
    runs[1].first = std::max(runs[1].first, runs[0].end);
    runs[1].end = std::max(runs[1].end, runs[1].first);
    return runs;
}

/// Rows of one card.
class CardRows {
public:
    explicit CardRows(const CardParams& p) : p_(p)
    {
        constexpr double kSkirts = 6.0; // beyond so many of its widths the skirt is below a millionth
        const auto whole = [](double v) {
            return static_cast<std::int64_t>(std::min(std::ceil(v), 1e9)) + 1;
        };
        ringOut_ = whole(p.linePx);
        ringIn_ = whole(p.skirtPx * kSkirts);
        roundPx_ = std::max(std::hypot(CardRelief::edgeRoundEndsMm, CardRelief::edgeRoundSidesMm) * p.pxMm,
                            CardRelief::minBandPx);
        edge_ = whole(roundPx_);
        double rim = roundPx_;
        for (const CornerPx& corner : p.outline.corners) rim = std::max(rim, corner.size);
        rim_ = whole(rim);
        const std::int64_t width = p.outline.canvas.width;
        factors_.resize(static_cast<std::size_t>(width));
        baseRow_.resize(factors_.size() * 3);
        for (std::size_t i = 0; i < baseRow_.size(); ++i) baseRow_[i] = p.base[i % 3];
        if (p.isFlat) return;
        ringX_.assign(factors_.size(), 1.0f);
        for (const Run run : ringColumns(false))
            for (std::int64_t x = run.first; x < run.end; ++x)
                ringX_[index(x)] = ringFactor(beyond(x, p.left, p.picture.width));
    }

    void row(float* to, const RGBImage& picture, std::int64_t y)
    {
        lay(to, picture, y);
        if (p_.isFlat) return;
        const std::int64_t width = p_.outline.canvas.width, height = p_.outline.canvas.height;
        const double down = beyond(y, p_.top, p_.picture.height);
        const bool onRim = y < rim_ || y >= height - rim_;
        // The middle of the picture is as it was.
        const std::int64_t inner = std::max(ringIn_, rim_), right = p_.left + p_.picture.width;
        const RowRuns changed = rowRuns(onRim || down > -static_cast<double>(ringIn_), width,
                                        {0, p_.left + inner}, {right - inner, width});
        for (const Run run : changed)
            std::fill(factors_.begin() + run.first, factors_.begin() + run.end, 1.0f);
        ring(down);
        if (p_.lattice) lattice(y);
        // Away from the corners the rim is no wider than its rounding.
        const std::int64_t ends = onRim ? rim_ : edge_;
        const RowRuns rim =
            rowRuns(y < edge_ || y >= height - edge_, width, {0, ends}, {width - ends, width});
        for (const Run run : rim)
            for (std::int64_t x = run.first; x < run.end; ++x) factors_[index(x)] *= rimFactor(x, y);
        for (const Run run : changed)
            if (run.end > run.first) HWY_DYNAMIC_DISPATCH(shadeRun)
        (to + run.first * 3, factors_.data() + run.first, run.end - run.first);
        if (p_.outline.isCut())
            for (const Run run : rim) cut(to, run, y);
    }

private:
    static std::size_t index(std::int64_t x) { return static_cast<std::size_t>(x); }

    void lay(float* to, const RGBImage& picture, std::int64_t y) const
    {
        const std::int64_t width = p_.outline.canvas.width, source = y - p_.top;
        if (source < 0 || source >= picture.height) {
            std::copy_n(baseRow_.begin(), width * 3, to);
            return;
        }
        const std::int64_t right = p_.left + picture.width;
        std::copy_n(baseRow_.begin(), p_.left * 3, to);
        std::copy_n(picture.row(source), picture.width * 3, to + p_.left * 3);
        std::copy_n(baseRow_.begin(), (width - right) * 3, to + right * 3);
    }

    /// Pixels beyond the opening's edge on the nearer side, negative inside.
    double beyond(std::int64_t at, std::int64_t from, std::int64_t size) const
    {
        const double half = 0.5 * static_cast<double>(size);
        return std::abs(static_cast<double>(at) + 0.5 - static_cast<double>(from) - half) - half;
    }

    /// Columns that the line or the skirt at the opening's sides reaches; all in a row that has them itself.
    RowRuns ringColumns(bool whole) const
    {
        const std::int64_t right = p_.left + p_.picture.width;
        return rowRuns(whole, p_.outline.canvas.width, {p_.left - ringOut_, p_.left + ringIn_},
                       {right - ringIn_, right + ringOut_});
    }

    /// Line and skirt of a row `down` pixels beyond the opening: of that edge, or of a side that is farther.
    void ring(double down)
    {
        if (down > static_cast<double>(ringOut_)) return;
        const float own = ringFactor(down);
        for (const Run run : ringColumns(down > -static_cast<double>(ringIn_)))
            for (std::int64_t x = run.first; x < run.end; ++x) {
                const bool isSide = beyond(x, p_.left, p_.picture.width) > down;
                factors_[index(x)] = isSide ? ringX_[index(x)] : own;
            }
    }

    float ringFactor(double di) const
    {
        const double cover = std::clamp(std::min(di + 0.5, p_.linePx) - std::max(di - 0.5, 0.0), 0.0, 1.0);
        double k = 1.0 + cover * p_.lineDev;
        if (di <= 0.0) k -= p_.skirtDepth * std::exp(-std::pow(std::max(-di - 0.5, 0.0) / p_.skirtPx, 1.6));
        return static_cast<float>(k);
    }

    void lattice(std::int64_t y)
    {
        const std::int64_t width = p_.outline.canvas.width;
        if (y < p_.top || y >= p_.top + p_.picture.height)
            return emboss_lattice(factors_.data(), 0, width, y, p_);
        emboss_lattice(factors_.data(), 0, p_.left, y, p_);
        emboss_lattice(factors_.data(), p_.left + p_.picture.width, width, y, p_);
    }

    double distance(std::int64_t x, std::int64_t y) const
    {
        const Size canvas = p_.outline.canvas;
        x = std::clamp<std::int64_t>(x, 0, canvas.width - 1);
        y = std::clamp<std::int64_t>(y, 0, canvas.height - 1);
        return CardRelief::sdf(p_.outline, static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5);
    }

    /// Slope of the distance along an axis of n pixels, one-sided at its ends.
    static double slope(double before, double after, std::int64_t at, std::int64_t n)
    {
        return n < 2 ? 0.0 : (after - before) / (at == 0 || at == n - 1 ? 1.0 : 2.0);
    }

    float rimFactor(std::int64_t x, std::int64_t y) const
    {
        using namespace CardRelief;
        const double d = distance(x, y);
        if (d <= -roundPx_) return 1.0f;
        const Size canvas = p_.outline.canvas;
        double nx = slope(distance(x - 1, y), distance(x + 1, y), x, canvas.width);
        double ny = slope(distance(x, y - 1), distance(x, y + 1), y, canvas.height);
        const double length = std::hypot(nx, ny);
        if (length < 1e-6) return 1.0f;
        nx /= length;
        ny /= length;
        const double r = (edgeRoundEndsMm * std::abs(ny) + edgeRoundSidesMm * std::abs(nx)) * p_.pxMm;
        const double share = r < minBandPx ? r / minBandPx : 1.0, reach = std::max(r, minBandPx);
        const double u = std::clamp((d + reach) / reach, 0.0, 1.0);
        return static_cast<float>(1.0 + (shade(u * nx, u * ny, std::sqrt(1.0 - u * u)) - 1.0) * share);
    }

    void cut(float* to, Run run, std::int64_t y) const
    {
        for (std::int64_t x = run.first; x < run.end; ++x) {
            const auto a = static_cast<float>(std::clamp(0.5 - distance(x, y), 0.0, 1.0));
            if (a == 1.0f) continue;
            for (std::size_t c = 0; c < 3; ++c) {
                float& v = to[static_cast<std::size_t>(x) * 3 + c];
                v = v * a + p_.outside[c] * (1.0f - a);
            }
        }
    }

    const CardParams& p_;
    double roundPx_ = 0.0; ///< the widest rounding of the rim
    std::int64_t ringOut_ = 0, ringIn_ = 0;
    std::int64_t edge_ = 0; ///< of the rim along the sides
    std::int64_t rim_ = 0;  ///< with the corners
    std::vector<float> factors_, baseRow_;
    std::vector<float> ringX_; ///< line and skirt of the opening's sides
};

} // namespace

void emboss_lattice(float* factors, std::int64_t first, std::int64_t end, std::int64_t y,
                    const CardParams& params) noexcept
{
    HWY_DYNAMIC_DISPATCH(embossRun)(factors, first, end, y, params);
}

void instant_card(RGBImage& canvas, const RGBImage& picture, const CardParams& params)
{
    float* to = canvas.mutableData();
    parallelBands(canvas.height, canvas.width * 4, [&](std::int64_t start, std::int64_t end) {
        CardRows rows(params);
        for (std::int64_t y = start; y < end; ++y) rows.row(to + y * canvas.width * 3, picture, y);
    });
}

} // namespace tamlo
#endif
