// The picture as a video signal: luminance and two colour differences in gamma-encoded light, each as sharp
// along a line as its band lets it be. Colour has a fifth of the lines of brightness on a broadcast, so that
// it runs over the outlines. Domain: display-linear light, 0...1, in and out.
#pragma once

#include "core/image/gaussian.h"
#include "core/image/rgb_image.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo::CRTScreen {

/// RGB to YUV by rows, and back.
using VideoMatrix = std::array<std::array<double, 3>, 3>;
inline constexpr VideoMatrix yuv{
    {{0.299, 0.587, 0.114}, {-0.14713, -0.28886, 0.436}, {0.615, -0.51499, -0.10001}}};
VideoMatrix invert3(const VideoMatrix& m);
const VideoMatrix& yuvInv();

/// A Gaussian along a row, its edge repeated or mirrored, at a cost that does not grow with its reach: a wide
/// one is two of sigma / √2, the first taken only at nodes as far apart as it allows, the second carrying the
/// nodes back to the pixels. Both are wide against the nodes, so that what is left of them is below 1e-11.
class RowBlur {
public:
    /// Units: sigma in pixels; below 0.3 it does nothing.
    RowBlur(double sigma, std::int64_t width, EdgeMode edge = EdgeMode::nearest);
    bool idle() const { return collect_.empty(); }

    /// Room for one band.
    struct Scratch {
        std::vector<float> padded, nodes, out;
    };
    void apply(float* row, Scratch& scratch) const;

private:
    void fillPadded(const float* row, std::vector<float>& padded) const;

    std::int64_t width_ = 0;
    EdgeMode edge_ = EdgeMode::nearest;
    std::int64_t step_ = 1; ///< pixels a node
    std::int64_t pad_ = 0;
    std::int64_t firstNode_ = 0, nodes_ = 0;
    std::vector<float> collect_; ///< kernel of the nodes, or the whole kernel where every pixel is one
    /// Weights of node j + m on pixel j × step + p: spread_[(m + reach_) × stride + p].
    std::vector<float> spread_;
    std::int64_t stride_ = 1, reach_ = 0;
};

/// Sigma of the blur that leaves 0.3 of the last cycle of a band.
double bandSigmaPx(std::int64_t width, double cycles);

/// The whole way of a row through the signal and back.
class VideoSignal {
public:
    VideoSignal(std::int64_t width, double lumaCycles, double chromaCycles, bool mono);
    /// Three rows of red, green and blue; of a single tube's brightness in the first, the others work room.
    void row(const float* pixels, const std::array<float*, 3>& rows, RowBlur::Scratch& scratch) const;

private:
    std::int64_t width_;
    bool mono_;
    RowBlur luma_, chroma_;
    std::array<Vec3f, 3> inverse_{};
};

} // namespace tamlo::CRTScreen
