// The model of growth grain written out site by site, slowly and plainly: the oracle of the fast path.
#pragma once

#include "core/film/grain/growth_calibration.h"
#include "core/film/grain/growth_grain.h"
#include "core/image/gaussian.h"
#include "core/image/growth_random.h"
#include "core/image/position_hash.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tamlo::test {

/// A film's grain and curve limits, as its profile has them.
struct GrainFilm {
    const char* name;
    bool silver;
    GrainParams grain;
    Vec3d dmins, dmaxs;
};

inline const std::vector<GrainFilm>& grainFilms()
{
    static const std::vector<GrainFilm> films = [] {
        std::vector<GrainFilm> list{
            {"portra400", false, {}, {0.2, 0.55, 0.9}, {2.3, 2.65, 3.0}},
            {"trix400", true, {}, {0.28, 0.28, 0.28}, {2.45, 2.45, 2.45}},
            {"velvia50", false, {}, {0.15, 0.16, 0.17}, {3.34, 3.62, 3.8}},
        };
        const double sizes[]{8.4, 14.0, 5.4}, amounts[]{0.0715, 0.0638, 0.0768};
        for (std::size_t i = 0; i < list.size(); ++i) {
            list[i].grain.sizeUm = sizes[i];
            list[i].grain.amount = amounts[i];
        }
        list[0].grain.layerScale = Vec3d{1.0, 0.9, 1.35};
        list[0].grain.layerSizeScale = Vec3d{1.0, 1.0, 1.15};
        list[2].grain.layerScale = Vec3d{1.0, 0.95, 1.2};
        list[2].grain.layerSizeScale = Vec3d{1.0, 1.0, 1.1};
        return list;
    }();
    return films;
}

/// One layer of the twin. Silver: q, k; dye: delta and the clouds' sigma.
struct TwinLayer {
    bool silver = true;
    std::uint32_t seed = 0;
    double dmin = 0.0, dmax = 0.0, clumpUm = 0.0, cs = 0.0;
    double crystalUm = 0.0;
    double delta = 0.0, cloudSites = 0.0;
};

struct Twin {
    Plane density;
    double pxUm = 0.0;
    TwinLayer layer;

    std::int64_t scale() const { return std::max<std::int64_t>(std::llround(pxUm * 0.5), 1); }
    double site() const { return pxUm / static_cast<double>(scale()); }
    double span() const { return std::max(layer.dmax - layer.dmin, 1e-6); }

    /// The Gaussian of a plane with mirrored edges, in 64-bit floats throughout.
    static std::vector<double> blurred(const std::vector<double>& in, std::int64_t w, std::int64_t h,
                                       double sigma)
    {
        const auto radius = static_cast<std::int64_t>(sigma * 4.0 + 0.5);
        const std::vector<double> kernel = gaussianKernel1D(sigma, radius);
        std::vector<double> rows(in.size()), out(in.size());
        const auto at = [&](std::int64_t x, std::int64_t y) { return static_cast<std::size_t>(y * w + x); };
        for (std::int64_t y = 0; y < h; ++y)
            for (std::int64_t x = 0; x < w; ++x)
                for (std::int64_t i = -radius; i <= radius; ++i)
                    rows[at(x, y)] +=
                        kernel[static_cast<std::size_t>(i + radius)] * in[at(reflectIndex(x + i, w), y)];
        for (std::int64_t y = 0; y < h; ++y)
            for (std::int64_t x = 0; x < w; ++x)
                for (std::int64_t i = -radius; i <= radius; ++i)
                    out[at(x, y)] +=
                        kernel[static_cast<std::size_t>(i + radius)] * rows[at(x, reflectIndex(y + i, h))];
        return out;
    }

    double pixelValue(std::int64_t x, std::int64_t y) const
    {
        const double d = density.at(std::clamp<std::int64_t>(x, 0, density.width - 1),
                                    std::clamp<std::int64_t>(y, 0, density.height - 1));
        return layer.silver ? std::clamp(d - layer.dmin, 0.0, span()) * std::log(10.0) + 0.05 : d;
    }

    double ground(std::int64_t sx, std::int64_t sy) const
    {
        const double s = static_cast<double>(scale());
        const double fx = (static_cast<double>(sx) + 0.5) / s - 0.5,
                     fy = (static_cast<double>(sy) + 0.5) / s - 0.5;
        const auto x = static_cast<std::int64_t>(std::floor(fx)),
                   y = static_cast<std::int64_t>(std::floor(fy));
        const double wx = fx - std::floor(fx), wy = fy - std::floor(fy);
        return (pixelValue(x, y) * (1 - wx) + pixelValue(x + 1, y) * wx) * (1 - wy) +
               (pixelValue(x, y + 1) * (1 - wx) + pixelValue(x + 1, y + 1) * wx) * wy;
    }

    Plane finished(Plane light) const
    {
        const double sigma = 4.0 / pxUm;
        if (sigma > 0.3) light = gaussianFilter(std::move(light), sigma, EdgeMode::reflect);
        const double floorT = std::pow(10.0, -(layer.dmax - layer.dmin));
        return light.map([&](float t) {
            return static_cast<float>(layer.dmin - std::log10(std::max(static_cast<double>(t), floorT)));
        });
    }

