#include "core/process/crt/shadow_mask.h"

#include "core/image/bands.h"
#include "core/process/crt/crt_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

constexpr double kEdgePx = 0.6; // soft edge of a dot or stripe
constexpr double kLeastMean = 1e-6;

} // namespace

CRTScreen::ShadowMask::ShadowMask(const Tube& tube, double maskPx, Size size, Phases phases)
    : size_(size),
      grille_(tube.mask == MaskKind::grille),
      maskPx_(maskPx),
      dot_(tube.dot),
      depth_(tube.depth),
      rowPhase_(phases.y)
{
    if (grille_) {
        makeStripes(phases.x);
        return;
    }
    makeColumns(phases.x);
    measure();
}

void CRTScreen::ShadowMask::makeStripes(double phase)
{
    const double stripe = maskPx_ / 3.0;
    const auto width = static_cast<std::size_t>(size_.width);
    for (auto& line : light_) line.assign(width, 0.0f);
    std::array<double, 3> sums{};
    for (std::size_t x = 0; x < width; ++x) {
        const double p = std::fmod(maskPx_ * phase + static_cast<double>(x) + 0.5, maskPx_);
        const double c = std::floor(p / stripe);
        if (c >= 3.0) continue;
        const double inside = stripe * 0.5 * dot_ - std::abs(p - stripe * (c + 0.5));
        const double cover = std::clamp(inside / kEdgePx + 0.5, 0.0, 1.0);
        light_[static_cast<std::size_t>(c)][x] = static_cast<float>(cover);
        sums[static_cast<std::size_t>(c)] += cover;
    }
    for (std::size_t c = 0; c < 3; ++c) {
        means_[c] = std::max(sums[c] / static_cast<double>(size_.width), kLeastMean);
        for (float& v : light_[c]) v = static_cast<float>(1.0 - depth_ + depth_ * v / means_[c]);
    }
}

void CRTScreen::ShadowMask::makeColumns(double phase)
{
    const double across = maskPx_ / std::numbers::sqrt3;
    fraction_.resize(static_cast<std::size_t>(size_.width));
    number_.resize(fraction_.size());
    for (std::size_t x = 0; x < fraction_.size(); ++x) {
        const double at = (maskPx_ * phase + static_cast<double>(x) + 0.5) / across, whole = std::floor(at);
        fraction_[x] = static_cast<float>(at - whole);
        number_[x] = static_cast<float>(std::fmod(whole, 3.0));
    }
}

void CRTScreen::ShadowMask::coverRow(std::int64_t y, Scratch& scratch) const
{
    const double across = maskPx_ / std::numbers::sqrt3, down = across * std::numbers::sqrt3 * 0.5;
    const double at = (maskPx_ * rowPhase_ + static_cast<double>(y) + 0.5) / down;
    const auto whole = static_cast<std::int64_t>(std::floor(at));
    const double fy = at - std::floor(at);
    DeltaRow row;
    row.fraction = fraction_;
    row.colour = number_;
    row.shift = static_cast<float>(fy / 2.0 + (whole % 2 != 0 ? 0.5 : 0.0));
    row.rowColour = static_cast<float>((3 - (whole / 2 + whole) % 3) % 3);
    row.across = static_cast<float>(across);
    row.aboveY = static_cast<float>(fy * down);
    row.belowY = static_cast<float>((fy - 1.0) * down);
    row.fy = static_cast<float>(fy);
    row.radius = static_cast<float>(std::min(across * 0.5 * dot_, 1e6));
    scratch.colour.resize(fraction_.size());
    scratch.cover.resize(fraction_.size());
    delta_row(scratch.colour.data(), scratch.cover.data(), size_.width, row);
}

void CRTScreen::ShadowMask::measure()
{
    std::vector<std::array<double, 3>> rows(static_cast<std::size_t>(size_.height));
    parallelBands(size_.height, size_.width * 2, [&](std::int64_t start, std::int64_t end) {
        Scratch scratch;
        for (std::int64_t y = start; y < end; ++y) {
            coverRow(y, scratch);
            rows[static_cast<std::size_t>(y)] =
                delta_sums(scratch.colour.data(), scratch.cover.data(), size_.width);
        }
    });
    const double pixels = static_cast<double>(size_.width) * static_cast<double>(size_.height);
    for (std::size_t c = 0; c < 3; ++c) {
        double sum = 0.0;
        for (const auto& row : rows) sum += row[c];
        means_[c] = std::max(sum / pixels, kLeastMean);
    }
}

void CRTScreen::ShadowMask::apply(const std::array<float*, 3>& rows, std::int64_t y, float factor,
                                  Scratch& scratch) const
{
    if (grille_) {
        for (std::size_t c = 0; c < 3; ++c) multiply_run(rows[c], light_[c].data(), factor, size_.width);
        return;
    }
    coverRow(y, scratch);
    for (std::size_t c = 0; c < 3; ++c)
        delta_light(rows[c], scratch.colour.data(), scratch.cover.data(), size_.width, static_cast<float>(c),
                    static_cast<float>(1.0 - depth_), static_cast<float>(depth_ / means_[c]), factor);
}

std::vector<float> CRTScreen::damperWires(std::int64_t height, const Tube& tube, double pxUm, double zoom)
{
    constexpr double kThinnestSigmaPx = 0.25;
    constexpr double kReach = 6.0; // sigmas
    const double sigma = tube.wireMm * 1000.0 / std::max(pxUm, 1e-6) * 0.5;
    if (tube.wires < 1 || sigma < kThinnestSigmaPx) return {};
    std::vector<double> shadow(static_cast<std::size_t>(height));
    const double rows = static_cast<double>(height);
    for (std::int64_t k = 1; k <= tube.wires; ++k) {
        const double t = zoom * (static_cast<double>(k) / static_cast<double>(tube.wires + 1) - 0.5) + 0.5;
        if (t <= -0.05 || t >= 1.05) continue;
        const double centre = t * rows;
        const auto from = static_cast<std::int64_t>(std::clamp(centre - kReach * sigma - 1.0, 0.0, rows));
        const auto to = static_cast<std::int64_t>(std::clamp(centre + kReach * sigma + 1.0, 0.0, rows));
        for (std::int64_t y = from; y < to; ++y) {
            const double e = (static_cast<double>(y) + 0.5 - centre) / sigma;
            shadow[static_cast<std::size_t>(y)] += std::exp(-0.5 * e * e);
        }
    }
    std::vector<float> out(shadow.size());
    for (std::size_t y = 0; y < out.size(); ++y)
        out[y] = static_cast<float>(1.0 - tube.wireDepth * std::clamp(shadow[y], 0.0, 1.0));
    return out;
}

} // namespace tamlo
