#include "core/process/press/offset.h"

#include "core/image/bands.h"
#include "core/process/press/am_screen.h"
#include "core/process/press/coverage_rows.h"
#include "core/process/press/laydown.h"
#include "core/process/press/screen_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace tamlo {
namespace {

using namespace ReproPrint;

/// Which printed pixels a drawn line reads: its own and the neighbour that it takes a quarter from.
struct Tap {
    std::int64_t own = 0, neighbour = 0;
};

/// The pixels that drawn line `drawn` reads, of a press that draws `side` lines a pixel.
Tap tapOf(std::int64_t drawn, int side)
{
    if (side == 1) return {drawn, 0};
    const bool second = (drawn & 1) != 0;
    return {drawn >> 1, second ? 1 : -1};
}

/// Terms of the two phases of a screen at a drawn column or row.
struct Turns {
    double u = 0.0, v = 0.0;
    ScreenTerms terms() const
    {
        const auto angle = [](double turns) { return 2.0 * std::numbers::pi * (turns - std::floor(turns)); };
        return {static_cast<float>(std::cos(angle(u))), static_cast<float>(std::sin(angle(u))),
                static_cast<float>(std::cos(angle(v))), static_cast<float>(std::sin(angle(v)))};
    }
};

/// A plate with the tables of its screen's columns, and what its rows read.
class PlateScreen {
public:
    PlateScreen(const InkPlate& plate, const OffsetPlan& plan, Size printed)
        : plate_(plate), plan_(plan), drawn_{printed.width * plan.ss, printed.height * plan.ss}
    {
        for (std::size_t c = 0; c < 3; ++c) stop_[c] = 1.0f - plan.separation.rel[plate.ink][c];
        const double angle = screenAngles[plate.ink] * std::numbers::pi / 180.0;
        cosPerPx_ = plan.cellPx > 0.0 ? std::cos(angle) / plan.cellPx : 0.0;
        sinPerPx_ = plan.cellPx > 0.0 ? std::sin(angle) / plan.cellPx : 0.0;
        if (plan.screened) fillColumns(printed.width);
    }

    std::size_t ink() const { return plate_.ink; }

    /// Printed row that the drawn row reads.
    Tap rowTap(std::int64_t drawnRow) const
    {
        return tapOf(shifted(drawnRow, plate_.dy, drawn_.height), plan_.ss);
    }

    /// The ink's part in a printed row but for its coverages.
    ScreenInk inRow(std::int64_t y) const
    {
        ScreenInk out;
        out.stop = stop_;
        for (std::int64_t i = 0; i < plan_.ss; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const Tap tap = tapOf(i - plate_.dx, plan_.ss);
            out.shift[at] = tap.own;
            out.neighbour[at] = tap.neighbour;
            if (!plan_.screened) continue;
            const auto row = static_cast<double>(shifted(y * plan_.ss + i, plate_.dy, drawn_.height));
            out.row[at] = Turns{row * sinPerPx_ + plate_.phase0, row * cosPerPx_ + plate_.phase1}.terms();
            for (std::size_t k = 0; k < 4; ++k) out.columns[at][k] = columns_[at * 4 + k].data();
        }
        return out;
    }

private:
    /// Where the plate holds what is printed at a drawn line; it repeats its edge.
    static std::int64_t shifted(std::int64_t line, std::int64_t by, std::int64_t lines)
    {
        return std::clamp<std::int64_t>(line - by, 0, lines - 1);
    }

    void fillColumns(std::int64_t width)
    {
        columns_.resize(static_cast<std::size_t>(plan_.ss) * 4);
        for (auto& column : columns_) column.resize(static_cast<std::size_t>(width + kPressPad));
        for (std::int64_t x = 0; x < width * plan_.ss; ++x) {
            const auto at = static_cast<double>(shifted(x, plate_.dx, drawn_.width));
            const ScreenTerms t = Turns{at * cosPerPx_, -at * sinPerPx_}.terms();
            std::vector<float>* tables = columns_.data() + x % plan_.ss * 4;
            const auto i = static_cast<std::size_t>(x / plan_.ss);
            tables[0][i] = t.cosU;
            tables[1][i] = t.sinU;
            tables[2][i] = t.cosV;
            tables[3][i] = t.sinV;
        }
    }

