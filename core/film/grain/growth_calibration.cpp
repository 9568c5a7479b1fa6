#include "core/film/grain/growth_calibration.h"

#include "core/film/grain/classic_grain.h"
#include "core/film/grain/growth_geometry.h"
#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/image/growth_random.h"
#include "core/image/random.h"
#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <optional>

namespace tamlo::Grain {
namespace {

/// Sites along a side of a test patch. Both patches are read at three sites to a sample of 6 µm, whatever the
/// pitch.
constexpr std::int64_t kPatchSide = 720;
constexpr std::int64_t kSampleSites = 3;
constexpr double kSampleUm = 6.0;
/// Rows of white noise that share one stream.
constexpr std::int64_t kWhiteRows = 256;
constexpr std::uint64_t kSilverPatch = 12345, kDyePatch = 54321;

double keyed(double value, double steps)
{
    return std::isfinite(value) ? std::clamp(value * steps, -1e15, 1e15) : 0.0;
}

std::int64_t keyOf(double value, double steps)
{
    return roundAway(keyed(value, steps));
}

double valueOf(std::int64_t key, double steps)
{
    return static_cast<double>(key) / steps;
}

/// Results by key under one lock. Since a result follows from its key, dropping one costs time and nothing
/// else.
template <typename Key, typename Value>
class Cache {
public:
    template <typename F>
    Value get(const Key& key, const F& compute)
    {
        {
            const std::lock_guard hold(lock_);
            if (const auto found = values_.find(key); found != values_.end()) return found->second;
        }
        const Value value = compute();
        put(key, value);
        return value;
    }
    void put(const Key& key, const Value& value)
    {
        const std::lock_guard hold(lock_);
        if (values_.size() >= kMost) values_.clear();
        values_[key] = value;
    }

private:
    static constexpr std::size_t kMost = 256;
    std::mutex lock_;
    std::map<Key, Value> values_;
};

/// The patch's clump field of unit deviation, and a uniform for each site.
struct Patch {
    Plane clump;
    std::vector<float> uniforms;
};

Patch calibPatch(std::uint64_t patchKey, double clumpSites)
{
    Patch patch{Plane(kPatchSide, kPatchSide), std::vector<float>(kPatchSide * kPatchSide)};
    float* white = patch.clump.mutableData();
    for (std::int64_t row = 0; row < kPatchSide; row += kWhiteRows) {
        const auto block = static_cast<std::uint64_t>(row / kWhiteRows);
        const std::int64_t count = std::min(kWhiteRows, kPatchSide - row) * kPatchSide;
        const std::vector<float> normals =
            CalibRNG::normals(CalibRNG::seed(std::array{block + 500, patchKey}), 0, count);
        std::copy(normals.begin(), normals.end(), white + row * kPatchSide);
    }
    patch.clump = gaussianFilter(std::move(patch.clump), clumpSites, EdgeMode::reflect);
    const float share = static_cast<float>(1.0 / std::max(patch.clump.std(), 1e-6));
    float* g = patch.clump.mutableData();
    for (std::int64_t i = 0; i < patch.clump.count(); ++i) g[i] *= share;

    const std::uint64_t seed = CalibRNG::seed(std::array{std::uint64_t{900}, patchKey});
    for (std::size_t i = 0; i < patch.uniforms.size(); ++i) {
        const std::uint64_t z = splitMixFinaliser(seed + (i + 1) * kGoldenStep);
        patch.uniforms[i] = static_cast<float>(z >> 40) * 0x1p-24f;
    }
    return patch;
}

/// calibClampMod at a site: log-normal of mean 1.
float clumping(float g, float cs)
{
    return std::exp(g * cs - cs * cs * 0.5f);
}

/// light(site index, clump modulation) over a patch.
template <typename F>
Plane patchOf(const Patch& patch, float cs, const F& light)
{
    Plane out(kPatchSide, kPatchSide);
    float* values = out.mutableData();
    parallelBands(kPatchSide, kPatchSide, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * kPatchSide; i < end * kPatchSide; ++i)
            values[i] = light(static_cast<std::size_t>(i), clumping(patch.clump.data.data()[i], cs));
    });
    return out;
}

