#include "core/process/tricolor/registration.h"

#include "core/image/gaussian.h"
#include "core/image/interpolation.h"
#include "core/process/noise/noise_fields.h"
#include "core/process/noise/noise_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using namespace Tricolor;

constexpr double kStillPx = 0.001;  // a displacement up to this is none
constexpr double kFarPx = 1e6;      // beyond any picture: what a profile of nonsense is held to
constexpr double kNodesPerCell = 4; // nodes of the lattice in a cell of the warp
constexpr double kNodeSigma = 2.0;  // blur of the lattice, nodes
constexpr std::int64_t kPadNodes = 4;
constexpr double kMostNodes = 1024.0; // a side; a warp any finer would be smaller than what it moves
constexpr std::array<double, 2> kOctaves{1.0, 0.5};
constexpr std::uint32_t kFirstLayer = 80;

double held(double v)
{
    return std::isfinite(v) ? std::clamp(v, -kFarPx, kFarPx) : 0.0;
}

/// Nodes that cover a side of the picture, less those beyond it.
std::int64_t nodesFor(double sideMm, double nodeMm)
{
    constexpr double kRounding = 1e-9; // of a side that is a whole number of nodes
    return std::max<std::int64_t>(static_cast<std::int64_t>(std::ceil(sideMm / nodeMm - kRounding)), 1);
}

} // namespace

RegPlan Tricolor::tricolorRegistrationPlan(const TricolorParams& tricolor, const RenderOptions& options,
                                           double pxUm, GrainRNG& rng)
{
    const TricolorRegistration r = tricolor.registration.value_or(TricolorRegistration{});
    const double k = std::max(options.plateShift, 0.0);
    const double margin = r.margin.value_or(0.015);
    RegPlan plan;
    plan.ppmm = 1000.0 / std::max(pxUm, 1e-6);
    plan.warpAmp = held(k * plan.ppmm * r.warpMm.value_or(0.15));
    plan.warpCellMm = r.warpCellMm.value_or(15.0);
    const double shiftPx = k * r.shiftMm.value_or(0.25) * plan.ppmm;
    const double rot = k * r.rotateDeg.value_or(0.15) * std::numbers::pi / 180.0;
    const double sc = k * r.scale.value_or(0.003);
    for (std::size_t i = 0; i < plan.plates.size(); ++i) {
        PlatePlacement& plate = plan.plates[i];
        if (i > 0) {
            const double n1 = rng.nextNormal(), n2 = rng.nextNormal();
            const double n3 = rng.nextNormal(), n4 = rng.nextNormal();
            plate.dx0 = held(shiftPx * n1);
            plate.dy0 = held(shiftPx * n2);
            plate.th = held(rot * n3);
            plate.s = held(sc * n4);
        }
        for (double* side : {&plate.margins.l, &plate.margins.t, &plate.margins.r, &plate.margins.b})
            *side = std::clamp(margin * rng.random(), 0.0, 1.0);
    }
    plan.seed = static_cast<std::uint32_t>(rng.nextUInt64());
    return plan;
}

std::pair<double, double> Tricolor::globalOffset(const PlatePlacement& plate, double x, double y)
{
    return {plate.dx0 + plate.s * x - plate.th * y, plate.dy0 + plate.s * y + plate.th * x};
}

std::vector<RegistrationField::Tap> RegistrationField::taps(std::int64_t pixels, std::int64_t nodes)
{
    std::vector<Tap> out(static_cast<std::size_t>(pixels));
    const double perPixel = static_cast<double>(nodes) / static_cast<double>(pixels);
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double at =
            std::clamp((static_cast<double>(i) + 0.5) * perPixel - 0.5, 0.0, static_cast<double>(nodes - 1));
        const auto first = static_cast<std::int64_t>(at);
        out[i] = {static_cast<std::int32_t>(first), static_cast<std::int32_t>(std::min(first + 1, nodes - 1)),
                  static_cast<float>(at - static_cast<double>(first))};
    }
    return out;
}

