#include "core/process/press/inkjet.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"
#include "core/process/press/blue_noise.h"
#include "core/process/press/coverage_rows.h"
#include "core/process/press/drop_passes.h"
#include "core/process/press/laydown.h"
#include "core/process/press/screen_passes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

using namespace ReproPrint;

/// Which cell of the table's grid a pixel lies in, for every pixel of a side.
std::vector<std::int32_t> cellsOf(std::int64_t pixels, double cellPx)
{
    std::vector<std::int32_t> out(static_cast<std::size_t>(pixels));
    const double side = static_cast<double>(pixels);
    const std::int64_t last = std::max<std::int64_t>(static_cast<std::int64_t>(side / cellPx), 1) - 1;
    for (std::int64_t i = 0; i < pixels; ++i) {
        const std::int64_t cell =
            cellPx > kPixelCellPx ? std::min(static_cast<std::int64_t>(static_cast<double>(i) / cellPx), last)
                                  : i;
        out[static_cast<std::size_t>(i)] = static_cast<std::int32_t>(cell % blueNoise().side);
    }
    return out;
}

/// The half kernel of a drop's soft edge; one tap of 1 without one.
std::vector<float> edgeKernel(double sigmaPx)
{
    if (sigmaPx <= 0.0) return {1.0f};
    const auto radius = static_cast<std::int64_t>(4.0 * sigmaPx + 0.5);
    const std::vector<double> whole = gaussianKernel1D(sigmaPx, radius);
    return {whole.begin() + radius, whole.end()};
}

/// What all bands of a print share.
struct Drops {
    const InkjetPlan& plan;
    Size size;
    std::vector<float> kernel;
    std::vector<std::int32_t> cellRow;
    std::array<std::vector<std::int32_t>, kInkCount> columns; ///< of the table, for each pixel and ink

    Drops(const InkjetPlan& p, Size printed) : plan(p), size(printed), kernel(edgeKernel(p.edgeSigmaPx))
    {
        if (!plan.dither) return;
        const std::int64_t side = blueNoise().side;
        cellRow = cellsOf(size.height, plan.cellPx);
        const std::vector<std::int32_t> cells = cellsOf(size.width, plan.cellPx);
        for (std::size_t ink = 0; ink < kInkCount; ++ink) {
            columns[ink].resize(cells.size() + static_cast<std::size_t>(kPressPad));
            for (std::size_t x = 0; x < cells.size(); ++x)
                columns[ink][x] = static_cast<std::int32_t>((cells[x] + plan.start[ink][1]) % side);
        }
    }

    std::int64_t radius() const { return static_cast<std::int64_t>(kernel.size()) - 1; }
    /// Rows and pixels that the farthest ink is out of place by.
    std::int64_t farthest() const
    {
        std::int64_t out = 0;
        for (const auto& shift : plan.shift) out = std::max({out, std::abs(shift[0]), std::abs(shift[1])});
        return out;
    }
};

/// Prints the rows of one band. The drops of each ink, softened along their row, are held in a ring as far as
/// the fold across rows and the misalignment reach.
class BandJet {
public:
    BandJet(const GrownRows& picture, const Drops& drops, std::int64_t firstRow)
        : drops_(drops),
          reach_(drops.radius() + drops.farthest()),
          held_(2 * reach_ + 1),
          stride_(drops.size.width + 2 * (drops.farthest() + kPressPad)),
          next_(std::max<std::int64_t>(firstRow - reach_, 0)),
          coverage_(picture, drops.plan.separation, next_, 1, kPressPad),
          ring_(static_cast<std::size_t>(held_ * stride_) * kInkCount),
          line_(static_cast<std::size_t>(drops.size.width + 2 * drops.radius() + kPressPad)),
          softened_(static_cast<std::size_t>(stride_)),
          taps_(drops.kernel.size() * 2 - 1)
    {}

