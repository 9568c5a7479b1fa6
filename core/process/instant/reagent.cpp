#include "core/process/instant/reagent.h"

#include "core/image/gaussian.h"
#include "core/process/noise/noise_passes.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr double kLeastAmp = 1e-5; // density that nobody sees
constexpr double kMostAmp = 10.0;  // beyond any film's range
constexpr std::uint32_t kSilkLayer = 6;
constexpr std::uint32_t kFineLayer = 8;
constexpr double kFineSigmaPx = 0.6;

/// A strength in density; 0 where it would not be seen.
double strength(const OptNumber& amp, double knob = 1.0)
{
    const double a = amp.value_or(0.0) * knob;
    return a > kLeastAmp ? std::min(a, kMostAmp) : 0.0;
}

void planMottle(Film::ReagentPlan& plan, Size picture, int layers, const TextureParams& texture, double pxUm)
{
    constexpr double kScale = 0.05, kLeastPx = 4.0, kMostWidths = 64.0;
    constexpr double kTogether = 0.75, kApart = 0.45; // of the dyes
    const double a = strength(texture.mottleAmp);
    if (a == 0.0) return;
    const double width = static_cast<double>(picture.width);
    const double sigmaPx =
        std::max(std::min(texture.mottleScale.value_or(kScale), kMostWidths) * width, kLeastPx);
    const auto field = [&](std::uint32_t layer) {
        return NoiseField::gaussian(picture, sigmaPx * pxUm, pxUm, {plan.seed, layer});
    };
    plan.mottle = field(0);
    plan.mottleGain = static_cast<float>(kTogether * a) * plan.mottle->scale();
    plan.layerMottleGain = static_cast<float>(kApart * a);
    if (layers == 3)
        for (std::uint32_t c = 0; c < 3; ++c) plan.layerMottle.push_back(field(c + 1));
}

void planSilk(Film::ReagentPlan& plan, Size picture, const TextureParams& texture, double pxUm,
              double devMottle)
{
    constexpr double kScaleUm = 90.0, kLeastPx = 0.6, kMostUm = 1e5;
    constexpr double kFine = 0.5, kCoarse = 1.6, kAlong = 2.2; // sigmas in the surface's scale
    const double a = strength(texture.silkAmp, devMottle);
    if (a == 0.0) return;
    const double um = std::max(std::min(texture.silkScaleUm.value_or(kScaleUm), kMostUm), kLeastPx * pxUm);
    plan.silk =
        NoiseField::brushed(picture, kFine * um, kCoarse * um, kAlong * um, pxUm, {plan.seed, kSilkLayer});
    plan.silkGain = static_cast<float>(a) * plan.silk->scale();
}

void planFine(Film::ReagentPlan& plan, const TextureParams& texture)
{
    plan.fineGain = static_cast<float>(strength(texture.fineAmp));
    const std::vector<double> whole = gaussianKernel1D(kFineSigmaPx, kFineReach);
    const std::vector<double> half(whole.begin() + kFineReach, whole.end());
    // The two axes' powers multiply; each axis takes the root of what brings both to unit deviation.
    const double unit = 1.0 / std::sqrt(kernelPower(half));
    for (std::size_t i = 0; i < plan.fineTaps.size(); ++i)
        plan.fineTaps[i] = static_cast<float>(half[i] * unit);
}

} // namespace

std::uint64_t Film::surfaceSeed(const RenderOptions& options)
{
    return Seeds::streamRNG(options, Seeds::SeedStream::film).nextUInt64();
}

Film::ReagentPlan Film::instantTexture(Size picture, int layers, const TextureParams& texture,
                                       const PictureScale& scale, double devMottle, std::uint64_t seed)
{
    constexpr double kStreakSigma = 0.035; // of the width
    ReagentPlan plan;
    plan.seed = static_cast<std::uint32_t>(seed);
    planMottle(plan, picture, layers, texture, scale.pxUm);
    planFine(plan, texture);
    if (const double a = strength(texture.streaksAmp); a > 0.0) {
        plan.streaks = streakProfile(picture.width, static_cast<double>(picture.width) * kStreakSigma, seed);
        for (float& v : plan.streaks) v *= static_cast<float>(a);
    }
    planSilk(plan, picture, texture, scale.pxUm, devMottle);
    return plan;
}

