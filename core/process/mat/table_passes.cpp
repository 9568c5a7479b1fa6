#include "core/process/mat/table_passes.h"

#include "core/image/bands.h"
#include "core/process/mat/sheet_light.h"

#include <algorithm>
#include <vector>

namespace tamlo::Table {
namespace {

constexpr auto kAo = static_cast<float>(CardRelief::shadowAoOpacity);
constexpr auto kDir = static_cast<float>(CardRelief::shadowDirOpacity);

/// Light that both shadows leave.
float lit(float ao, float dir)
{
    return std::clamp((1.0f - kAo * ao) * (1.0f - kDir * dir), 0.0f, 1.0f);
}

/// A band's view of the surface round a sheet.
struct Bare {
    Surface::Rows& rows;
    const Vec3f& albedo;
    const RectShadow& shadow;
};

/// Pixels x0 ... x1 - 1 of a canvas row: the bare surface under the rectangle's shadow.
void bareRun(float* row, std::int64_t x0, std::int64_t x1, std::int64_t y, const Bare& bare)
{
    const float* values = bare.rows.run(y, x0, x1);
    const RectShadow& shadow = bare.shadow;
    const float aoY = shadow.aoY[static_cast<std::size_t>(y)];
    const float dirY = shadow.dirY[static_cast<std::size_t>(y)];
    const float* aoX = shadow.aoX.data();
    const float* dirX = shadow.dirX.data();
    const Vec3f albedo = bare.albedo;
    for (std::int64_t x = x0; x < x1; ++x) {
        const float light = *values++ * lit(aoX[x] * aoY, dirX[x] * dirY);
        for (int c = 0; c < 3; ++c)
            row[x * 3 + c] = std::max(albedo[static_cast<std::size_t>(c)] * light, 0.0f);
    }
}

} // namespace

void add_zoomed(Plane& grid, float scale, const ScaledField& slow, std::span<const AxisTap> across,
                std::span<const AxisTap> down)
{
    float* data = grid.mutableData();
    parallelBands(grid.height, grid.width, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> line(static_cast<std::size_t>(grid.width));
        std::vector<float> nodes(static_cast<std::size_t>(slow.field.width));
        for (std::int64_t y = start; y < end; ++y) {
            const AxisTap& tap = down[static_cast<std::size_t>(y)];
            zoomed_row({slow.field.row(tap.first), slow.field.row(tap.second), tap.fraction, nodes.data()},
                       across, 0, grid.width, line.data());
            float* row = data + y * grid.width;
            for (std::int64_t x = 0; x < grid.width; ++x)
                row[x] = 1.0f + row[x] * scale + line[static_cast<std::size_t>(x)] * slow.scale;
        }
    });
}

void zoomed_row(const GridRows& rows, std::span<const AxisTap> across, std::int64_t x0, std::int64_t x1,
                float* out)
{
    if (x0 >= x1) return;
    // The nodes are read less often than there are pixels, so the rows are mixed first.
    const std::int32_t last = across[static_cast<std::size_t>(x1 - 1)].second;
    for (std::int32_t i = across[static_cast<std::size_t>(x0)].first; i <= last; ++i)
        rows.between[i] = rows.upper[i] + (rows.lower[i] - rows.upper[i]) * rows.fraction;
    for (std::int64_t x = x0; x < x1; ++x) {
        const AxisTap& tap = across[static_cast<std::size_t>(x)];
        const float first = rows.between[tap.first];
        *out++ = first + (rows.between[tap.second] - first) * tap.fraction;
    }
}

void linen_row(const Linen& linen, const float* nap, std::size_t y, std::int64_t x0, std::int64_t x1,
               float* out)
{
    constexpr float kWeave = 0.10f;
    const float cosY = linen.cosY[y], rowF = linen.rowF[y];
    const float* cosX = linen.cosX.data();
    const float* colF = linen.colF.data();
    for (std::int64_t x = x0; x < x1; ++x) {
        const float weave = 1.0f + kWeave * 0.5f * (cosX[x] + cosY);
        *out++ = weave * colF[x] * rowF * (1.0f + linen.nap * nap[x]);
    }
}

