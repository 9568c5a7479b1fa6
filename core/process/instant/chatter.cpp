#include "core/process/instant/chatter.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tamlo {
namespace {

constexpr double kNothing = 1e-6;
constexpr double kMostAmp = 10.0; // density, beyond any film's range
constexpr double kLeastSpan = 1e-6;
constexpr std::uint32_t kFineLayer = 61;

double held(const OptNumber& value, double otherwise, double most)
{
    return std::clamp(value.value_or(otherwise), -most, most);
}

double bySize(const std::optional<NumberMap>& table, std::string_view key, const OptNumber& common,
              double otherwise)
{
    if (table)
        if (const auto found = table->find(std::string(key)); found != table->end()) return found->second;
    return common.value_or(otherwise);
}

/// Number i of a list that is long enough, else of the usual one.
template <std::size_t N>
double listed(const OptList& list, const std::array<double, N>& usual, std::size_t i)
{
    const double v = list && list->size() >= N ? (*list)[i] : usual[i];
    return std::clamp(v, -1e3, 1e3);
}

double span(double from, double to)
{
    return std::max(to - from, kLeastSpan);
}

/// The fields of a plan on the picture's millimetres.
struct FieldMaker {
    Size picture;
    double ppmm;
    std::uint32_t seed;
    bool alongX;

    Film::MmSigma turned(double along, double across) const
    {
        return alongX ? Film::MmSigma{across, along} : Film::MmSigma{along, across};
    }
    NoiseField field(double along, double across, std::uint32_t layer) const
    {
        return Film::mmField(picture, ppmm, turned(along, across), {seed, layer});
    }
    /// A bar field with a round one mixed in, at unit deviation.
    NoiseField mixed(double along, double across, double round, double share, std::uint32_t layer) const
    {
        const Film::MmGrid grid(picture, ppmm, std::max({along, across, round}));
        Plane nodes = Film::mmNodes(grid, turned(along, across), {seed, layer});
        const Plane other = Film::mmNodes(grid, {round, round}, {seed, layer + 1});
        float* to = nodes.mutableData();
        for (std::int64_t i = 0; i < nodes.count(); ++i)
            to[i] += static_cast<float>(share) * other.data[static_cast<std::size_t>(i)];
        return NoiseField::unitOnNodes(picture, std::move(nodes), grid.pxPerNode());
    }
};

/// The pull begins and ends with a jolt.
std::vector<float> endStrength(Size picture, const ChatterParams& chatter, const Film::PictureScale& scale,
                               double u)
{
    constexpr double kEndMm = 8.0;
    constexpr std::array<double, 2> kEndGain{0.3, 1.0};
    const bool given = chatter.endGain && !chatter.endGain->empty();
    const double first = std::clamp(given ? chatter.endGain->front() : kEndGain[0], -1e3, 1e3);
    const double last = std::clamp(given ? chatter.endGain->back() : kEndGain[1], -1e3, 1e3);
    const double e = first + (last - first) * u;
    const double reachMm = std::max(chatter.endMm.value_or(kEndMm), kNothing);
    std::vector<float> ends(static_cast<std::size_t>(std::max(picture.width, picture.height)));
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const double mm = (static_cast<double>(i) + 0.5) / scale.ppmm;
        ends[i] = static_cast<float>(
            1.0 + e * (std::exp(-mm / reachMm) + std::exp(-(scale.longMm - mm) / reachMm)));
    }
    return ends;
}

void planTone(ChatterParams32& to, const ChatterParams& chatter)
{
    constexpr std::array<double, 3> kGain{0.1, 0.8, 0.3};
    constexpr std::array<double, 2> kRed{0.65, 1.35}, kBlue{1.3, 0.9}, kRange{0.3, 1.2};
    const ChatterColor colour = chatter.color.value_or(ChatterColor{});
    const auto f = [](double v) { return static_cast<float>(v); };
    to.d0 = f(listed(chatter.dGain, kGain, 0));
    to.dSpan = f(span(listed(chatter.dGain, kGain, 0), listed(chatter.dGain, kGain, 1)));
    to.fineFloor = f(listed(chatter.dGain, kGain, 2));
    to.coarseFloor = f(held(chatter.coarseFloor, 0.7, 1e3));
    to.colourD0 = f(listed(colour.dRange, kRange, 0));
    to.colourSpan = f(span(listed(colour.dRange, kRange, 0), listed(colour.dRange, kRange, 1)));
    to.r0 = f(listed(colour.r, kRed, 0));
    to.rSpan = f(listed(colour.r, kRed, 1)) - to.r0;
    to.b0 = f(listed(colour.b, kBlue, 0));
    to.bSpan = f(listed(colour.b, kBlue, 1)) - to.b0;
}

} // namespace

