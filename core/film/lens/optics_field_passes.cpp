#include "core/film/lens/optics_field_passes.h"

#include "core/image/bands.h"
#include "core/image/cancellation.h"
#include "core/image/gaussian_passes.h"
#include "core/image/interpolation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kSmearRows = 48; // polar rows blurred together, with their scratch in the cache
constexpr std::int64_t kPolarCost = 16; // a polar sample in units of a plain one

inline float radiusAt(float dx, float dy)
{
    return std::sqrt(dx * dx + dy * dy);
}

float centreOf(std::int64_t n)
{
    return 0.5f * static_cast<float>(n - 1);
}

/// Some rows of the smeared image at a time, with scratch that stays in the cache.
class SmearBlock {
public:
    SmearBlock(const Plane& polar, std::int64_t reachX, std::int64_t reachY)
        : polar_(polar),
          stride_(gaussPadded(polar.width)),
          padded_(size(stride_)),
          line_(size(stride_ + 2 * reachX)),
          strip_(gaussStripDoubles(kSmearRows, reachY)),
          turned_(size((kSmearRows + 2 * reachY) * stride_)),
          folded_(size(kSmearRows * stride_))
    {}

    void run(std::span<const SmearRing> rings, std::int64_t y, std::int64_t count, float* to)
    {
        std::fill_n(to, count * polar_.width, 0.0f);
        for (const SmearRing& ring : rings) {
            const auto first = ring.weights.begin() + y;
            if (std::none_of(first, first + count, [](float w) { return w > 0.0f; })) continue;
            blur(ring, y, count);
            for (std::int64_t i = 0; i < count; ++i) {
                const float weight = ring.weights[size(y + i)];
                const float* from = folded_.data() + i * stride_;
                float* row = to + i * polar_.width;
                for (std::int64_t x = 0; x < polar_.width; ++x) row[x] += weight * from[x];
            }
        }
    }

private:
    static std::size_t size(std::int64_t n) { return static_cast<std::size_t>(n); }

    void blur(const SmearRing& ring, std::int64_t y, std::int64_t count)
    {
        const GaussHalfKernel alongAngle{ring.alongAngle}, alongRadius{ring.alongRadius};
        const std::int64_t reach = alongRadius.radius();
        rows_.assign(size(count + 2 * reach), nullptr);
        const float* made = nullptr;
        std::int64_t last = -1;
        for (std::int64_t i = 0; i < count + 2 * reach; ++i) {
            const std::int64_t source = std::clamp<std::int64_t>(y - reach + i, 0, polar_.height - 1);
            if (source != last) {
                cancellationPoint(); // a wide smear takes milliseconds a row
                std::copy_n(polar_.row(source), polar_.width, padded_.data());
                float* to = turned_.data() + i * stride_;
                gauss_row({padded_.data(), polar_.width, 1, to, line_.data()}, alongAngle, EdgeMode::wrap);
                made = to;
                last = source;
            }
            rows_[size(i)] = made;
        }
        gauss_columns({rows_.data(), count, polar_.width, folded_.data(), stride_, strip_.data()},
                      alongRadius);
    }

    const Plane& polar_;
    std::int64_t stride_;
    std::vector<float> padded_;
    std::vector<double> line_, strip_;
    std::vector<float> turned_, folded_;
    std::vector<const float*> rows_;
};

} // namespace

void polar_forward(const RGBImage& image, double radiusStep, PolarPlanes& polar)
{
    const std::int64_t angles = polar[0].width;
    std::vector<float> cosines(static_cast<std::size_t>(angles)), sines(static_cast<std::size_t>(angles));
    for (std::int64_t t = 0; t < angles; ++t) {
        const double a = 2.0 * std::numbers::pi * static_cast<double>(t) / static_cast<double>(angles);
        cosines[static_cast<std::size_t>(t)] = static_cast<float>(std::cos(a));
        sines[static_cast<std::size_t>(t)] = static_cast<float>(std::sin(a));
    }
    const float cx = centreOf(image.width), cy = centreOf(image.height);
    const float right = static_cast<float>(image.width - 1), bottom = static_cast<float>(image.height - 1);
    std::array<float*, 3> to{};
    for (std::size_t c = 0; c < 3; ++c) to[c] = polar[c].mutableData();
    parallelBands(polar[0].height, angles * kPolarCost, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t r = start; r < end; ++r) {
            const auto out = static_cast<float>((static_cast<double>(r) + 0.5) * radiusStep);
            for (std::int64_t t = 0; t < angles; ++t) {
                const auto i = static_cast<std::size_t>(t);
                const float x = std::clamp(cx + out * cosines[i], 0.0f, right);
                const float y = std::clamp(cy + out * sines[i], 0.0f, bottom);
                const auto x0 = static_cast<std::int32_t>(x), y0 = static_cast<std::int32_t>(y);
                const float fx = x - static_cast<float>(x0), fy = y - static_cast<float>(y0);
                const std::int64_t next = x0 + 1 < image.width ? 3 : 0;
                const float* top = image.row(y0) + x0 * std::int64_t{3};
                const float* low = y0 + 1 < image.height ? top + image.width * 3 : top;
                for (std::int64_t c = 0; c < 3; ++c)
                    to[static_cast<std::size_t>(c)][r * angles + t] =
                        lerp(lerp(top[c], top[next + c], fx), lerp(low[c], low[next + c], fx), fy);
            }
        }
    });
}