    Plane full() const
    {
        const std::int64_t s = scale(), w = density.width * s, h = density.height * s;
        std::vector<double> g(static_cast<std::size_t>(w * h));
        for (std::int64_t y = 0; y < h; ++y)
            for (std::int64_t x = 0; x < w; ++x)
                g[static_cast<std::size_t>(y * w + x)] =
                    growth_normal(layer.seed, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
        const double sigma = std::max(layer.clumpUm / site(), 0.6);
        double squares = 0.0;
        for (const double tap : gaussianKernel1D(sigma, static_cast<std::int64_t>(sigma * 4.0 + 0.5)))
            squares += tap * tap;
        g = blurred(g, w, h, sigma);
        const double k = std::min(std::pow(layer.crystalUm / site(), 2.0), 1.0),
                     q = 1.0 / (1.0 - std::exp(-k));
        for (std::int64_t y = 0; y < h; ++y)
            for (std::int64_t x = 0; x < w; ++x) {
                double& v = g[static_cast<std::size_t>(y * w + x)];
                const double mod = std::exp(layer.cs * v / squares - layer.cs * layer.cs / 2.0);
                const float u = growth_unit(growth_hash(layer.seed, static_cast<std::int32_t>(x),
                                                        static_cast<std::int32_t>(y), 0x9E1));
                if (layer.silver) {
                    v = std::exp(-k * Grain::poisson(u, static_cast<float>(q * ground(x, y) * mod)));
                } else {
                    const double net = std::clamp(ground(x, y) - layer.dmin, 0.0, span());
                    v = layer.delta * Grain::poisson(u, static_cast<float>(net / layer.delta * mod));
                }
            }
        if (!layer.silver) {
            if (layer.cloudSites > 0.05) g = blurred(g, w, h, layer.cloudSites);
            for (double& v : g) v = std::pow(10.0, -v);
        }
        Plane light(density.width, density.height);
        float* out = light.mutableData();
        for (std::int64_t i = 0; i < light.count(); ++i) {
            double sum = 0.0;
            for (std::int64_t j = 0; j < s * s; ++j)
                sum += g[static_cast<std::size_t>((i / light.width * s + j / s) * w + i % light.width * s +
                                                  j % s)];
            out[i] = static_cast<float>(sum / static_cast<double>(s * s));
        }
        return finished(std::move(light));
    }

    Plane aggregate() const
    {
        const double k = std::min(std::pow(layer.crystalUm / site(), 2.0), 1.0),
                     q = 1.0 / (1.0 - std::exp(-k));
        const double share = Grain::aggClumpFactor(pxUm, layer.clumpUm), cs = layer.cs;
        const double sites = std::pow(pxUm / site(), 2.0);
        const Grain::CloudFactors clouds = Grain::aggCloudFactors(scale(), layer.cloudSites, layer.delta);
        Plane light(density.width, density.height);
        float* out = light.mutableData();
        for (std::int64_t i = 0; i < light.count(); ++i) {
            const auto x = static_cast<std::int32_t>(i % light.width),
                       y = static_cast<std::int32_t>(i / light.width);
            const double z = Grain::normalQuantile(growth_unit(growth_hash(layer.seed, x, y, 777)));
            const double net = std::clamp(density.at(x, y) - layer.dmin, 0.0, span());
            double m1 = 0.0, m1sq = 0.0, m2s = 0.0;
            for (std::size_t j = 0; j < 8; ++j) {
                const double mod = std::exp(cs * Grain::hermiteNodes[j] - cs * cs / 2.0);
                const double w = Grain::hermiteWeights[j], lam = q * pixelValue(x, y);
                const double e1 = layer.silver ? std::exp(-lam * (1.0 - std::exp(-k)) * mod)
                                               : std::pow(10.0, -net * clouds.kappa * mod);
                m1 += w * e1;
                m1sq += w * e1 * e1;
                m2s += w * std::exp(-lam * (1.0 - std::exp(-2.0 * k)) * mod);
            }
            if (layer.silver) {
                const double v = std::max(m2s - m1sq, 0.0) / sites + std::max(m1sq - m1 * m1, 0.0) * share;
                out[i] = static_cast<float>(std::clamp(m1 + z * std::sqrt(v), 1e-6, 1.0));
            } else {
                const double v = layer.delta * net * clouds.h / sites + std::pow(net * cs, 2.0) * share;
                const double mean = -std::log10(std::max(m1, 1e-30)) + 0.5 * std::log(10.0) * v;
                out[i] = static_cast<float>(std::pow(10.0, -std::max(mean + z * std::sqrt(v), 0.0)));
            }
        }
        return finished(std::move(light));
    }
};

/// The twin of layer c of a frame.
inline Twin twinOf(const GrainFilm& film, Plane density, std::size_t c, const Grain::GrowthFrame& frame)
{
    Twin twin;
    twin.pxUm = frame.formatLongUm / static_cast<double>(std::max(density.width, density.height));
    twin.density = std::move(density);
    TwinLayer& layer = twin.layer;
    layer.silver = film.silver;
    layer.dmin = film.dmins[c];
    layer.dmax = film.dmaxs[c];
    const double size = *film.grain.sizeUm, amount = frame.ampMult * *film.grain.amount;
    if (film.silver) {
        layer.seed = frame.seed;
        layer.crystalUm = std::clamp(size * 0.5 / 14.0, 0.25, 0.9);
        layer.clumpUm = std::max(frame.sizeMult, 0.1) * std::max(size * 0.5, 3.0);
        layer.cs = Grain::growthClumpSigma(amount, size, twin.site(), layer.dmin, layer.dmax);
    } else {
        const Grain::ColorCal cal =
            Grain::growthColorCal({amount, size, twin.site(), film.grain, film.dmins, film.dmaxs});
        layer.seed = frame.seed + 40 + static_cast<std::uint32_t>(c);
        layer.clumpUm = std::max(frame.sizeMult, 0.1) * std::max(size, 6.0);
        layer.cs = cal.css[c];
        layer.delta = cal.deltas[c];
        layer.cloudSites =
            std::max(frame.sizeMult, 0.1) * size * 0.3 * (*film.grain.layerSizeScale)[c] / twin.site();
    }
    return twin;
}

} // namespace tamlo::test
