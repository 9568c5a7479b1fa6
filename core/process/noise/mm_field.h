// Smooth noise on a grid of millimetres, numbered from the picture's corner, so that a preview and a file
// show the same clouds in the same places and a field costs as much at any size. The surface of pack film and
// the yellowing of its sheet lie on it. Units: millimetres of the picture; ppmm pixels a millimetre.
#pragma once

#include "core/process/noise/noise_fields.h"

namespace tamlo::Film {

/// Nodes of the fields of one picture. Four a millimetre; fewer where a scale of centimetres or a card of
/// metres would ask for more of them than anything could show.
struct MmGrid {
    Size picture;
    double ppmm = 1.0;
    double nodesPerMm = 4.0;
    Size nodes;

    /// widestMm: the largest sigma that is asked of the grid.
    MmGrid(Size picture, double ppmm, double widestMm);
    double pxPerNode() const { return ppmm / nodesPerMm; }
};

/// Sigmas of a field along the two axes, millimetres.
struct MmSigma {
    double y = 1.0;
    double x = 1.0;
};

/// Noise of the nodes under a Gaussian of its own on each axis, no less than 0.3 nodes; the noise goes on
/// beyond the edges. At unit deviation over the nodes.
Plane mmNodes(const MmGrid& grid, MmSigma sigma, NoiseKey key);

/// mmNodes read bilinearly at the pixels.
NoiseField mmField(Size picture, double ppmm, MmSigma sigma, NoiseKey key);

} // namespace tamlo::Film