    const InkPlate& plate_;
    const OffsetPlan& plan_;
    Size drawn_;
    Vec3f stop_{};
    double cosPerPx_ = 0.0, sinPerPx_ = 0.0;
    std::vector<std::vector<float>> columns_; // by drawn column, cosU, sinU, cosV, sinV
};

/// Prints the rows of one band.
class BandPrinter {
public:
    BandPrinter(const GrownRows& picture, const OffsetPlan& plan, const std::vector<PlateScreen>& plates,
                std::int64_t firstRow)
        : plan_(plan),
          plates_(plates),
          size_(picture.size()),
          reach_(reachOf(plan)),
          coverage_(picture, plan.separation, std::max<std::int64_t>(firstRow - reach_, 0), 2 * reach_ + 1,
                    reach_ + kPressPad),
          blended_(plan.ss == 1 ? 0 : plates.size() * static_cast<std::size_t>(plan.ss) * stride())
    {}

    void print(std::int64_t y, float* to)
    {
        coverage_.ensure(std::min(y + reach_, size_.height - 1));
        std::array<ScreenInk, kInkCount> inks;
        for (std::size_t p = 0; p < plates_.size(); ++p) {
            inks[p] = plates_[p].inRow(y);
            for (int i = 0; i < plan_.ss; ++i)
                inks[p].coverage[static_cast<std::size_t>(i)] = coverageRow(p, y, i);
        }
        repro_ink_am(to, size_.width,
                     {{inks.data(), plates_.size()},
                      plan_.base,
                      plan_.screened ? amCDF().data() : nullptr,
                      screenEdge(plan_.cellPx),
                      plan_.ss});
    }

private:
    /// Printed pixels that the farthest plate reads away from its place.
    static std::int64_t reachOf(const OffsetPlan& plan)
    {
        std::int64_t farthest = 0;
        for (const InkPlate& plate : plan.plates)
            farthest = std::max({farthest, std::abs(plate.dx), std::abs(plate.dy)});
        return farthest / plan.ss + 2;
    }

    std::size_t stride() const { return static_cast<std::size_t>(size_.width + 2 * (reach_ + kPressPad)); }

    const float* coverageRow(std::size_t plate, std::int64_t y, int drawnRow)
    {
        const PlateScreen& screen = plates_[plate];
        const Tap tap = screen.rowTap(y * plan_.ss + drawnRow);
        const float* own = coverage_.row(screen.ink(), tap.own);
        if (plan_.ss == 1) return own;
        const std::int64_t beside = std::clamp<std::int64_t>(tap.own + tap.neighbour, 0, size_.height - 1);
        const std::int64_t margin = reach_ + kPressPad;
        const std::size_t slot =
            plate * static_cast<std::size_t>(plan_.ss) + static_cast<std::size_t>(drawnRow);
        float* to = blended_.data() + slot * stride();
        blend_rows(to, own - margin, 0.75f, coverage_.row(screen.ink(), beside) - margin, 0.25f,
                   static_cast<std::int64_t>(stride()));
        return to + margin;
    }

    const OffsetPlan& plan_;
    const std::vector<PlateScreen>& plates_;
    Size size_;
    std::int64_t reach_;
    CoverageRows coverage_;
    std::vector<float> blended_;
};

RGBImage screenedInks(const RGBImage& positive, Size printed, const OffsetPlan& plan)
{
    const GrownRows picture(positive, printed);
    std::vector<PlateScreen> plates;
    for (const InkPlate& plate : plan.plates) plates.emplace_back(plate, plan, printed);
    RGBImage out(printed.width, printed.height);
    float* to = out.mutableData();
    parallelBands(printed.height, printed.width * 12, [&](std::int64_t start, std::int64_t end) {
        BandPrinter printer(picture, plan, plates, start);
        for (std::int64_t y = start; y < end; ++y) printer.print(y, to + y * printed.width * 3);
    });
    return out;
}

} // namespace

RGBImage ReproPrint::applyOffset(RGBImage positive, Size printed, const OffsetPlan& plan)
{
    RGBImage print = screenedInks(positive, printed, plan);
    positive = {};
    return layDown(std::move(print), plan.base, plan.laydown);
}

} // namespace tamlo
