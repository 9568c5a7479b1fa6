#include "core/process/noise/mm_field.h"

#include "core/image/bands.h"
#include "core/image/gaussian.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tamlo {
namespace {

constexpr double kNodesPerMm = 4.0;
constexpr double kWidestNodes = 48.0; // a sigma of so many nodes is smooth between them
constexpr double kMostNodes = 4096.0;
constexpr double kLeastMm = 1e-6;
constexpr double kLeastSigmaNodes = 0.3;

std::int64_t padOf(double sigmaNodes)
{
    return static_cast<std::int64_t>(std::ceil(4.0 * sigmaNodes));
}

} // namespace

Film::MmGrid::MmGrid(Size pixels, double pxPerMm, double widestMm)
    : picture(pixels), ppmm(std::max(pxPerMm, kLeastMm))
{
    const double longMm = static_cast<double>(std::max(picture.width, picture.height)) / ppmm;
    nodesPerMm = std::min({kNodesPerMm, kWidestNodes / std::max(widestMm, kLeastMm), kMostNodes / longMm});
    const auto along = [&](std::int64_t px) {
        const double wanted = static_cast<double>(px) / ppmm * nodesPerMm;
        // A length of whole nodes must not come to one more by a rounding.
        return std::max<std::int64_t>(static_cast<std::int64_t>(std::ceil(wanted - 1e-9 * (1.0 + wanted))),
                                      1);
    };
    nodes = {along(picture.width), along(picture.height)};
}

Plane Film::mmNodes(const MmGrid& grid, MmSigma sigma, NoiseKey key)
{
    const auto inNodes = [&](double mm) {
        return std::clamp(mm * grid.nodesPerMm, kLeastSigmaNodes, kWidestNodes);
    };
    const double sigmaY = inNodes(sigma.y), sigmaX = inNodes(sigma.x);
    const std::int64_t padY = padOf(sigmaY), padX = padOf(sigmaX);
    const Plane noise =
        noisePlane({grid.nodes.width + 2 * padX, grid.nodes.height + 2 * padY}, key, {-padX, -padY});
    return normalizePlane(gaussianInside(noise, sigmaY, sigmaX, {padY, padX}));
}

NoiseField Film::mmField(Size picture, double ppmm, MmSigma sigma, NoiseKey key)
{
    const MmGrid grid(picture, ppmm, std::max(sigma.y, sigma.x));
    return NoiseField::onNodes(picture, mmNodes(grid, sigma, key), grid.pxPerNode());
}

} // namespace tamlo