/// Granularity of a patch of light as a scanner of 6 µm samples reads it.
double patchSigma48(const Plane& light)
{
    constexpr std::int64_t kSide = kPatchSide / kSampleSites;
    Plane sampled(kSide, kSide);
    float* out = sampled.mutableData();
    for (std::int64_t y = 0; y < kSide; ++y)
        for (std::int64_t x = 0; x < kSide; ++x) {
            float sum = 0.0f;
            for (std::int64_t i = 0; i < kSampleSites * kSampleSites; ++i)
                sum += light.at(x * kSampleSites + i % kSampleSites, y * kSampleSites + i / kSampleSites);
            out[y * kSide + x] = sum / static_cast<float>(kSampleSites * kSampleSites);
        }
    const Plane spread = gaussianFilter(std::move(sampled), growthPsfUm / kSampleUm, EdgeMode::reflect);
    return disc48Std(spread.map([](float t) { return -std::log10(std::max(t, 1e-4f)); }), kSampleUm);
}

/// calibGrowthFieldBW: light through silver of net density 1, without fog.
Plane calibGrowthFieldBW(const Patch& patch, double crystalSites, float cs)
{
    const auto k = static_cast<float>(std::min(crystalSites * crystalSites, 1.0));
    const float mean = ln10f * static_cast<float>(1.0 / -std::expm1(-static_cast<double>(k)));
    return patchOf(patch, cs, [&](std::size_t i, float mod) {
        const float count = poisson(patch.uniforms[i], std::max(mean * mod, 1e-9f));
        return std::exp(-k * count);
    });
}

/// calibGrowthLayerT: light through a dye layer of net density 1. normals holds the inverse normal of each
/// site's uniform.
Plane calibGrowthLayerT(const Patch& patch, const std::vector<float>& normals, double cloudSites, float cs)
{
    constexpr float kDelta = 0.05f;
    Plane dye = patchOf(patch, cs, [&](std::size_t i, float mod) {
        const float lam = std::max(mod / kDelta, 1e-9f);
        if (lam < kPoissonNormalFrom) return kDelta * poissonByInversion(patch.uniforms[i], lam);
        return kDelta * std::max(std::round(lam + std::sqrt(lam) * normals[i]), 0.0f);
    });
    if (cloudSites > 0.05) dye = gaussianFilter(std::move(dye), cloudSites, EdgeMode::reflect);
    float* values = dye.mutableData();
    for (std::int64_t i = 0; i < dye.count(); ++i) values[i] = std::exp(-ln10f * values[i]);
    return dye;
}

float solveClumpSigma(double target, const Patch& patch, double crystalSites)
{
    const double s0 = patchSigma48(calibGrowthFieldBW(patch, crystalSites, 0.0f));
    const double s1 = std::max(
        patchSigma48(calibGrowthFieldBW(patch, crystalSites, static_cast<float>(growthClumpTestCs))), s0);
    const double perCs = std::sqrt(std::max(s1 * s1 - s0 * s0, 1e-12)) / growthClumpTestCs;
    const double cs = std::sqrt(std::max(target * target - s0 * s0, 0.0)) / perCs;
    return static_cast<float>(std::clamp(cs, 0.0, 0.6));
}

/// A key and what else decides the result: the density spans and, in colour, the size scales.
struct SilverCacheKey {
    GrowthKey key;
    std::int64_t span = 0;
    auto operator<=>(const SilverCacheKey&) const = default;
};
struct ColorCacheKey {
    ColorKey key;
    std::array<std::int64_t, 3> spans{}, sizeScales{};
    auto operator<=>(const ColorCacheKey&) const = default;
};