Plane shifted(const Plane& plane, const ShiftPlan& shift)
{
    Plane out(plane.width, plane.height);
    float* data = out.mutableData();
    const auto read = [&](std::int64_t x, std::int64_t y) {
        return x >= 0 && x < plane.width && y >= 0 && y < plane.height ? plane.at(x, y) : 0.0f;
    };
    const auto w00 = static_cast<float>(shift.w00), w01 = static_cast<float>(shift.w01);
    const auto w10 = static_cast<float>(shift.w10), w11 = static_cast<float>(shift.w11);
    parallelBands(plane.height, plane.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = 0; x < plane.width; ++x) {
                const std::int64_t sx = x - shift.ix, sy = y - shift.iy;
                data[y * plane.width + x] = read(sx, sy) * w00 + read(sx - 1, sy) * w01 +
                                            read(sx, sy - 1) * w10 + read(sx - 1, sy - 1) * w11;
            }
    });
    return out;
}

void combine_shadows(Plane& cast, const Plane& contact)
{
    float* data = cast.mutableData();
    const float* ao = contact.data.data();
    parallelBands(cast.height, cast.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * cast.width; i < end * cast.width; ++i)
            data[i] = 1.0f - lit(ao[i], data[i]);
    });
}

RGBImage lay_sheet(const RGBImage& sheet, Size canvas, std::int64_t x, std::int64_t y, const Surface& surface,
                   const RectShadow& shadow)
{
    RGBImage out(canvas.width, canvas.height);
    float* data = out.mutableData();
    parallelBands(canvas.height, canvas.width * 3, [&](std::int64_t start, std::int64_t end) {
        Surface::Rows rows(surface);
        const Bare bare{rows, surface.albedo(), shadow};
        for (std::int64_t row = start; row < end; ++row) {
            float* to = data + row * canvas.width * 3;
            if (row < y || row >= y + sheet.height) {
                bareRun(to, 0, canvas.width, row, bare);
                continue;
            }
            bareRun(to, 0, x, row, bare);
            const float* from = sheet.row(row - y);
            for (std::int64_t i = 0; i < sheet.width * 3; ++i) to[x * 3 + i] = std::max(from[i], 0.0f);
            bareRun(to, x + sheet.width, canvas.width, row, bare);
        }
    });
    return out;
}

RGBImage lay_masked(const RGBImage& sheet, std::int64_t x, std::int64_t y, const Surface& surface,
                    const Plane& coverage, const Plane& shadow)
{
    const std::int64_t width = coverage.width;
    RGBImage out(width, coverage.height);
    float* data = out.mutableData();
    parallelBands(coverage.height, width * 3, [&](std::int64_t start, std::int64_t end) {
        Surface::Rows rows(surface);
        for (std::int64_t row = start; row < end; ++row) {
            const float* values = rows.run(row, 0, width);
            const float* a = coverage.row(row);
            const bool onSheet = row >= y && row < y + sheet.height;
            for (std::int64_t i = 0; i < width; ++i) {
                const float light = values[i] * (1.0f - shadow.row(row)[i]);
                float* to = data + (row * width + i) * 3;
                const bool over = onSheet && i >= x && i < x + sheet.width;
                for (std::int64_t c = 0; c < 3; ++c) {
                    const float bare = surface.albedo()[static_cast<std::size_t>(c)] * light;
                    const float v =
                        over ? sheet.row(row - y)[(i - x) * 3 + c] * a[i] + bare * (1.0f - a[i]) : bare;
                    to[c] = std::max(v, 0.0f);
                }
            }
        }
    });
    return out;
}

} // namespace tamlo::Table
