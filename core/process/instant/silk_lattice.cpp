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

/// The bare lattice, not normalised: what its rows are drawn from.
struct BareLattice {
    Size picture;
    bool alongX = false; ///< the pull runs along the rows
    NoiseField wanderU, wanderV, depth;
    LatticeParams32 params;
    std::vector<float> columns, rows; ///< phases along the pull or across it, for each column and each row
};

BareLattice planLattice(Size picture, const SilkLatticeParams& lattice, double ppmm, double rough,
                        std::uint32_t seed)
{
    const double pitchMm = std::max(held(lattice.pitchMm, 0.36), kLeastMm);
    const double rowMm = std::max(held(lattice.rowMm, 0.72), kLeastMm);
    const double wander = held(lattice.jitterMm, 0.02) * rough;
    const double wanderMm = lattice.jitterSigmaMm.value_or(1.5), depthMm = lattice.modSigmaMm.value_or(2.0);
    const auto field = [&](double mm, std::uint32_t layer) {
        return Film::mmField(picture, ppmm, {mm, mm}, {seed, layer});
    };
    BareLattice bare{picture,
                     picture.width > picture.height,
                     field(wanderMm, kWanderULayer),
                     field(wanderMm, kWanderVLayer),
                     field(depthMm, kDepthLayer),
                     {},
                     {},
                     {}};
    const double fade = waveFade(pitchMm * ppmm) * waveFade(rowMm * ppmm);
    bare.params.wanderU = static_cast<float>(wander / pitchMm) * bare.wanderU.scale();
    bare.params.wanderV = static_cast<float>(wander / rowMm) * bare.wanderV.scale();
    bare.params.dot = static_cast<float>(held(lattice.dot, 0.8) * fade);
    bare.params.groove = static_cast<float>(held(lattice.rowLine, 1.0) * waveFade(0.5 * rowMm * ppmm));
    bare.params.depth = static_cast<float>(held(lattice.mod, 0.3)) * bare.depth.scale();
    bare.columns = phases(picture.width, ppmm, bare.alongX ? pitchMm : rowMm);
    bare.rows = phases(picture.height, ppmm, bare.alongX ? rowMm : pitchMm);
    return bare;
}

/// Draws rows of a lattice, one band's at a time.
class BareRows {
public:
    explicit BareRows(const BareLattice& bare)
        : bare_(bare), u_(bare.wanderU), v_(bare.wanderV), depth_(bare.depth), level_(bare.columns.size())
    {}
    void row(std::int64_t y, float* to)
    {
        std::fill(level_.begin(), level_.end(), bare_.rows[static_cast<std::size_t>(y)]);
        const float *along = bare_.alongX ? bare_.columns.data() : level_.data(),
                    *across = bare_.alongX ? level_.data() : bare_.columns.data();
        silk_lattice_f(to, {along, across, u_.row(y), v_.row(y), depth_.row(y)}, bare_.picture.width,
                       bare_.params);
    }

private:
    const BareLattice& bare_;
    NoiseField::Rows u_, v_, depth_;
    std::vector<float> level_;
};

/// Fine noise of the pixels.
Plane grainPlane(Size picture, double sigmaPx, NoiseKey key)
{
    constexpr double kLeastPx = 0.3, kMostPx = 64.0;
    Plane grain = noisePlane(picture, key);
    if (sigmaPx < kLeastPx) return grain;
    return blurChannel(std::move(grain), std::min(sigmaPx, kMostPx));
}

/// The lattice with a share of fine noise in it, and what brings it to unit deviation.
Film::LatticePlan roughLattice(const BareLattice& bare, double share, double sigmaPx, NoiseKey key)
{
    const std::int64_t width = bare.picture.width;
    const bool rough = share != 0.0;
    Film::LatticePlan plan;
    plan.pattern = rough ? grainPlane(bare.picture, sigmaPx, key) : Plane(width, bare.picture.height);
    const auto own = static_cast<float>(1.0 - share);
    const float other = rough ? static_cast<float>(share) * unitScale(planeStats(plan.pattern)) : 0.0f;
    float* pattern = plan.pattern.mutableData();
    // In the place of the noise, row by row, and summed while it is at hand.
    const auto lay = [&](std::int64_t y, BareRows& rows, std::vector<float>& line) {
        float* to = pattern + y * width;
        rows.row(y, rough ? line.data() : to);
        if (rough)
            for (std::size_t i = 0; i < line.size(); ++i) to[i] = own * line[i] + other * to[i];
    };
    const auto line = [&] { return std::vector<float>(static_cast<std::size_t>(width)); };
    if (plan.pattern.count() == 0) return plan;
    {
        BareRows rows(bare);
        std::vector<float> first = line();
        lay(0, rows, first);
    }
    const float shift = pattern[0];
    std::vector<RunSums> sums(static_cast<std::size_t>(bare.picture.height));
    parallelBands(bare.picture.height, width * 4, [&](std::int64_t start, std::int64_t end) {
        BareRows rows(bare);
        std::vector<float> scratch = line();
        for (std::int64_t y = start; y < end; ++y) {
            if (y > 0) lay(y, rows, scratch);
            sums[static_cast<std::size_t>(y)] = field_sums(pattern + y * width, width, shift);
        }
    });
    plan.gain.scale = unitScale(statsOfRows(sums, static_cast<double>(plan.pattern.count()), shift));
    return plan;
}

} // namespace

Film::LatticePlan Film::silkLattice(Size picture, const SilkLatticeParams& lattice, const PictureScale& scale,
                                    double devMottle, std::uint32_t textureSeed, GrainRNG& rng)
{
    constexpr std::array<double, 3> kGain{0.0, 1.3, 0.15};
    const double knob = std::max(devMottle, 0.0);
    const auto seed = static_cast<std::uint32_t>(rng.nextUInt64());
    const bool listed = lattice.dGain && lattice.dGain->size() >= kGain.size();
    const auto gain = [&](std::size_t i) {
        return std::clamp(listed ? (*lattice.dGain)[i] : kGain[i], -kMost, kMost);
    };
    const auto amp = static_cast<float>(std::clamp(lattice.amp.value_or(0.0) * knob, -10.0, 10.0));
    if (amp == 0.0f) return {};
    LatticePlan plan =
        roughLattice(planLattice(picture, lattice, scale.ppmm, std::clamp(0.5 * knob, 0.0, 1.0), seed),
                     std::clamp(held(lattice.grain, 0.38), 0.0, 1.0),
                     scale.ppmm * lattice.grainMm.value_or(0.04), {textureSeed, kGrainLayer});
    plan.gain.amp = amp;
    plan.gain.d0 = static_cast<float>(gain(0));
    plan.gain.dSpan = static_cast<float>(std::max(gain(1) - gain(0), 1e-6));
    plan.gain.floor = static_cast<float>(gain(2));
    return plan;
}

} // namespace tamlo
