#include "core/process/crt/screen_rows.h"

#include "core/image/bands.h"
#include "core/image/bicubic_read.h"
#include "core/process/crt/crt_passes.h"
#include "core/process/crt/scan_lines.h"
#include "core/process/crt/shadow_mask.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace tamlo {
namespace {

using namespace CRTScreen;

constexpr double kLeastConvergePx = 0.25; // beams closer than this are one
constexpr std::int64_t kPad = 8;          // what a read beyond the frame's edge reaches

/// -1 at one edge of the frame, 1 at the other, of the pixel's centre.
double fromCentre(std::int64_t i, std::int64_t n)
{
    return (static_cast<double>(i) + 0.5) / static_cast<double>(n) * 2.0 - 1.0;
}

/// How far the beams of red and blue fall from green's.
struct Convergence {
    double px = 0.0;
    bool alsoDown = false;
    std::vector<BicubicTap> red, blue; ///< along a row

    Convergence(const Tube& tube, Size size, double pxUm)
    {
        if (tube.mono()) return;
        const double converge = tube.convergeMm * 1000.0 / std::max(pxUm, 1e-6);
        if (converge < kLeastConvergePx) return;
        px = converge;
        alsoDown = tube.mask == MaskKind::delta;
        for (std::int64_t x = 0; x < size.width; ++x) {
            const double xn = fromCentre(x, size.width), dx = px * xn * std::abs(xn);
            red.emplace_back(static_cast<float>(static_cast<double>(x) - dx), size.width - 1);
            blue.emplace_back(static_cast<float>(static_cast<double>(x) + dx), size.width - 1);
        }
    }
    bool any() const { return px > 0.0; }
    double down(std::int64_t y, std::int64_t height) const
    {
        if (!alsoDown) return 0.0;
        const double yn = fromCentre(y, height);
        return px * 0.5 * yn * std::abs(yn);
    }
};

/// The raster's rounded corners and the light that it loses towards them.
class RasterShape {
public:
    RasterShape(const Tube& tube, Size size, double pxUm)
        : size_(size),
          vignette_(tube.vignette),
          radius_(tube.cornerR * static_cast<double>(size.height)),
          soft_(std::max(kSoftUm / pxUm, 1.0))
    {}
    bool any() const { return radius_ > 0.5 || vignette_ > 0.0; }
    void row(float* to, std::int64_t y) const
    {
        const double w = static_cast<double>(size_.width), h = static_cast<double>(size_.height);
        const double dy = fromCentre(y, size_.height);
        const double ey = std::max(std::abs(dy) * h / 2.0 - (h / 2.0 - radius_), 0.0);
        for (std::int64_t x = 0; x < size_.width; ++x) {
            const double dx = fromCentre(x, size_.width);
            double light = 1.0 - vignette_ * 0.5 * (dx * dx + dy * dy);
            if (radius_ > 0.5) {
                const double ex = std::max(std::abs(dx) * w / 2.0 - (w / 2.0 - radius_), 0.0);
                light *= std::clamp((radius_ - std::sqrt(ex * ex + ey * ey)) / soft_ + 0.5, 0.0, 1.0);
            }
            to[x] = static_cast<float>(light);
        }
    }

private:
    static constexpr double kSoftUm = 400.0;
    Size size_;
    double vignette_, radius_, soft_;
};

void mixInto(float* to, const Plane& lines, const LineMix& mix)
{
    std::fill_n(to, lines.width, 0.0f);
    for (std::size_t k = 0; k < mix.weights.size(); ++k)
        if (mix.weights[k] != 0.0f)
            add_run(to, lines.row(mix.first + static_cast<std::int64_t>(k)), mix.weights[k], lines.width);
}

/// A row read at the places of the taps.
void moveRow(float* row, const std::vector<BicubicTap>& taps, std::vector<float>& padded)
{
    const auto width = static_cast<std::int64_t>(taps.size());
    padded.resize(static_cast<std::size_t>(width + 2 * kPad));
    std::fill_n(padded.begin(), kPad, row[0]);
    std::copy_n(row, width, padded.begin() + kPad);
    std::fill(padded.begin() + kPad + width, padded.end(), row[width - 1]);
    for (std::int64_t x = 0; x < width; ++x) {
        const BicubicTap& tap = taps[static_cast<std::size_t>(x)];
        const Float4 v = load4(padded.data() + kPad + tap.first) * load4(tap.weights.data());
        row[x] = (v[0] + v[1]) + (v[2] + v[3]);
    }
}

} // namespace

std::vector<Plane> CRTScreen::drawScreen(std::vector<Plane> lines, const ScreenPlan& plan)
{
    const auto [width, height] = plan.size;
    const bool drawn = plan.linePx > 0.0;
    std::optional<DrawnLines> beam;
    if (drawn) beam.emplace(lines[0].height, plan.linePx, plan.tube.spot);
    const auto mix = [&](std::int64_t y) { return beam ? beam->row(y) : LineMix{y, {1.0f}}; };
    const Convergence convergence(plan.tube, plan.size, plan.pxUm);
    const RasterShape shape(plan.tube, plan.size, plan.pxUm);
    std::optional<ShadowMask> mask;
    std::vector<float> wires;
    if (plan.maskPx > 0.0) {
        mask.emplace(plan.tube, plan.maskPx, plan.size, ShadowMask::Phases{plan.phaseX, plan.phaseY});
        wires = damperWires(height, plan.tube, plan.pxUm, plan.zoom);
    }
    if (!drawn && !convergence.any() && !shape.any() && !mask) return lines;

    std::vector<Plane> out;
    std::array<float*, 3> data{};
    for (std::size_t c = 0; c < lines.size(); ++c) out.emplace_back(width, height);
    for (std::size_t c = 0; c < lines.size(); ++c) data[c] = out[c].mutableData();
    parallelBands(height, width * 8, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> padded, light(static_cast<std::size_t>(width));
        ShadowMask::Scratch scratch;
        for (std::int64_t y = start; y < end; ++y) {
            std::array<float*, 3> rows{};
            const double dy = convergence.down(y, height);
            const double at = static_cast<double>(y);
            for (std::size_t c = 0; c < lines.size(); ++c) {
                rows[c] = data[c] + y * width;
                const double place = c == 0 ? at - dy : c == 2 ? at + dy : at;
                mixInto(rows[c], lines[c], place == at ? mix(y) : between(mix, place, height));
            }
            if (convergence.any()) {
                moveRow(rows[0], convergence.red, padded);
                moveRow(rows[2], convergence.blue, padded);
            }
            if (shape.any()) {
                shape.row(light.data(), y);
                for (std::size_t c = 0; c < lines.size(); ++c)
                    multiply_run(rows[c], light.data(), 1.0f, width);
            }
            if (mask)
                mask->apply(rows, y, wires.empty() ? 1.0f : wires[static_cast<std::size_t>(y)], scratch);
        }
    });
    return out;
}

} // namespace tamlo
