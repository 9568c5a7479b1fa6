#include "core/process/crt/crt_screen.h"

#include "core/image/bands.h"
#include "core/image/bicubic_read.h"
#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "core/process/crt/crt_passes.h"
#include "core/process/crt/scan_lines.h"
#include "core/process/crt/screen_rows.h"
#include "core/process/crt/tube_tone.h"
#include "core/process/crt/video_signal.h"
#include "core/profiles/options/seed_stream.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tamlo {
namespace {

using namespace CRTScreen;
using Planes = std::vector<Plane>;

constexpr double kLeastShare = 0.0001; // an overscan or a bloom below this is none
constexpr double kLeastBulge = 1e-6;
constexpr double kLeastSigmaPx = 0.3;

Plane cutTo(const Plane& plane, std::int64_t left, std::int64_t top)
{
    Plane out(plane.width - 2 * left, plane.height - 2 * top);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < out.height; ++y)
        std::copy_n(plane.row(y + top) + left, out.width, to + y * out.width);
    return out;
}

/// The picture in three planes of the size shown, less what the tube's frame hides.
Planes takeIn(RGBImage image, Size shown, const Tube& tube)
{
    Planes planes;
    for (int c = 0; c < 3; ++c) {
        Plane plane = image.plane(c);
        if (c == 2) image = {};
        if (plane.size() != shown) plane = pilResize(plane, shown, Resampling::bicubic);
        if (tube.overscan > kLeastShare) {
            const auto hidden = [&](std::int64_t side) {
                return std::min(pyRound(tube.overscan * static_cast<double>(side)), (side - 1) / 2);
            };
            plane = pilResize(cutTo(plane, hidden(shown.width), hidden(shown.height)), shown,
                              Resampling::lanczos);
        }
        planes.push_back(std::move(plane));
    }
    return planes;
}

/// The signal sampled into lines; where they can't be drawn, back in rows of pixels.
void sampleLines(Planes& planes, Size shown, double linePx, bool draw)
{
    const std::int64_t n = lineCount(shown.height, linePx);
    if (!draw && n >= 2 * shown.height) return; // twice the lines take nothing from the picture
    for (Plane& plane : planes) {
        plane = pilResize(plane, {shown.width, n}, Resampling::box);
        if (draw) continue;
        plane = pilResize(plane, shown, Resampling::lanczos);
        float* values = plane.mutableData();
        for (std::int64_t i = 0; i < plane.count(); ++i) values[i] = std::clamp(values[i], 0.0f, 1.0f);
    }
}

/// Part of the light spreads in the glass.
Plane bloomed(Plane plane, double share, double sigmaPx)
{
    Plane glow = blurChannel(plane, sigmaPx);
    const auto rest = static_cast<float>(1.0 - share), part = static_cast<float>(share);
    float* values = plane.mutableData();
    const float* spread = glow.data.data();
    const std::int64_t width = plane.width;
    parallelBands(plane.height, width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t i = start * width; i < end * width; ++i)
            values[i] = rest * values[i] + part * spread[i];
    });
    return plane;
}

/// The curved face, its frame's corners held where they are.
Planes bulged(Planes planes, const Tube& tube)
{
    const auto [width, height] = planes[0].size();
    const auto k = static_cast<float>(tube.bulge);
    const float per = 1.0f / (1.0f + k * (tube.cylinder ? 1.0f : 2.0f));
    const float w = static_cast<float>(width), h = static_cast<float>(height);
    Planes out;
    for (std::size_t c = 0; c < planes.size(); ++c) out.emplace_back(width, height);
    std::array<float*, 3> data{};
    for (std::size_t c = 0; c < out.size(); ++c) data[c] = out[c].mutableData();
    parallelBands(height, width * 16, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            const float yn = (static_cast<float>(y) + 0.5f) / h * 2.0f - 1.0f;
            const float yn2 = tube.cylinder ? 0.0f : yn * yn;
            for (std::int64_t x = 0; x < width; ++x) {
                const float xn = (static_cast<float>(x) + 0.5f) / w * 2.0f - 1.0f;
                const float f = (1.0f + k * (xn * xn + yn2)) * per;
                const float atX = (xn * f + 1.0f) * 0.5f * w - 0.5f, atY = (yn * f + 1.0f) * 0.5f * h - 0.5f;
                for (std::size_t c = 0; c < planes.size(); ++c)
                    data[c][y * width + x] = readBicubic(planes[c], atX, atY);
            }
        }
    });
    return out;
}

RGBImage photographed(const Planes& planes, const Tube& tube, const std::vector<float>& lut)
{
    const auto [width, height] = planes[0].size();
    RGBImage out(width, height);
    float* pixels = out.mutableData();
    parallelBands(height, width * 3, [&](std::int64_t start, std::int64_t end) {
        std::array<const float*, 3> rows{};
        for (std::size_t c = 0; c < 3; ++c) rows[c] = planes[c % planes.size()].row(start);
        crt_finish(pixels + start * width * 3, rows, (end - start) * width, {lut, tube.colour});
    });
    return out;
}

} // namespace

RGBImage CRTScreen::apply(RGBImage image, Size shown, const PaperProfile& paper, const RenderOptions& options,
                          double pxUm)
{
    const double p = std::max(pxUm, 1e-6);
    const Tube face = tube(paper, options);
    const Geometry structure = geometry(paper, p, shown.height, options);
    // A render that only asks for the darkest value has no structure.
    const bool lines = structure.linesDrawn && !options.blackProbe;
    const bool mask = structure.maskDrawn && !options.blackProbe;

    Planes planes =
        throughVideo(takeIn(std::move(image), shown, face), face.lumaCycles, face.chromaCycles, face.mono());
    sampleLines(planes, shown, structure.linePx, lines);
    ScreenPlan plan{face, shown, p};
    plan.linePx = lines ? structure.linePx : 0.0;
    plan.maskPx = mask ? structure.maskPx : 0.0;
    plan.zoom = screen(paper, options).zoom;
    if (mask) {
        GrainRNG rng = Seeds::streamRNG(options, Seeds::SeedStream::print);
        plan.phaseX = rng.random();
        plan.phaseY = rng.random();
    }
    planes = drawScreen(std::move(planes), plan);
    if (face.bloom > kLeastShare)
        for (Plane& plane : planes) plane = bloomed(std::move(plane), face.bloom, face.bloomMm * 1000.0 / p);
    if (face.bulge > kLeastBulge) planes = bulged(std::move(planes), face);
    const double camera = face.cameraPsfUm / p;
    if (camera >= kLeastSigmaPx)
        for (Plane& plane : planes) plane = blurChannel(std::move(plane), camera);
    return photographed(planes, face, toneLUT(paper, {structure.maskPx > 0.0 && !mask, !lines}, options));
}

} // namespace tamlo