/// The grain that a key stands for.
GrainParams grainOf(const ColorCacheKey& cacheKey)
{
    GrainParams grain;
    grain.sizeUm = valueOf(cacheKey.key.sizeUm, 100.0);
    grain.amount = valueOf(cacheKey.key.amount, 1e5);
    grain.layerScale.emplace();
    grain.layerSizeScale.emplace();
    for (std::size_t c = 0; c < 3; ++c) {
        (*grain.layerScale)[c] = valueOf(cacheKey.key.layers[c], 1000.0);
        (*grain.layerSizeScale)[c] = valueOf(cacheKey.sizeScales[c], 1000.0);
    }
    return grain;
}

/// The patch's uniforms as normals.
std::vector<float> normalsOf(const Patch& patch)
{
    std::vector<float> normals(patch.uniforms.size());
    parallelBands(kPatchSide, kPatchSide * 16, [&](std::int64_t start, std::int64_t end) {
        for (auto i = static_cast<std::size_t>(start * kPatchSide);
             i < static_cast<std::size_t>(end * kPatchSide); ++i) {
            const double x =
                std::clamp(2.0 * static_cast<double>(patch.uniforms[i]) - 1.0, -0.9999998, 0.9999998);
            normals[i] = static_cast<float>(std::numbers::sqrt2 * erfinvD(x));
        }
    });
    return normals;
}

Cache<SilverCacheKey, float>& silverCache()
{
    static Cache<SilverCacheKey, float> cache;
    return cache;
}
Cache<ColorCacheKey, ColorCal>& colorCache()
{
    static Cache<ColorCacheKey, ColorCal> cache;
    return cache;
}

/// The bounds that the solutions are clamped to, which a result from elsewhere must keep.
constexpr float kMostSilverSigma = 0.6f, kMostColorSigma = 0.3f, kLeastDelta = 0.002f, kMostDelta = 0.5f;

constexpr std::int64_t kSilverRecord = 1, kColorRecord = 2;

CalibrationRecord recordOf(const SilverCacheKey& k, float sigma)
{
    return {{kSilverRecord, k.key.amount, k.key.sizeUm, k.key.site, k.span}, {sigma}};
}

CalibrationRecord recordOf(const ColorCacheKey& k, const ColorCal& cal)
{
    CalibrationRecord record{{kColorRecord, k.key.amount, k.key.sizeUm, k.key.site}, {}};
    for (const auto& part : {k.key.layers, k.spans, k.sizeScales})
        record.key.insert(record.key.end(), part.begin(), part.end());
    for (const Vec3f& part : {cal.deltas, cal.css})
        record.values.insert(record.values.end(), part.begin(), part.end());
    return record;
}

bool isWithin(float value, float least, float most)
{
    return value >= least && value <= most; // false for what is no number
}

thread_local std::vector<CalibrationRecord>* notes = nullptr;

ColorCal calibrateColor(const ColorCacheKey& cacheKey)
{
    const GrainParams grain = grainOf(cacheKey);
    const double sizeUm = valueOf(cacheKey.key.sizeUm, 100.0),
                 site = std::max(valueOf(cacheKey.key.site, 1000.0), 1e-3);
    Vec3d dmins{}, dmaxs{};
    for (std::size_t c = 0; c < 3; ++c) dmaxs[c] = valueOf(cacheKey.spans[c], 1e5);
    const Vec3d targets = classicSigma48Color(grain, dmins, dmaxs);
    const Patch patch = calibPatch(kDyePatch, growthClumpSites(growthClumpUm(sizeUm, true, 1.0), site));
    const std::vector<float> normals = normalsOf(patch);

    ColorCal cal;
    for (std::size_t c = 0; c < 3; ++c) {
        const double cloud = growthCloudSites(sizeUm, (*grain.layerSizeScale)[c], 1.0, site);
        const double s0 = patchSigma48(calibGrowthLayerT(patch, normals, cloud, 0.0f));
        const double s1 =
            patchSigma48(calibGrowthLayerT(patch, normals, cloud, static_cast<float>(growthColorCs)));
        const double e = std::sqrt(std::max(s1 * s1 - s0 * s0, 0.0)), t = targets[c];
        const double cs =
            std::clamp(t * std::sqrt(growthColorClumpShare) / std::max(e, 1e-9) * growthColorCs, 0.0, 0.3);
        const double clumps = e * cs / growthColorCs;
        const double clouds = std::max(t * t - clumps * clumps, 0.1 * t * t);
        cal.css[c] = static_cast<float>(cs);
        cal.deltas[c] = static_cast<float>(std::clamp(clouds * 0.05 / std::max(s0 * s0, 1e-12), 0.002, 0.5));
    }
    return cal;
}

} // namespace

