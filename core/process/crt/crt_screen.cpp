#include "core/process/crt/crt_screen.h"

#include "core/image/bands.h"
#include "core/image/blur_bands.h"
#include "core/image/cancellation.h"
#include "core/image/resample.h"
#include "core/process/crt/crt_passes.h"
#include "core/process/crt/face_passes.h"
#include "core/process/crt/scan_lines.h"
#include "core/process/crt/screen_rows.h"
#include "core/process/crt/shown_rows.h"
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

constexpr double kLeastShare = 0.0001; // a bloom below this is none
constexpr double kLeastBulge = 1e-6;
constexpr double kLeastSigmaPx = 0.3;
constexpr std::int64_t kRowsACancel = 64;

/// The picture's signal, sampled into the `count` lines that the tube draws or as many as it has rows: one
/// plane of a single tube, three otherwise. No picture of the signal ever stands in memory.
Planes signalLines(const RGBImage& image, Size shown, const Tube& tube, std::int64_t count)
{
    const ShownRows picture(image, shown, tube.overscan);
    const VideoSignal video(shown.width, tube.lumaCycles, tube.chromaCycles, tube.mono());
    const ResampleCoeffs boxes(shown.height, count, Resampling::box);
    Planes planes(tube.mono() ? 1 : 3);
    std::array<float*, 3> data{};
    for (std::size_t c = 0; c < planes.size(); ++c) {
        planes[c] = Plane(shown.width, count);
        data[c] = planes[c].mutableData();
    }
    const std::int64_t rowsALine = (shown.height - 1) / count + 1;
    parallelBands(count, shown.width * 8 * rowsALine, [&](std::int64_t start, std::int64_t end) {
        ShownRows::Reader reader(picture);
        RowBlur::Scratch scratch;
        std::array<std::vector<float>, 3> room;
        std::array<float*, 3> rows{};
        for (std::size_t c = 0; c < 3; ++c) {
            room[c].resize(static_cast<std::size_t>(shown.width));
            rows[c] = room[c].data();
        }
        for (std::int64_t line = start; line < end; ++line) {
            const auto i = static_cast<std::size_t>(line);
            for (std::int64_t j = 0; j < boxes.n[i]; ++j) {
                if (j % kRowsACancel == 0) cancellationPoint();
                video.row(reader.row(boxes.xmin[i] + j), rows, scratch);
                const auto weight = static_cast<float>(
                    boxes.k[i * static_cast<std::size_t>(boxes.ksize) + static_cast<std::size_t>(j)]);
                for (std::size_t c = 0; c < planes.size(); ++c)
                    add_run(data[c] + line * shown.width, rows[c], weight, shown.width);
            }
        }
    });
    return planes;
}

/// The lines as the rest of the chain takes them: as they are where they are drawn, back in rows of pixels
/// where they can't be.
Planes sampled(const RGBImage& image, Size shown, const Tube& tube, double linePx, bool draw)
{
    const std::int64_t n = lineCount(shown.height, linePx);
    // Twice the lines take nothing from the picture.
    if (!draw && n >= 2 * shown.height) return signalLines(image, shown, tube, shown.height);
    Planes planes = signalLines(image, shown, tube, n);
    if (draw) return planes;
    for (Plane& plane : planes) {
        plane = pilResize(plane, shown, Resampling::lanczos);
        float* values = plane.mutableData();
        for (std::int64_t i = 0; i < plane.count(); ++i) values[i] = std::clamp(values[i], 0.0f, 1.0f);
    }
    return planes;
}

/// Part of the light spreads in the glass.
Plane bloomed(Plane plane, double share, double sigmaPx)
{
    if (!(sigmaPx > 0.0)) return plane;
    const std::int64_t width = plane.width;
    float* values = plane.mutableData();
    const EnlargedRows glow = heldBlur(plane.size(), 1, sigmaPx, [&](std::int64_t y, float* to) {
        std::copy_n(values + y * width, width, to);
    });
    const auto rest = static_cast<float>(1.0 - share), part = static_cast<float>(share);
    parallelBands(plane.height, width, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> spread(static_cast<std::size_t>(width));
        for (std::int64_t y = start; y < end; ++y) {
            glow.row(y, spread.data());
            mix_run(values + y * width, rest, spread.data(), part, width);
        }
    });
    return plane;
}

/// What the camera sees through its lens of the curved face, whose frame's corners are held where they are.
class Face {
public:
    Face(const Planes& planes, const Tube& tube) : planes_(planes), size_(planes[0].size())
    {
        curved_ = tube.bulge > kLeastBulge;
        cylinder_ = tube.cylinder;
        k_ = static_cast<float>(tube.bulge);
        per_ = 1.0f / (1.0f + k_ * (cylinder_ ? 1.0f : 2.0f));
    }

    /// Row y: one channel of a single tube, interleaved otherwise.
    void row(std::int64_t y, float* to) const
    {
        const std::int64_t width = size_.width;
        const std::size_t channels = planes_.size();
        if (!curved_) {
            if (channels == 1)
                std::copy_n(planes_[0].row(y), width, to);
            else
                crt_interleave(to, {planes_[0].row(y), planes_[1].row(y), planes_[2].row(y)}, width);
            return;
        }
        const float yn = (static_cast<float>(y) + 0.5f) / static_cast<float>(size_.height) * 2.0f - 1.0f;
        const FaceRow row{planes_, yn, cylinder_ ? 0.0f : yn * yn, k_, per_};
        if (channels == 1) return face_row({to, to, to}, row);
        std::vector<float> room(static_cast<std::size_t>(3 * width));
        float* r = room.data();
        face_row({r, r + width, r + 2 * width}, row);
        crt_interleave(to, {r, r + width, r + 2 * width}, width);
    }

private:
    const Planes& planes_;
    Size size_;
    bool curved_, cylinder_;
    float k_, per_;
};

/// Into `out`, which is the picture's own block where that has the size shown.
RGBImage photographed(const Planes& planes, RGBImage out, const Tube& tube, double cameraPx,
                      const std::vector<float>& lut)
{
    const Size size = planes[0].size();
    const std::int64_t width = size.width, channels = planes.size() == 1 ? 1 : 3;
    if (out.size() != size || !out.data.isUnique()) out = RGBImage(width, size.height);
    float* pixels = out.mutableData();
    const Face face(planes, tube);
    const ToneParams tone{lut, tube.colour};
    const auto finish = [&](std::int64_t y, const float* row) {
        float* to = pixels + y * width * 3;
        if (channels == 1)
            crt_interleave(to, {row, row, row}, width);
        else if (row != to)
            std::copy_n(row, width * 3, to);
        crt_finish(to, width, tone);
    };
    if (cameraPx >= kLeastSigmaPx) {
        blurInBands(
            size, channels, cameraPx, [&](std::int64_t y, float* to) { face.row(y, to); }, finish);
        return out;
    }
    parallelBands(size.height, width * 16, [&](std::int64_t start, std::int64_t end) {
        std::vector<float> row(static_cast<std::size_t>(width * channels));
        for (std::int64_t y = start; y < end; ++y) {
            face.row(y, row.data());
            finish(y, row.data());
        }
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

    Planes planes = sampled(image, shown, face, structure.linePx, lines);
    if (image.size() != shown) image = {};
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
    return photographed(planes, std::move(image), face, face.cameraPsfUm / p,
                        toneLUT(paper, {structure.maskPx > 0.0 && !mask, !lines}, options));
}

} // namespace tamlo
