#include "core/film/light/display_lights_passes.h"

#include "core/film/light/display_lights.h"
#include "core/image/bands.h"

#include <algorithm>

namespace tamlo {
namespace {

constexpr float kRimFrom = 0.25f; // darker pixels near a lamp are what it stands in
constexpr float kRimTo = 0.95f;
constexpr float kClipsFrom = 0.95f; // a JPEG ripples around its white

/// The brightest channel; NaN counts as black.
float brightest(const float* p)
{
    float most = 0.0f;
    for (std::size_t c = 0; c < 3; ++c)
        if (p[c] > most) most = p[c];
    return most;
}

/// 0 up to touchedFrom, 1 from the display's white on, without a kink.
float weightOf(float peak)
{
    const float t =
        std::clamp((peak - DisplayLights::touchedFrom) / (1.0f - DisplayLights::touchedFrom), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

void gatherRow(const float* p, std::int64_t width, std::int64_t columns, LightCell* cells)
{
    for (std::int64_t x = 0; x < width; ++x, p += 3) {
        LightCell& cell = cells[x * columns / width];
        const float peak = brightest(p);
        cell.peak = std::max(cell.peak, peak);
        cell.lit += peak > DisplayLights::touchedFrom ? 1.0 : 0.0;
        cell.clipped += peak > kClipsFrom ? 1.0 : 0.0;
        cell.pixels += 1.0;
        const bool isRim = peak >= kRimFrom && peak < kRimTo;
        for (std::size_t c = 0; c < 3; ++c) {
            const float light = p[c] > 0.0f ? std::min(p[c], 1.0f) : 0.0f;
            cell.light[c] += light;
            if (isRim) cell.rim[c] += light;
        }
    }
}

/// Linear interpolation between the centres of a map's cells along one axis.
struct Between {
    std::int64_t low, high;
    float share;
};

Between between(std::int64_t i, std::int64_t n, std::int64_t cells)
{
    const double at =
        (static_cast<double>(i) + 0.5) * static_cast<double>(cells) / static_cast<double>(n) - 0.5;
    const double held = std::clamp(at, 0.0, static_cast<double>(cells - 1));
    const auto low = static_cast<std::int64_t>(held);
    return {low, std::min(low + 1, cells - 1), static_cast<float>(held - static_cast<double>(low))};
}

void addTo(float* p, const RGBImage& missing, const Between& x, const Between& y, float amount)
{
    const float peak = brightest(p);
    if (!(peak > DisplayLights::touchedFrom)) return;
    const auto at = [&](std::int64_t row, std::size_t c) {
        const float a = missing.row(row)[x.low * 3 + static_cast<std::int64_t>(c)];
        return a + (missing.row(row)[x.high * 3 + static_cast<std::int64_t>(c)] - a) * x.share;
    };
    Vec3f add{};
    for (std::size_t c = 0; c < 3; ++c) add[c] = at(y.low, c) + (at(y.high, c) - at(y.low, c)) * y.share;
    const float most = std::max({add[0], add[1], add[2]});
    const float weight = amount * weightOf(peak);
    // A channel that has not clipped still tells the colour of the light.
    for (std::size_t c = 0; c < 3; ++c)
        if (p[c] > 0.0f) p[c] += weight * std::min(add[c], most * (p[c] / peak));
}

} // namespace

std::vector<LightCell> gather_lights(const RGBImage& frame, Size grid)
{
    std::vector<LightCell> cells(static_cast<std::size_t>(grid.width * grid.height));
    // The first row of a cell is the first whose index times the cells, divided by the height, gives its own.
    const auto firstRow = [&](std::int64_t cell) {
        return (cell * frame.height + grid.height - 1) / grid.height;
    };
    parallelBands(grid.height, frame.width * frame.height / grid.height,
                  [&](std::int64_t start, std::int64_t end) {
                      for (std::int64_t cy = start; cy < end; ++cy)
                          for (std::int64_t y = firstRow(cy); y < firstRow(cy + 1); ++y)
                              gatherRow(frame.row(y), frame.width, grid.width,
                                        &cells[static_cast<std::size_t>(cy * grid.width)]);
                  });
    return cells;
}

void add_lights(RGBImage& image, const RGBImage& missing, float amount)
{
    std::vector<Between> columns;
    for (std::int64_t x = 0; x < image.width; ++x) columns.push_back(between(x, image.width, missing.width));
    float* data = image.mutableData();
    parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const Between rows = between(y, image.height, missing.height);
            float* p = data + y * image.width * 3;
            for (const Between& column : columns) {
                addTo(p, missing, column, rows, amount);
                p += 3;
            }
        }
    });
}

} // namespace tamlo
