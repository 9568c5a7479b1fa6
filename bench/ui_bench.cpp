// What the window's painting costs: a scroll of the grid over 5,000 frames at 2560 × 1440 by a wheel's steps,
// with tiles that are scaled when they come into view. Beside the frames' median and the 95th percentile
// stands the bare operation: one tile scaled.
#include "tests/support/rolls.h"
#include "ui/screens/frame_cell.h"
#include "ui/screens/grid_layout.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace tamlo::ui {
namespace {

constexpr std::size_t kFrames = 5'000, kTiles = 72;
constexpr QSize kScreen(2560, 1300);
constexpr int kTile = 200, kStep = 77; // of a third of a row, as the grid's wheel

QApplication& application()
{
    static int count = 1;
    static char name[] = "ui_bench";
    static char* names[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication made(count, names);
    return made;
}

TilePixmaps::Image tileNumber(std::size_t n)
{
    auto image = std::make_shared<ReadyImage>();
    image->width = 1024;
    image->height = 683;
    image->rgba.resize(static_cast<std::size_t>(image->width * image->height * 4));
    for (std::size_t i = 0; i < image->rgba.size(); ++i)
        image->rgba[i] = static_cast<std::uint8_t>(i * 2654435761U >> (16 + n % 8));
    return image;
}

double percentile(std::vector<double> values, double share)
{
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(static_cast<double>(values.size() - 1) * share)];
}

struct Roll {
    std::vector<Frame> frames;
    std::vector<TilePixmaps::Image> tiles;
    Roll()
    {
        for (std::size_t i = 0; i < kFrames; ++i)
            frames.push_back(test::frameNumber(static_cast<unsigned>(i)));
        for (std::size_t i = 0; i < kTiles; ++i) tiles.push_back(tileNumber(i));
    }
};

void paintAt(QImage& screen, TilePixmaps& pixmaps, const Roll& roll, const GridLayout& layout, int top)
{
    QPainter painter(&screen);
    pixmaps.beginPaint();
    const auto [first, last] = layout.cellsBetween(top, top + screen.height());
    for (std::size_t row = first; row < last; ++row) {
        const QRect cell = layout.cell(row).translated(0, -top);
        FrameCell shown;
        shown.frame = &roll.frames[row];
        shown.label = QString::number(row + 1);
        shown.tile = roll.tiles[row % kTiles];
        const QRect tile(cell.topLeft(), QSize(layout.tile(), layout.tile()));
        const QRect caption(tile.left(), tile.bottom() + 1, tile.width(), GridLayout::kCaptionPx);
        paintFrameCell(painter, pixmaps, shown, tile, caption, QApplication::palette());
    }
}

void ScrollGrid(benchmark::State& state)
{
    application();
    const Roll roll;
    const GridLayout layout(kFrames, kScreen.width(), kTile);
    QImage screen(kScreen, QImage::Format_RGB32);
    TilePixmaps pixmaps;
    std::vector<double> times;
    int top = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        paintAt(screen, pixmaps, roll, layout, top);
        times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
        top = (top + kStep) % (layout.height() - kScreen.height());
    }
    state.counters["median_ms"] = percentile(times, 0.5) * 1000;
    state.counters["p95_ms"] = percentile(times, 0.95) * 1000;
}
BENCHMARK(ScrollGrid)->Unit(benchmark::kMillisecond)->Iterations(600)->UseRealTime();

void ScaleOneTile(benchmark::State& state)
{
    application();
    const TilePixmaps::Image tile = tileNumber(3);
    for (auto _ : state) {
        TilePixmaps pixmaps;
        pixmaps.beginPaint();
        bool isRough = false;
        benchmark::DoNotOptimize(pixmaps.fitted(FrameID(), tile, kTile, isRough));
    }
}
BENCHMARK(ScaleOneTile)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::ui

BENCHMARK_MAIN();