void smear_rings(const Plane& polar, std::span<const SmearRing> rings, Plane& out)
{
    float* to = out.mutableData();
    std::int64_t reachX = 0, reachY = 0;
    for (const SmearRing& ring : rings) {
        reachX = std::max(reachX, GaussHalfKernel{ring.alongAngle}.radius());
        reachY = std::max(reachY, GaussHalfKernel{ring.alongRadius}.radius());
    }
    parallelBands(polar.height, polar.width * kPolarCost, [&](std::int64_t start, std::int64_t end) {
        SmearBlock block(polar, reachX, reachY);
        for (std::int64_t y = start; y < end; y += kSmearRows)
            block.run(rings, y, std::min(kSmearRows, end - y), to + y * polar.width);
    });
}

void field_weight(Plane& weight, const FieldMix& mix)
{
    float* to = weight.mutableData();
    const float cx = centreOf(weight.width), cy = centreOf(weight.height);
    parallelBands(weight.height, weight.width * kPolarCost, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = 0; x < weight.width; ++x) {
                const float out = radiusAt(static_cast<float>(x) - cx, static_cast<float>(y) - cy);
                const float share = std::min(out / mix.radius, 1.0f);
                const float v = std::clamp(mix.sigmaCoef * std::pow(share, mix.power) - 0.25f, 0.0f, 1.0f);
                to[y * weight.width + x] = v * v * (3.0f - 2.0f * v);
            }
    });
}

void detail_abs(Plane& luma, const Plane& blurred)
{
    float* to = luma.mutableData();
    const float* from = blurred.data.data();
    parallelBands(luma.height, luma.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * luma.width; i < end * luma.width; ++i) {
            const float detail = std::abs(to[i] - from[i]);
            to[i] = detail > 0.0f ? std::min(detail, std::numeric_limits<float>::max()) : 0.0f;
        }
    });
}

void defocus_weight(Plane& weight, const Plane& detail, float bias, float reference)
{
    float* to = weight.mutableData();
    const float* from = detail.data.data();
    parallelBands(weight.height, weight.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * weight.width; i < end * weight.width; ++i)
            to[i] *= 1.0f - bias * std::clamp(from[i] / reference, 0.0f, 1.0f);
    });
}

void field_delta(RGBImage& image, const PolarPlanes& polar, const Plane& weight, const FieldMix& mix)
{
    const std::int64_t angles = polar[0].width, radii = polar[0].height;
    const float cx = centreOf(image.width), cy = centreOf(image.height);
    const auto turn = static_cast<float>(2.0 * std::numbers::pi);
    const auto perRadian = static_cast<float>(static_cast<double>(angles) / (2.0 * std::numbers::pi));
    float* pixels = image.mutableData();
    parallelBands(image.height, image.width * kPolarCost, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * image.width; i < end * image.width; ++i) {
            float* p = pixels + i * 3;
            const float share = weight.data.data()[i];
            if (!(share > 0.0f)) {
                p[0] = p[1] = p[2] = 0.0f;
                continue;
            }
            const float dx = static_cast<float>(i % image.width) - cx;
            const float dy = static_cast<float>(i / image.width) - cy;
            const float out = radiusAt(dx, dy);
            float angle = out > 0.0f ? std::atan2(dy, dx) : 0.0f; // the centre has no angle
            if (angle < 0.0f) angle += turn;
            const float t = angle * perRadian;
            const float r = std::clamp(out / mix.radiusStep - 0.5f, 0.0f, static_cast<float>(radii - 1));
            const auto first = static_cast<std::int64_t>(t), inner = static_cast<std::int64_t>(r);
            const float ft = t - static_cast<float>(first), fr = r - static_cast<float>(inner);
            const std::int64_t t0 = first % angles, t1 = (first + 1) % angles;
            const std::int64_t r0 = inner * angles, r1 = std::min(inner + 1, radii - 1) * angles;
            for (std::size_t c = 0; c < 3; ++c) {
                const float* v = polar[c].data.data();
                const float smeared =
                    lerp(lerp(v[r0 + t0], v[r0 + t1], ft), lerp(v[r1 + t0], v[r1 + t1], ft), fr);
                p[c] = (smeared - p[c]) * share;
            }
        }
    });
}

void add_row(float* row, const float* added, std::int64_t samples)
{
    for (std::int64_t i = 0; i < samples; ++i) row[i] += added[i];
}

} // namespace tamlo