RegistrationField::Octave RegistrationField::octave(const RegPlan& plan, std::size_t plate, Size size,
                                                    std::uint32_t index, bool alongX)
{
    const double widthMm = static_cast<double>(size.width) / plan.ppmm;
    const double heightMm = static_cast<double>(size.height) / plan.ppmm;
    const double nodeMm = std::max(plan.warpCellMm * kOctaves[index] / kNodesPerCell,
                                   std::max({widthMm, heightMm, 1e-9}) / kMostNodes);
    const std::int64_t gw = nodesFor(widthMm, nodeMm), gh = nodesFor(heightMm, nodeMm);
    const std::uint32_t layer =
        kFirstLayer + 4 * static_cast<std::uint32_t>(plate) + 2 * index + (alongX ? 0u : 1u);
    Plane padded = noisePlane({gw + 2 * kPadNodes, gh + 2 * kPadNodes}, {plan.seed, layer});
    padded = normalizePlane(gaussianFilter(std::move(padded), kNodeSigma, EdgeMode::nearest));

    Octave out;
    out.nodes = Plane(gw, gh);
    float* to = out.nodes.mutableData();
    for (std::int64_t y = 0; y < gh; ++y) std::copy_n(padded.row(y + kPadNodes) + kPadNodes, gw, to + y * gw);
    for (const Tap& tap : taps(size.width, gw)) {
        out.columns.push_back(tap.first);
        out.shares.push_back(tap.fraction);
    }
    out.rows = taps(size.height, gh);
    out.gain = static_cast<float>(plan.warpAmp * kOctaves[index]);
    out.alongX = alongX;
    return out;
}

std::optional<RegistrationField> RegistrationField::of(const RegPlan& plan, std::size_t plate, Size size)
{
    RegistrationField field;
    field.size_ = size;
    field.plate_ = plan.plates[plate];
    const double cx = 0.5 * static_cast<double>(size.width - 1);
    const double cy = 0.5 * static_cast<double>(size.height - 1);
    double farthest = 0.0;
    for (const double x : {-cx, cx})
        for (const double y : {-cy, cy}) {
            const auto [dx, dy] = globalOffset(field.plate_, x, y);
            farthest = std::max({farthest, std::abs(dx), std::abs(dy)});
        }
    const bool warps = plan.warpAmp > kStillPx;
    if (!warps && farthest <= kStillPx) return std::nullopt;
    if (warps)
        for (std::uint32_t o = 0; o < kOctaves.size(); ++o)
            for (const bool alongX : {true, false})
                field.octaves_.push_back(octave(plan, plate, size, o, alongX));
    return field;
}

RegistrationField::Rows::Rows(const RegistrationField& field)
    : field_(field),
      line_(static_cast<std::size_t>(field.size_.width)),
      dx_(static_cast<std::size_t>(field.size_.width)),
      dy_(static_cast<std::size_t>(field.size_.width))
{}

std::pair<const float*, const float*> RegistrationField::Rows::row(std::int64_t y)
{
    const auto [width, height] = field_.size_;
    const double ys = static_cast<double>(y) - 0.5 * static_cast<double>(height - 1);
    const double cx = 0.5 * static_cast<double>(width - 1);
    const auto [startX, startY] = globalOffset(field_.plate_, -cx, ys);
    const auto stepX = static_cast<float>(field_.plate_.s), stepY = static_cast<float>(field_.plate_.th);
    for (std::size_t x = 0; x < dx_.size(); ++x) {
        dx_[x] = static_cast<float>(startX) + stepX * static_cast<float>(x);
        dy_[x] = static_cast<float>(startY) + stepY * static_cast<float>(x);
    }
    for (const Octave& octave : field_.octaves_) {
        const Tap down = octave.rows[static_cast<std::size_t>(y)];
        const float *above = octave.nodes.row(down.first), *below = octave.nodes.row(down.second);
        const auto count = static_cast<std::size_t>(octave.nodes.width);
        nodes_.resize(count + 1 + kNodesBeyond);
        for (std::size_t i = 0; i < count; ++i)
            nodes_[i] = octave.gain * lerp(above[i], below[i], down.fraction);
        nodes_[count] = nodes_[count - 1]; // the last node goes on
        lattice_row(line_.data(), nodes_.data(), octave.columns.data(), octave.shares.data(), width);
        float* to = (octave.alongX ? dx_ : dy_).data();
        const float* line = line_.data();
        for (std::int64_t x = 0; x < width; ++x) to[x] += line[x];
    }
    return {dx_.data(), dy_.data()};
}

} // namespace tamlo
