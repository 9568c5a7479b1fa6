#include "core/process/instant/silk_lattice.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/process/noise/mm_field.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo {
namespace {

constexpr double kMost = 1e3;
constexpr double kLeastMm = 1e-3;
constexpr std::uint32_t kWanderULayer = 71, kWanderVLayer = 72, kDepthLayer = 73, kGrainLayer = 74;

double held(const OptNumber& value, double otherwise)
{
    return std::clamp(value.value_or(otherwise), -kMost, kMost);
}

/// What of a wave is drawn: all of it from four pixels a period on, nothing at two.
double waveFade(double periodPx)
{
    return std::clamp(periodPx / 2.0 - 1.0, 0.0, 1.0);
}

/// Phases in turns of a wave at the centres of a line of pixels.
std::vector<float> phases(std::int64_t pixels, double ppmm, double periodMm)
{
    std::vector<float> out(static_cast<std::size_t>(pixels));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double turns = (static_cast<double>(i) + 0.5) / ppmm / periodMm;
        out[i] = static_cast<float>(turns - std::floor(turns));
    }
    return out;
}

/// The bare lattice, not normalised.
Plane latticePattern(Size picture, const SilkLatticeParams& lattice, double ppmm, double rough,
                     std::uint32_t seed)
{
    const bool alongX = picture.width > picture.height;
    const double pitchMm = std::max(held(lattice.pitchMm, 0.36), kLeastMm);
    const double rowMm = std::max(held(lattice.rowMm, 0.72), kLeastMm);
    const double wander = held(lattice.jitterMm, 0.02) * rough;
    const double wanderMm = lattice.jitterSigmaMm.value_or(1.5), depthMm = lattice.modSigmaMm.value_or(2.0);
    const auto field = [&](double mm, std::uint32_t layer) {
        return Film::mmField(picture, ppmm, {mm, mm}, {seed, layer});
    };
    const NoiseField u = field(wanderMm, kWanderULayer), v = field(wanderMm, kWanderVLayer),
                     depth = field(depthMm, kDepthLayer);

    const double fade = waveFade(pitchMm * ppmm) * waveFade(rowMm * ppmm);
    LatticeParams32 params;
    params.wanderU = static_cast<float>(wander / pitchMm) * u.scale();
    params.wanderV = static_cast<float>(wander / rowMm) * v.scale();
    params.dot = static_cast<float>(held(lattice.dot, 0.8) * fade);
    params.groove = static_cast<float>(held(lattice.rowLine, 1.0) * waveFade(0.5 * rowMm * ppmm));
    params.depth = static_cast<float>(held(lattice.mod, 0.3)) * depth.scale();

    // Along the pull and across it, for each column and each row.
    const std::vector<float> columns = phases(picture.width, ppmm, alongX ? pitchMm : rowMm);
    const std::vector<float> rows = phases(picture.height, ppmm, alongX ? rowMm : pitchMm);
    Plane out(picture.width, picture.height);
    float* to = out.mutableData();
    parallelBands(picture.height, picture.width * 4, [&](std::int64_t start, std::int64_t end) {
        NoiseField::Rows uRows(u), vRows(v), depthRows(depth);
        std::vector<float> level(columns.size());
        for (std::int64_t y = start; y < end; ++y) {
            std::fill(level.begin(), level.end(), rows[static_cast<std::size_t>(y)]);
            const float *along = alongX ? columns.data() : level.data(),
                        *across = alongX ? level.data() : columns.data();
            silk_lattice_f(to + y * picture.width,
                           {along, across, uRows.row(y), vRows.row(y), depthRows.row(y)}, picture.width,
                           params);
        }
    });
    return out;
}

/// Mixes a share of fine noise in.
void roughen(Plane& pattern, double share, double sigmaPx, NoiseKey key)
{
    constexpr double kLeastPx = 0.3, kMostPx = 64.0;
    if (share == 0.0) return;
    Plane grain = noisePlane(pattern.size(), key);
    if (sigmaPx >= kLeastPx) grain = blurChannel(std::move(grain), std::min(sigmaPx, kMostPx));
    const float own = static_cast<float>(1.0 - share);
    const float other = static_cast<float>(share) * unitScale(planeStats(grain));
    float* to = pattern.mutableData();
    parallelBands(pattern.height, pattern.width, [&](std::int64_t start, std::int64_t end) {
        const float* from = grain.row(0);
        for (std::int64_t i = start * pattern.width; i < end * pattern.width; ++i)
            to[i] = own * to[i] + other * from[i];
    });
}

} // namespace

Film::LatticePlan Film::silkLattice(Size picture, const SilkLatticeParams& lattice, const PictureScale& scale,
                                    double devMottle, std::uint32_t textureSeed, GrainRNG& rng)
{
    constexpr std::array<double, 3> kGain{0.0, 1.3, 0.15};
    const double knob = std::max(devMottle, 0.0);
    const auto seed = static_cast<std::uint32_t>(rng.nextUInt64());
    LatticePlan plan;
    const bool listed = lattice.dGain && lattice.dGain->size() >= kGain.size();
    const auto gain = [&](std::size_t i) {
        return std::clamp(listed ? (*lattice.dGain)[i] : kGain[i], -kMost, kMost);
    };
    plan.gain.amp = static_cast<float>(std::clamp(lattice.amp.value_or(0.0) * knob, -10.0, 10.0));
    plan.gain.d0 = static_cast<float>(gain(0));
    plan.gain.dSpan = static_cast<float>(std::max(gain(1) - gain(0), 1e-6));
    plan.gain.floor = static_cast<float>(gain(2));
    if (plan.gain.amp == 0.0f) return plan;
    plan.pattern = latticePattern(picture, lattice, scale.ppmm, std::clamp(0.5 * knob, 0.0, 1.0), seed);
    roughen(plan.pattern, std::clamp(held(lattice.grain, 0.38), 0.0, 1.0),
            scale.ppmm * lattice.grainMm.value_or(0.04), {textureSeed, kGrainLayer});
    plan.pattern = normalizePlane(std::move(plan.pattern));
    return plan;
}

} // namespace tamlo