Film::ChatterPlan Film::peelChatter(Size picture, int layers, const ChatterParams& chatter,
                                    const PictureScale& scale, Roughness roughness, std::string_view sizeKey,
                                    GrainRNG& rng)
{
    constexpr double kAmp = 0.0125, kCardVar = 0.3;
    const double knob = std::max(roughness.devMottle, 0.0);
    const double rough = std::clamp(0.5 * knob, 0.0, 1.0);
    const double v = held(chatter.cardVar, kCardVar, 1e3);
    const double card = v > kNothing ? (1.0 - v) + 2.0 * v * rng.random() : 1.0;
    ChatterPlan plan;
    plan.alongX = picture.width > picture.height;
    plan.ends = endStrength(picture, chatter, scale, rng.random());
    const FieldMaker make{picture, scale.ppmm, static_cast<std::uint32_t>(rng.nextUInt64()), plan.alongX};
    planTone(plan.params, chatter);

    std::uint32_t layer = kFineLayer;
    const double along = chatter.alongMm.value_or(0.75), across = chatter.acrossMm.value_or(3.5);
    const double isoShare = held(chatter.isoShare, 0.3, 1e3);
    plan.fine = isoShare > kNothing
                    ? make.mixed(along, across, chatter.isoMm.value_or(0.5), isoShare, layer++)
                    : make.field(along, across, layer);
    const double coarseShare = held(chatter.coarseShare, 0.5, 1e3);
    double c = coarseShare;
    if (coarseShare > kNothing) {
        plan.coarse =
            make.field(chatter.coarseAlongMm.value_or(2.5), chatter.coarseAcrossMm.value_or(8.0), ++layer);
        c = 1.0 - rough * (1.0 - coarseShare);
    }
    const double clusterMm = chatter.clusterMm.value_or(8.0);
    plan.clumps = make.field(clusterMm, clusterMm, ++layer);

    const auto f = [](double x) { return static_cast<float>(x); };
    ChatterParams32& p = plan.params;
    const double n = std::hypot(c, 1.0 - c);
    p.fineGain = f((1.0 - c) / n) * plan.fine.scale();
    if (plan.coarse) p.coarseGain = f(c / n) * plan.coarse->scale();
    p.clumpGain = f(held(chatter.clusterMod, 0.5, 1e3)) * plan.clumps.scale();
    const double amp = bySize(chatter.ampBySize, sizeKey, chatter.amp, kAmp);
    p.strength = f(std::clamp(roughness.temperature * knob * amp * card, -kMostAmp, kMostAmp));

    const double paste = std::min(roughness.temperature * knob * chatter.pasteAmp.value_or(0.0), kMostAmp);
    if (paste > kNothing) {
        const double mm = bySize(chatter.pasteMmBySize, sizeKey, chatter.pasteMm, 5.7);
        const std::size_t count = layers == 3 ? 4 : 1;
        for (std::size_t k = 0; k < count; ++k) {
            plan.paste.push_back(make.field(mm, mm, ++layer));
            p.pasteGain[k] = f(paste) * plan.paste.back().scale();
        }
    }
    return plan;
}

Film::ChatterRows::ChatterRows(const ChatterPlan& plan, Size picture)
    : plan_(plan), fine_(plan.fine), clumps_(plan.clumps)
{
    if (plan.coarse) coarse_.emplace(*plan.coarse);
    for (const NoiseField& field : plan.paste) paste_.emplace_back(field);
    if (!plan.alongX) ends_.resize(static_cast<std::size_t>(picture.width));
}

void Film::ChatterRows::apply(std::int64_t y, const DensityRow& density)
{
    ChatterRow row;
    row.fine = fine_.row(y);
    row.clumps = clumps_.row(y);
    if (coarse_) row.coarse = coarse_->row(y);
    for (std::size_t k = 0; k < paste_.size(); ++k) row.paste[k] = paste_[k].row(y);
    if (!plan_.alongX) std::fill(ends_.begin(), ends_.end(), plan_.ends[static_cast<std::size_t>(y)]);
    row.ends = plan_.alongX ? plan_.ends.data() : ends_.data();
    peel_chatter(density, row, plan_.params);
}

} // namespace tamlo
