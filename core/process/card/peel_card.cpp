#include "core/process/card/peel_card.h"

#include "core/image/gaussian.h"
#include "core/process/card/card_geometry.h"
#include "core/process/card/peel_edge.h"
#include "core/process/mat/canvas.h"
#include "core/process/noise/mm_field.h"
#include "core/profiles/options/peel_size.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr float kNoEdge = -10.0f; // where there is no emulsion
constexpr double kMaskMm = 0.04;
constexpr double kLeastMaskPx = 0.3;

Size turnedSize(Size size)
{
    return {size.height, size.width};
}

double chipsOf(const InstantFrameParams& frame, std::string_view key)
{
    constexpr double kMost = 1e3;
    double chips = frame.chips.value_or(1.0);
    if (frame.chipsBySize)
        if (const auto own = frame.chipsBySize->find(std::string(key)); own != frame.chipsBySize->end())
            chips = own->second;
    return std::clamp(chips, 0.0, kMost);
}

/// 1 on the picture's samples of an axis, 0 beyond, as soft as the mask.
std::vector<float> windowOf(std::int64_t canvas, std::int64_t first, std::int64_t samples, double sigmaPx)
{
    Plane line(canvas, 1);
    std::fill_n(line.mutableData() + first, samples, 1.0f);
    if (sigmaPx > 0.0) line = gaussianFilter1D(std::move(line), sigmaPx, FilterAxis::x, EdgeMode::reflect);
    return {line.row(0), line.row(0) + canvas};
}

/// The edges of the emulsion, in the order in which they are drawn.
void planEdges(PeelParams& p, const Pipeline::PeelSize& sheet, double chips, GrainRNG& rng)
{
    const bool wide = p.picture.width >= p.picture.height;
    const double widthMm = wide ? sheet.imageMm.longMm : sheet.imageMm.shortMm;
    const double heightMm = wide ? sheet.imageMm.shortMm : sheet.imageMm.longMm;
    float deepest = 0.0f;
    const auto edge = [&](std::int64_t canvas, std::int64_t first, std::int64_t length, double mm,
                          bool isFar) {
        const std::vector<float> offsets = Pipeline::peelEdgeOffsets(length, p.ppmm, rng, chips, mm);
        std::vector<float> line(static_cast<std::size_t>(canvas), kNoEdge);
        // The other side of the window, which a far edge is measured from.
        const std::int64_t across = canvas == p.canvas.width ? p.picture.height : p.picture.width;
        const std::int64_t begin = canvas == p.canvas.width ? p.top : p.side;
        for (std::size_t i = 0; i < offsets.size(); ++i) {
            deepest = std::max(deepest, offsets[i]);
            line[static_cast<std::size_t>(first) + i] = isFar
                                                            ? static_cast<float>(begin + across) - offsets[i]
                                                            : static_cast<float>(begin) + offsets[i];
        }
        return line;
    };
    p.topEdge = edge(p.canvas.width, p.side, p.picture.width, widthMm, false);
    p.bottomEdge = edge(p.canvas.width, p.side, p.picture.width, widthMm, true);
    p.leftEdge = edge(p.canvas.height, p.top, p.picture.height, heightMm, false);
    p.rightEdge = edge(p.canvas.height, p.top, p.picture.height, heightMm, true);
    p.reachPx = static_cast<std::int64_t>(std::ceil(deepest + 4.0 * p.maskSigmaPx)) + 2;
}

} // namespace

PeelParams Pipeline::planPeel(Size picture, const InstantFrameParams& frame, const OptText& peelSize,
                              double knob, GrainRNG& rng)
{
    constexpr Vec3d kBase{0.985, 0.992, 1.0};
    constexpr double kFibreMm[2] = {0.08, 0.04}, kLeastFibrePx = 0.5;
    constexpr double kBlotMm = 6.0;
    constexpr std::uint32_t kBlotLayer = 41;
    const PeelSize& sheet = peelSizeCfg(frame, peelSize);
    const CardMargins whites = instantFrameWhites(picture, frame, peelSize);
    PeelParams p;
    p.turned = isTurnedCard(frame, picture);
    p.picture = p.turned ? turnedSize(picture) : picture;
    p.side = p.turned ? whites.top : whites.left;
    p.top = p.turned ? whites.left : whites.top;
    p.canvas = p.turned ? turnedSize(whites.around(picture)) : whites.around(picture);
    p.ppmm = static_cast<double>(std::max(picture.width, picture.height)) / sheet.imageMm.longMm;
    const double sigma = kMaskMm * p.ppmm;
    p.maskSigmaPx = sigma >= kLeastMaskPx ? sigma : 0.0;
    planEdges(p, sheet, chipsOf(frame, sheet.key), rng);
    p.windowX = windowOf(p.canvas.width, p.side, p.picture.width, p.maskSigmaPx);
    p.windowY = windowOf(p.canvas.height, p.top, p.picture.height, p.maskSigmaPx);
    for (std::size_t c = 0; c < 3; ++c) p.base[c] = static_cast<float>(frame.baseTint.value_or(kBase)[c]);

    const double edgeYellow = std::clamp(frame.edgeYellow.value_or(1.0), 0.0, 1e3);
    if (edgeYellow > 0.0) p.yellow = std::clamp(knob, 0.0, 1.0) * edgeYellow * (0.15 + 0.45 * rng.random());
    p.seed = static_cast<std::uint32_t>(rng.nextUInt64());
    if (p.yellow > 0.0) p.blot = Film::mmField(p.canvas, p.ppmm, {kBlotMm, kBlotMm}, {p.seed, kBlotLayer});
    for (std::size_t k = 0; k < 2; ++k) p.fibreSigmaPx[k] = std::max(kFibreMm[k] * p.ppmm, kLeastFibrePx);
    return p;
}

RGBImage Pipeline::peelFrame(const RGBImage& picture, const InstantFrameParams& frame,
                             const OptText& peelSize, double devMottle, GrainRNG& rng)
{
    const Size size = instantFrameWhites(picture.size(), frame, peelSize).around(picture.size());
    Finishing::checkCanvas(size);
    const PeelParams params = planPeel(picture.size(), frame, peelSize, devMottle, rng);
    RGBImage sheet(size.width, size.height);
    peel_compose(sheet, picture, params);
    return sheet;
}

} // namespace tamlo
