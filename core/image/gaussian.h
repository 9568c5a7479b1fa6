// The one separable Gaussian of the system: every blur of known size (halation, softness, paper fibre, grain
// clumps) goes through here. Kernel length, edges and the fallback for very wide blurs are fixed, and follow
// scipy.ndimage.gaussian_filter, so that a radius and an edge mode mean what they mean there.
// Sums are folded in 64-bit floats; the pass along y runs first, then the pass along x, and each one rounds
// to 32-bit floats. A unique image is filtered in place: hand it over with std::move.
#pragma once

#include "core/image/plane.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <vector>

namespace tamlo {

/// What a filter reads outside the image.
enum class EdgeMode {
    nearest,  ///< the edge sample repeated
    wrap,     ///< the image repeated
    reflect,  ///< half-sample mirror: (d c b a | a b c d | d c b a)
    constant, ///< 0
};

/// The axis of a one-dimensional filter.
enum class FilterAxis {
    y = 0, ///< down the columns
    x = 1, ///< along the rows
};

/// Above this sigma, in pixels, blur works on a reduced image.
inline constexpr double kDirectBlurSigmaPx = 10.0;

/// Normalised kernel exp(-0.5 i² / sigma²) for i from -radius to radius.
std::vector<double> gaussianKernel1D(double sigma, std::int64_t radius);

/// The half of it from the centre on: w[0...radius] with radius floor(truncate × sigma + 0.5).
std::vector<double> gaussianHalfKernel(double sigma, double truncate = 4.0);

/// Sum of the squares of a whole kernel of this half: the variance that it leaves of white noise.
double kernelPower(const std::vector<double>& half);

/// Index i brought into 0...n - 1 by the half-sample mirror, as many times as it takes. n is at least 1.
std::int64_t reflectIndex(std::int64_t i, std::int64_t n);

/// Two-dimensional Gaussian. Units: sigma in pixels; the kernel reaches trunc(sigma × truncate + 0.5) pixels.
/// A sigma of 1e-15 or less leaves the image bit for bit the same.
Plane gaussianFilter(Plane plane, double sigma, EdgeMode mode, double truncate = 4.0);
RGBImage gaussianFilter(RGBImage image, double sigma, EdgeMode mode, double truncate = 4.0);

/// Gaussian along one axis.
Plane gaussianFilter1D(Plane plane, double sigma, FilterAxis axis, EdgeMode mode, double truncate = 4.0);

/// Gaussian with a sigma of its own on each axis, truncate 4.
Plane gaussianFilter2(Plane plane, double sigmaY, double sigmaX, EdgeMode mode);
RGBImage gaussianFilter2(RGBImage image, double sigmaY, double sigmaX, EdgeMode mode);

/// Samples that a filter reads beyond its own on each side.
struct FilterPad {
    std::int64_t y = 0;
    std::int64_t x = 0;
};

/// What of gaussianFilter2 reads no edge: the plane without its pad, which is at least the kernels' reach.
/// Bit for bit the inside of the filtered plane, without the work on the rest.
Plane gaussianInside(const Plane& padded, double sigmaY, double sigmaX, FilterPad pad);

/// How a blur wider than kDirectBlurSigmaPx is done: on a plane shrunk by sigma / 6 (never below 16 samples a
/// side), with this sigma there. A sigma above 64 picture widths counts as that many, far beyond the one that
/// spreads evenly over the picture: a profile may name any reach, and the kernel must stay within reason.
struct ReducedBlur {
    Size small;
    double sigmaPx = 0;
};
ReducedBlur planReducedBlur(Size size, double sigmaPx);

/// Blur with the edge sample repeated. Up to kDirectBlurSigmaPx it is gaussianFilter; a wider one is done by
/// planReducedBlur and enlarged again, so that it costs as much as a blur of sigma 6. Unchanged when sigma is
/// not above 0.
Plane blurChannel(Plane plane, double sigma);

/// blurChannel on each channel of an image.
RGBImage blur(RGBImage image, double sigma);

} // namespace tamlo
