#include "core/pipeline/crop_passes.h"

#include "core/image/bands.h"
#include "core/image/catmull_rom.h"

#include <algorithm>
#include <array>

namespace tamlo {
namespace {

struct Position {
    std::int64_t whole = 0;
    float part = 0.0f;
};

Position sum(std::int32_t a, float aPart, std::int32_t b, float bPart)
{
    Position p{std::int64_t{a} + b, aPart + bPart};
    if (p.part >= 1.0f) {
        p.part -= 1.0f;
        ++p.whole;
    }
    return p;
}

} // namespace

void in_crop_rotate(RGBImage& out, const RGBImage& source, const CropAxes& axes)
{
    float* data = out.mutableData();
    const std::int64_t lastX = source.width - 1, lastY = source.height - 1;
    const auto pixel = [&](const CropAxis& row, const CropAxis& column, float* to) {
        const Position x = sum(row.xWhole, row.xPart, column.xWhole, column.xPart);
        const Position y = sum(row.yWhole, row.yPart, column.yWhole, column.yPart);
        const auto wx = catmullRom(x.part), wy = catmullRom(y.part);
        std::array<std::int64_t, 4> at{};
        for (std::int64_t i = 0; i < 4; ++i)
            at[static_cast<std::size_t>(i)] = std::clamp<std::int64_t>(x.whole - 1 + i, 0, lastX) * 3;
        Vec3f acc{};
        for (std::int64_t j = 0; j < 4; ++j) {
            const float* line = source.row(std::clamp<std::int64_t>(y.whole - 1 + j, 0, lastY));
            const float w = wy[static_cast<std::size_t>(j)];
            for (std::size_t c = 0; c < 3; ++c)
                acc[c] += w * (wx[0] * line[at[0] + static_cast<std::int64_t>(c)] +
                               wx[1] * line[at[1] + static_cast<std::int64_t>(c)] +
                               wx[2] * line[at[2] + static_cast<std::int64_t>(c)] +
                               wx[3] * line[at[3] + static_cast<std::int64_t>(c)]);
        }
        std::copy_n(acc.begin(), 3, to);
    };
    parallelBands(out.height, out.width * 16, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y)
            for (std::int64_t x = 0; x < out.width; ++x)
                pixel(axes.rows[static_cast<std::size_t>(y)], axes.columns[static_cast<std::size_t>(x)],
                      data + (y * out.width + x) * 3);
    });
}

} // namespace tamlo
