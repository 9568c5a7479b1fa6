#include "core/process/crt/video_signal.h"

#include "core/process/crt/crt_passes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tamlo {
namespace {

using namespace CRTScreen;

constexpr double kLeastSigmaPx = 0.3;   // a blur below this is none
constexpr double kDirectSigmaPx = 16.0; // up to this every pixel is a node
constexpr double kTruncate = 4.5;       // of each of the two halves of a wide blur
constexpr double kWidestRows = 4.0;     // row widths: any wider is as even
constexpr double kNodesPerSigma = 0.85; // sigma / √2 over this many nodes: aliases of 1e-12

std::vector<float> toFloat(const std::vector<double>& values)
{
    return {values.begin(), values.end()};
}

} // namespace

CRTScreen::VideoMatrix CRTScreen::invert3(const VideoMatrix& m)
{
    const auto cofactor = [&](std::size_t i, std::size_t j) {
        const std::size_t a = (i + 1) % 3, b = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
        return m[a][c] * m[b][d] - m[a][d] * m[b][c];
    };
    const double det = m[0][0] * cofactor(0, 0) + m[0][1] * cofactor(0, 1) + m[0][2] * cofactor(0, 2);
    VideoMatrix out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) out[j][i] = cofactor(i, j) / det;
    return out;
}

const CRTScreen::VideoMatrix& CRTScreen::yuvInv()
{
    static const VideoMatrix inverse = invert3(yuv);
    return inverse;
}

double CRTScreen::bandSigmaPx(std::int64_t width, double cycles)
{
    constexpr double kSigmaCycles = 0.2469; // sqrt(-ln 0.3 / 2) / pi
    return kSigmaCycles * static_cast<double>(width) / cycles;
}

RowBlur::RowBlur(double sigma, std::int64_t width, EdgeMode edge) : width_(width), edge_(edge)
{
    sigma = std::min(sigma, kWidestRows * static_cast<double>(width));
    if (sigma < kLeastSigmaPx) return;
    if (sigma < kDirectSigmaPx) {
        pad_ = static_cast<std::int64_t>(4.0 * sigma + 0.5);
        collect_ = toFloat(gaussianKernel1D(sigma, pad_));
        return;
    }
    const double half = sigma / std::numbers::sqrt2;
    step_ = static_cast<std::int64_t>(half * kNodesPerSigma);
    const auto radius = static_cast<std::int64_t>(std::ceil(kTruncate * half));
    collect_ = toFloat(gaussianKernel1D(half, radius));
    reach_ = (radius + step_ - 1) / step_;
    firstNode_ = -reach_;
    nodes_ = (width - 1) / step_ + 1 + 2 * reach_;
    pad_ = std::max(reach_ * step_ + radius, (firstNode_ + nodes_) * step_ + radius - width);

    stride_ = (step_ + spreadBlock - 1) / spreadBlock * spreadBlock;
    spread_.resize(static_cast<std::size_t>((2 * reach_ + 1) * stride_));
    for (std::int64_t p = 0; p < step_; ++p) {
        double sum = 0.0;
        std::vector<double> weights(static_cast<std::size_t>(2 * reach_ + 1));
        for (std::int64_t m = -reach_; m <= reach_; ++m) {
            const double e = static_cast<double>(p - m * step_) / half;
            weights[static_cast<std::size_t>(m + reach_)] = std::exp(-0.5 * e * e);
            sum += weights[static_cast<std::size_t>(m + reach_)];
        }
        for (std::int64_t m = 0; m <= 2 * reach_; ++m)
            spread_[static_cast<std::size_t>(m * stride_ + p)] =
                static_cast<float>(weights[static_cast<std::size_t>(m)] / sum);
    }
}

void RowBlur::fillPadded(const float* row, std::vector<float>& padded) const
{
    padded.resize(static_cast<std::size_t>(width_ + 2 * pad_));
    const auto beyond = [&](std::int64_t x) {
        return row[edge_ == EdgeMode::reflect ? reflectIndex(x, width_)
                                              : std::clamp<std::int64_t>(x, 0, width_ - 1)];
    };
    for (std::int64_t i = 0; i < pad_; ++i) {
        padded[static_cast<std::size_t>(i)] = beyond(i - pad_);
        padded[static_cast<std::size_t>(pad_ + width_ + i)] = beyond(width_ + i);
    }
    std::copy_n(row, width_, padded.begin() + pad_);
}

void RowBlur::apply(float* row, Scratch& scratch) const
{
    if (idle()) return;
    std::vector<float>& padded = scratch.padded;
    fillPadded(row, padded);
    const auto taps = static_cast<std::int64_t>(collect_.size());
    if (step_ == 1) {
        std::fill_n(row, width_, 0.0f);
        for (std::int64_t i = 0; i < taps; ++i)
            add_run(row, padded.data() + i, collect_[static_cast<std::size_t>(i)], width_);
        return;
    }
    std::vector<float>& nodes = scratch.nodes;
    nodes.resize(static_cast<std::size_t>(nodes_));
    for (std::int64_t j = 0; j < nodes_; ++j)
        nodes[static_cast<std::size_t>(j)] =
            dot_run(collect_.data(), padded.data() + pad_ + (firstNode_ + j) * step_ - taps / 2, taps);
    std::vector<float>& out = scratch.out;
    out.resize(static_cast<std::size_t>(width_ + step_ + stride_));
    spread_nodes(out.data(), width_, {nodes, spread_, step_, stride_, reach_});
    std::copy_n(out.begin(), width_, row);
}

CRTScreen::VideoSignal::VideoSignal(std::int64_t width, double lumaCycles, double chromaCycles, bool mono)
    : width_(width),
      mono_(mono),
      luma_(bandSigmaPx(width, lumaCycles), width),
      chroma_(bandSigmaPx(width, chromaCycles), width)
{
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) inverse_[i][j] = static_cast<float>(yuvInv()[i][j]);
}

void CRTScreen::VideoSignal::row(const float* pixels, const std::array<float*, 3>& rows,
                                 RowBlur::Scratch& scratch) const
{
    crt_encode(pixels, rows, width_);
    luma_.apply(rows[0], scratch);
    if (mono_) return crt_decode_mono(rows[0], width_);
    chroma_.apply(rows[1], scratch);
    chroma_.apply(rows[2], scratch);
    crt_decode(rows, inverse_, width_);
}

} // namespace tamlo
