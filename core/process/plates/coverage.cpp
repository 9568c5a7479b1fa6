#include "core/process/plates/coverage.h"

#include "core/image/bands.h"

#include <algorithm>
#include <cmath>

namespace tamlo::Plate {
namespace {

constexpr double kMostMm = 1e4;
constexpr double kCoarseMm = 8.0, kCoarseShare = 0.4;
constexpr double kFineMm = 1.6, kFineShare = 0.16;
constexpr double kCornerSigmaMm = 5.0, kCornerShare = 0.55, kCornerSoft = 0.22;

} // namespace

class Coverage::Band {
public:
    explicit Band(const Coverage& plate)
        : plate_(plate), coarse_(plate.coarse_), fine_(plate.fine_), rough_(plate.corner_.rough)
    {}

    void run(float* density, std::int64_t y, float dmin)
    {
        const std::int64_t width = plate_.extent_.size.width;
        y_ = y;
        const auto [left, right] = barePx();
        if (left + right == 0) return;
        seek();
        const auto cover = [&](std::int64_t x) {
            const float c = coverageAt(x);
            density[x] = density[x] * c + dmin * (1.0f - c);
        };
        for (std::int64_t x = 0; x < std::min(left, width); ++x) cover(x);
        for (std::int64_t x = std::max(left, width - right); x < width; ++x) cover(x);
    }

private:
    bool hasCorner() const { return plate_.corner_.radiusPx > 0.0; }
    bool hasEdge() const { return plate_.edgePx_ > 0.0; }

    double cornerDy() const { return static_cast<double>(y_ - plate_.corner_.y); }

    /// Pixels from the left and from the right that may be bare in this row.
    std::pair<std::int64_t, std::int64_t> barePx() const
    {
        const Size size = plate_.extent_.size;
        const auto whole = [&](double px) {
            return static_cast<std::int64_t>(std::clamp(std::ceil(px), 0.0, static_cast<double>(size.width)));
        };
        std::int64_t left = hasEdge() ? whole(plate_.reachPx_) : 0, right = left;
        const double fromEnds = static_cast<double>(std::min(y_, size.height - 1 - y_)) + 0.5;
        if (hasEdge() && fromEnds < plate_.reachPx_) return {size.width, 0};
        if (!hasCorner()) return {left, right};
        const double reach = plate_.corner_.reachPx, dy = cornerDy();
        if (std::abs(dy) >= reach) return {left, right};
        std::int64_t& side = plate_.corner_.x == 0 ? left : right;
        side = std::max(side, whole(std::sqrt(reach * reach - dy * dy) + 1.0));
        return {left, right};
    }

    void seek()
    {
        if (hasEdge()) {
            coarse_.seek(y_);
            fine_.seek(y_);
        }
        if (hasCorner()) rough_.seek(y_);
    }

    float coverageAt(std::int64_t x) const
    {
        double c = 1.0;
        if (hasEdge())
            c = std::clamp((plate_.extent_.edgePx(x, y_) + coarse_.at(x) + fine_.at(x)) / plate_.edgePx_, 0.0,
                           1.0);
        if (!hasCorner()) return static_cast<float>(c);
        const double r = std::hypot(static_cast<double>(x - plate_.corner_.x), cornerDy()) + rough_.at(x);
        const double held = std::clamp((r - plate_.corner_.radiusPx) * plate_.corner_.perSoftPx, 0.0, 1.0);
        return static_cast<float>(std::min(c, held));
    }

    const Coverage& plate_;
    GridField::Rows coarse_, fine_, rough_;
    std::int64_t y_ = 0;
};

Coverage::Coverage(const Extent& extent, const CollodionParams& params, double amount, const PlateDice& dice)
    : extent_(extent)
{
    // A hand never quite reaches a perfect plate.
    edgePx_ = extent.ppmm * (0.05 + 0.95 * amount) * numberOf(params.edgeMm, 1.6, 0.0, kMostMm);
    if (edgePx_ > 0.0) {
        coarse_ = fieldEven(extent, kCoarseMm, kCoarseShare * edgePx_, {dice.seed, kEdgeLayer});
        fine_ = fieldEven(extent, kFineMm, kFineShare * edgePx_, {dice.seed, kFineEdgeLayer});
        reachPx_ = edgePx_ - coarse_.least() - fine_.least();
    }
    const double radius = amount * numberOf(params.holdMm, 5.0, 0.0, kMostMm) * extent.ppmm;
    if (!(radius > 1.0)) return;
    corner_.radiusPx = radius;
    corner_.perSoftPx = kCornerSoft * radius > 1.0 ? 1.0 / (kCornerSoft * radius) : 1.0;
    corner_.x = dice.corner == 1 || dice.corner == 2 ? extent.size.width - 1 : 0;
    corner_.y = dice.corner >= 2 ? extent.size.height - 1 : 0;
    const double rough = radius * numberOf(params.edgeRough, 0.6, 0.0, 100.0) * kCornerShare;
    corner_.rough = fieldEven(extent, kCornerSigmaMm, rough, {dice.seed, kCornerLayer});
    corner_.reachPx = radius + 1.0 / corner_.perSoftPx - corner_.rough.least();
}

Plane Coverage::apply(Plane density, float dmin) const
{
    float* to = density.mutableData();
    const std::int64_t width = density.width;
    parallelBands(density.height, width, [&](std::int64_t start, std::int64_t end) {
        Band band(*this);
        for (std::int64_t y = start; y < end; ++y) band.run(to + y * width, y, dmin);
    });
    return density;
}

} // namespace tamlo::Plate