std::vector<float> Film::streakProfile(std::int64_t width, double sigmaPx, std::uint64_t seed)
{
    const auto n = static_cast<std::int64_t>(6.0 * static_cast<double>(width) / sigmaPx);
    GrainRNG rng(seed);
    std::vector<float> nodes(static_cast<std::size_t>(n));
    for (float& v : nodes) v = rng.nextNormal();
    Plane line(width, 1);
    float* to = line.mutableData();
    for (std::int64_t i = 0; i < width; ++i) {
        const double at =
            (static_cast<double>(i) + 0.5) * static_cast<double>(n) / static_cast<double>(width) - 0.5;
        const double below = std::floor(at);
        const auto node = [&](double k) {
            return nodes[static_cast<std::size_t>(std::clamp(k, 0.0, static_cast<double>(n - 1)))];
        };
        const float first = node(below);
        to[i] = first + (node(below + 1.0) - first) * static_cast<float>(at - below);
    }
    line = normalizePlane(std::move(line));
    return {line.row(0), line.row(0) + width};
}

Film::ReagentRows::ReagentRows(const ReagentPlan& plan, Size picture, int layers)
    : plan_(plan), common_(static_cast<std::size_t>(picture.width))
{
    if (plan.mottle) mottle_.emplace(*plan.mottle);
    if (plan.silk) silk_.emplace(*plan.silk);
    for (const NoiseField& field : plan.layerMottle) layerMottle_.emplace_back(field);
    if (plan.fineGain <= 0.0f) return;
    Fine fine;
    const auto width = static_cast<std::size_t>(picture.width);
    fine.columns.resize(width + 2 * kFineReach);
    noise_columns(fine.columns, plan.seed, -kFineReach);
    fine.noise.resize(fine.columns.size());
    for (std::vector<float>& row : fine.ring) row.resize(width);
    fine_.assign(static_cast<std::size_t>(layers), fine);
}

void Film::ReagentRows::addFine(std::int64_t y, float* density, std::uint32_t layer, Fine& fine) const
{
    const auto slot = [&](std::int64_t row) -> std::vector<float>& {
        return fine.ring[static_cast<std::size_t>((row % 5 + 5) % 5)];
    };
    const auto width = static_cast<std::int64_t>(fine.ring[0].size());
    if (!fine.begun || fine.next < y - kFineReach) fine.next = y - kFineReach;
    fine.begun = true;
    for (; fine.next <= y + kFineReach; ++fine.next) {
        virtual_noise(fine.noise.data(), fine.columns, fine.next, kFineLayer + layer);
        fine_row(slot(fine.next).data(), fine.noise.data(), width, plan_.fineTaps);
    }
    std::array<const float*, 5> rows{};
    for (std::int64_t k = 0; k < 5; ++k) rows[static_cast<std::size_t>(k)] = slot(y - kFineReach + k).data();
    fine_apply(density, rows, width, plan_.fineTaps, plan_.fineGain);
}

void Film::ReagentRows::apply(std::int64_t y, const DensityRow& density)
{
    const bool shared = mottle_ || silk_ || !plan_.streaks.empty();
    if (shared) {
        std::fill(common_.begin(), common_.end(), 0.0f);
        if (mottle_) row_apply(common_.data(), mottle_->row(y), plan_.mottleGain, density.width);
        if (!plan_.streaks.empty()) row_apply(common_.data(), plan_.streaks.data(), 1.0f, density.width);
        if (silk_) row_apply(common_.data(), silk_->row(y), plan_.silkGain, density.width);
    }
    for (int layer = 0; layer < density.count; ++layer) {
        const auto c = static_cast<std::size_t>(layer);
        float* to = density.layers[c];
        if (shared) row_apply(to, common_.data(), 1.0f, density.width);
        if (!layerMottle_.empty())
            row_apply(to, layerMottle_[c].row(y), plan_.layerMottleGain * plan_.layerMottle[c].scale(),
                      density.width);
        if (!fine_.empty()) addFine(y, to, static_cast<std::uint32_t>(layer), fine_[c]);
    }
}

} // namespace tamlo