float growthClumpSigma(double amount, double sizeUm, double site, double dmin, double dmax)
{
    const SilverCacheKey key{{keyOf(amount, 1e5), keyOf(sizeUm, 100.0), keyOf(site, 1000.0)},
                             keyOf(dmax - dmin, 1e5)};
    const float sigma = silverCache().get(key, [&] {
        const double size = valueOf(key.key.sizeUm, 100.0),
                     pitch = std::max(valueOf(key.key.site, 1000.0), 1e-3);
        GrainParams grain;
        grain.sizeUm = size;
        grain.amount = valueOf(key.key.amount, 1e5);
        const double target = classicSigma48(grain, 0.0, valueOf(key.span, 1e5));
        const Patch patch =
            calibPatch(kSilverPatch, growthClumpSites(growthClumpUm(size, false, 1.0), pitch));
        return solveClumpSigma(target, patch, growthCrystalUm(size) / pitch);
    });
    if (notes) notes->push_back(recordOf(key, sigma));
    return sigma;
}

ColorCal growthColorCal(const ColorCalInput& input)
{
    const Vec3d scale = growthLayerScale(input.grain), sizeScale = growthLayerSizeScale(input.grain);
    ColorCacheKey key{
        {keyOf(input.baseAmount, 1e5), keyOf(input.baseSizeUm, 100.0), keyOf(input.site, 1000.0), {}},
        {},
        {}};
    for (std::size_t c = 0; c < 3; ++c) {
        key.key.layers[c] = keyOf(scale[c], 1000.0);
        key.spans[c] = keyOf(input.dmaxs[c] - input.dmins[c], 1e5);
        key.sizeScales[c] = keyOf(sizeScale[c], 1000.0);
    }
    const ColorCal cal = colorCache().get(key, [&] { return calibrateColor(key); });
    if (notes) notes->push_back(recordOf(key, cal));
    return cal;
}

CalibrationNotes::CalibrationNotes(std::vector<CalibrationRecord>& into) : outer_(notes)
{
    notes = &into;
}

CalibrationNotes::~CalibrationNotes()
{
    notes = outer_;
}

bool addCalibration(const CalibrationRecord& record)
{
    const auto& [key, values] = record;
    constexpr std::size_t kSilverKey = 5, kColorKey = 13;
    if (key.size() == kSilverKey && key[0] == kSilverRecord && values.size() == 1 &&
        isWithin(values[0], 0.0f, kMostSilverSigma)) {
        silverCache().put({{key[1], key[2], key[3]}, key[4]}, values[0]);
        return true;
    }
    if (key.size() != kColorKey || key[0] != kColorRecord || values.size() != 6) return false;
    ColorCal cal;
    for (std::size_t c = 0; c < 3; ++c) {
        cal.deltas[c] = values[c];
        cal.css[c] = values[c + 3];
        if (!isWithin(cal.deltas[c], kLeastDelta, kMostDelta) || !isWithin(cal.css[c], 0.0f, kMostColorSigma))
            return false;
    }
    const auto three = [&](std::size_t at) { return std::array{key[at], key[at + 1], key[at + 2]}; };
    colorCache().put({{key[1], key[2], key[3], three(4)}, three(7), three(10)}, cal);
    return true;
}

Vec3d growthLayerScale(const GrainParams& grain)
{
    return grain.layerScale.value_or(Vec3d{1.0, 0.9, 1.35});
}

Vec3d growthLayerSizeScale(const GrainParams& grain)
{
    return grain.layerSizeScale.value_or(Vec3d{1.0, 1.0, 1.2});
}

} // namespace tamlo::Grain
