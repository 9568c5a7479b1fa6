#include "core/process/plates/collodion.h"

#include "core/image/bands.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Plate {
namespace {

constexpr double kMostShare = 100.0;
constexpr double kPourSigmaMm = 18.0, kPourAniso = 3.2;
constexpr double kVeilSigmaMm = 6.0, kVeilAniso = 2.4, kVeilDeviation = 0.5, kVeilEdgeMm = 14.0;

} // namespace

Thickness::Thickness(const Extent& extent, const CollodionParams& params, double amount,
                     const PlateDice& dice)
    : extent_(extent),
      slope_(amount * numberOf(params.slope, 0.1, -kMostShare, kMostShare)),
      crescent_(std::max(amount * numberOf(params.crescent, 0.1, 0.0, kMostShare), 0.0)),
      corner_(dice.corner),
      wander_(fieldPour(extent, kPourSigmaMm, amount * numberOf(params.wander, 0.035, 0.0, kMostShare),
                        {dice.corner, kPourAniso}, {dice.seed, kPourLayer}))
{}

PourRow Thickness::rowAt(std::int64_t y) const
{
    const double w = static_cast<double>(extent_.size.width), h = static_cast<double>(extent_.size.height);
    const double longSide = std::max(w, h), xSpan = std::max(w - 1.0, 1.0);
    const double yn = (static_cast<double>(y) + 0.5) / std::max(h - 1.0, 1.0);
    const double u = corner_ < 2 ? yn : 1.0 - yn;
    const bool fromLeft = corner_ == 0 || corner_ == 3;
    const double v0 = fromLeft ? 0.5 / xSpan : 1.0 - 0.5 / xSpan, step = (fromLeft ? 1.0 : -1.0) / xSpan;
    const double down = u * h / longSide;
    PourRow row;
    row.level = static_cast<float>(1.0 + slope_ * (0.5 - 0.5 * (u + v0)));
    row.levelStep = static_cast<float>(-0.5 * slope_ * step);
    row.across = static_cast<float>(v0 * w / longSide);
    row.acrossStep = static_cast<float>(step * w / longSide);
    row.downSquared = static_cast<float>(down * down);
    // Four and a half widths beyond its middle the crescent is below what a float beside 1 can hold.
    constexpr double kGone = PourRow::kCrescentAt + 4.5 * PourRow::kCrescentWidth;
    row.crescent = std::abs(down) < kGone ? static_cast<float>(crescent_) : 0.0f;
    return row;
}

float Thickness::at(std::int64_t x, std::int64_t y) const
{
    return std::max(rowAt(y).at(static_cast<float>(x)) + wander_.at(x, y), 0.0f);
}

Thickness::Rows::Rows(const Thickness& thickness)
    : thickness_(thickness),
      wander_(thickness.wander_),
      line_(static_cast<std::size_t>(thickness.extent_.size.width))
{}

const float* Thickness::Rows::row(std::int64_t y)
{
    pour_thick(line_, thickness_.rowAt(y), wander_.row(y));
    return line_.data();
}

Plane applyThickness(Plane light, const Thickness& thickness)
{
    float* to = light.mutableData();
    const std::int64_t width = light.width;
    parallelBands(light.height, width * 4, [&](std::int64_t start, std::int64_t end) {
        Thickness::Rows thick(thickness);
        for (std::int64_t y = start; y < end; ++y)
            multiply_row({to + y * width, static_cast<std::size_t>(width)}, thick.row(y));
    });
    return light;
}

std::optional<Veil> Veil::of(const Extent& extent, const CollodionParams& params, double amount,
                             const PlateDice& dice)
{
    const double density = amount * numberOf(params.veil, 0.06, 0.0, kMostShare);
    if (!(density > 0.0)) return std::nullopt;
    return Veil{
        density,
        fieldPour(extent, kVeilSigmaMm, kVeilDeviation, {dice.corner, kVeilAniso}, {dice.seed, kVeilLayer}),
        EdgeWeight(kVeilEdgeMm, extent.ppmm)};
}

Plane applyVeil(Plane density, const Veil& veil, const Thickness& thickness)
{
    float* to = density.mutableData();
    const std::int64_t width = density.width, height = density.height;
    parallelBands(height, width * 6, [&](std::int64_t start, std::int64_t end) {
        Thickness::Rows thick(thickness);
        GridField::Rows field(veil.field);
        VeilRow row{static_cast<float>(veil.density), 0.0f, static_cast<float>(1.0 / veil.weight.reachPx)};
        for (std::int64_t y = start; y < end; ++y) {
            row.edgePx = static_cast<float>(std::min(y, height - 1 - y)) + 0.5f;
            plate_veil({to + y * width, static_cast<std::size_t>(width)}, row, field.row(y), thick.row(y));
        }
    });
    return density;
}

} // namespace tamlo::Plate