    void print(std::int64_t y, float* to)
    {
        const Size size = drops_.size;
        for (; next_ <= std::min(y + reach_, size.height - 1); ++next_) makeRow(next_);
        for (std::int64_t x = 0; x < size.width; ++x) std::copy_n(drops_.plan.base.begin(), 3, to + x * 3);
        for (std::size_t ink = 0; ink < kInkCount; ++ink) {
            Vec3f stop{};
            for (std::size_t c = 0; c < 3; ++c) stop[c] = 1.0f - drops_.plan.separation.rel[ink][c];
            lay_ink(to, inkRow(ink, y) - drops_.plan.shift[ink][0], size.width, stop);
        }
    }

private:
    std::int64_t margin() const { return drops_.farthest() + kPressPad; }

    float* ringRow(std::size_t ink, std::int64_t y)
    {
        return ring_.data() + (static_cast<std::int64_t>(ink) * held_ + y % held_) * stride_ + margin();
    }

    void makeRow(std::int64_t y)
    {
        const InkjetPlan& plan = drops_.plan;
        const std::int64_t width = drops_.size.width, radius = drops_.radius();
        const BlueNoise& noise = blueNoise();
        coverage_.ensure(y);
        float* drops = line_.data() + radius;
        for (std::size_t ink = 0; ink < kInkCount; ++ink) {
            DropRow row;
            row.coverage = coverage_.row(ink, y);
            row.curve = plan.separation.curve;
            if (plan.bandAlongX)
                row.band = plan.band.data();
            else
                row.rowBand = plan.band[static_cast<std::size_t>(y)];
            if (plan.dither) {
                const std::int64_t cell = drops_.cellRow[static_cast<std::size_t>(y)];
                row.thresholds =
                    noise.thresholds.data() + (cell + plan.start[ink][0]) % noise.side * noise.side;
                row.columns = drops_.columns[ink].data();
            }
            repro_ink_fm(drops, width, row);
            std::fill_n(line_.data(), radius, drops[0]);
            std::fill_n(drops + width, radius, drops[width - 1]);
            soften_row(ringRow(ink, y), drops, width, drops_.kernel);
        }
    }

    /// Row y of an ink where it is printed, with its edge repeated on both sides.
    const float* inkRow(std::size_t ink, std::int64_t y)
    {
        const std::int64_t height = drops_.size.height, width = drops_.size.width, radius = drops_.radius();
        const std::int64_t from = std::clamp<std::int64_t>(y - drops_.plan.shift[ink][1], 0, height - 1);
        for (std::int64_t k = -radius; k <= radius; ++k)
            taps_[static_cast<std::size_t>(k + radius)] =
                ringRow(ink, std::clamp<std::int64_t>(from + k, 0, height - 1));
        float* to = softened_.data() + margin();
        soften_column(to, taps_.data(), width, drops_.kernel);
        std::fill_n(to - margin(), margin(), to[0]);
        std::fill_n(to + width, margin(), to[width - 1]);
        return to;
    }

    const Drops& drops_;
    std::int64_t reach_, held_, stride_, next_;
    CoverageRows coverage_;
    std::vector<float> ring_, line_, softened_;
    std::vector<const float*> taps_;
};

RGBImage laidDrops(const RGBImage& positive, Size printed, const InkjetPlan& plan)
{
    const GrownRows picture(positive, printed);
    const Drops drops(plan, printed);
    RGBImage out(printed.width, printed.height);
    float* to = out.mutableData();
    parallelBands(printed.height, printed.width * 12, [&](std::int64_t start, std::int64_t end) {
        BandJet jet(picture, drops, start);
        for (std::int64_t y = start; y < end; ++y) jet.print(y, to + y * printed.width * 3);
    });
    return out;
}

} // namespace

RGBImage ReproPrint::applyInkjet(RGBImage positive, Size printed, const InkjetPlan& plan)
{
    RGBImage print = laidDrops(positive, printed, plan);
    positive = {};
    return layDown(std::move(print), plan.base, plan.laydown);
}

} // namespace tamlo
