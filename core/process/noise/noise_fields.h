// Noise fields of the printing processes: paper fibre, brush marks, reticulation, mottle. A field is a pure
// function of position, seed and layer number. Where the pixel is small against the structure, the noise lies
// on a lattice in micrometres of the sheet and only its nodes are drawn and blurred: a preview shows the
// pattern of the file at the same millimetres, and a brush mark of centimetres costs no more than a small
// one. Where the structure is small against the pixel, the noise is drawn at the pixels themselves. Units:
// pxUm micrometres of the sheet a pixel. Domain: a dimensionless field about 0.
#pragma once

#include "core/image/plane.h"
#include "core/process/noise/noise_passes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tamlo {

/// One of a seed's virtual noise images; every field of a stage has a layer number of its own.
struct NoiseKey {
    std::uint32_t seed = 0;
    std::uint32_t layer = 0;
};

/// Mean and standard deviation of a field's samples.
struct FieldStats {
    double mean = 0.0;
    double sd = 0.0;
};

/// 1 / sd, by which a field comes to unit deviation; 1 for a field as good as even (sd of 1e-6 or less).
float unitScale(const FieldStats& stats);

/// Row sums in 64-bit floats, added in row order: the same for any number of cores.
FieldStats planeStats(const Plane& plane);

/// The same of rows that were summed one by one (field_sums about `shift`), `count` samples in all.
FieldStats statsOfRows(std::span<const RunSums> rows, double count, float shift);

/// The plane at unit standard deviation. The mean stays in it; an even plane stays as it is.
Plane normalizePlane(Plane plane);

/// A place in the virtual noise image; coordinates may be negative.
struct NoisePlace {
    std::int64_t x = 0;
    std::int64_t y = 0;
};

/// Normal noise at each pixel: gaussNoise(x, y, seed, layer), from a place of the virtual image on.
Plane noisePlane(Size size, NoiseKey key, NoisePlace first = {});

/// Noise under a Gaussian of sigmaPx pixels (the shared blur, edges repeated), at unit deviation.
Plane altField(Size size, double sigmaPx, NoiseKey key);

/// Difference of two Gaussians of one noise, sigmas in pixels, at unit deviation. An A above 3 is drawn on a
/// grid coarser by A / 3, of at least 16 samples a side, and enlarged.
Plane altDoG(Size size, double sigmaAPx, double sigmaBPx, NoiseKey key);

/// A lattice on the sheet: nodes cellUm apart from its corner, noise at the nodes under a Gaussian of
/// sigmaAUm, less one of sigmaBUm where given. cellUm is above pxUm.
struct NoiseLattice {
    double pxUm = 1.0;
    double cellUm = 1.0;
    double sigmaAUm = 1.0;
    std::optional<double> sigmaBUm;
};

/// The lattice read bilinearly at each pixel; not normalised.
Plane latticeNoise(Size size, const NoiseLattice& lattice, NoiseKey key);

/// What a square pixel leaves of the deviation of a unit field: a Gaussian field of sigmaUm, and a difference
/// of Gaussians of sigmas aUm < bUm. A coarse pixel is the mean of what it covers, so the structure that it
/// can't resolve must not show at full strength. The pixel counts as a Gaussian of its own variance px² / 12.
double gaussianPixelGain(double sigmaUm, double pxUm);
double differencePixelGain(double aUm, double bUm, double pxUm);

/// A field of unit deviation, read by rows: pixels or lattice nodes, whichever the scale asks for, so that a
/// field on a lattice is never a plane of the picture's size.
class NoiseField {
public:
    NoiseField() = default;
    /// Gaussian of sigmaUm: a lattice of sigma / 6 where that is above a pixel.
    static NoiseField gaussian(Size size, double sigmaUm, double pxUm, NoiseKey key);
    /// Difference of Gaussians of aUm and bUm: a lattice of aUm / 3 where that is above a pixel.
    static NoiseField difference(Size size, double aUm, double bUm, double pxUm, NoiseKey key);
    /// The same, smeared along the rows by a Gaussian of alongUm: brushed, woven or drawn surfaces.
    static NoiseField brushed(Size size, double aUm, double bUm, double alongUm, double pxUm, NoiseKey key);
    /// Nodes that lie pxPerNode pixels apart from the picture's corner, as they are: scale() is 1.
    static NoiseField onNodes(Size size, Plane nodes, double pxPerNode);
    /// The same at unit deviation over the pixels.
    static NoiseField unitOnNodes(Size size, Plane nodes, double pxPerNode);

    /// Times this, a sample of a row is a sample of the unit field.
    float scale() const { return scale_; }
    bool onLattice() const { return !taps_.empty(); }

    /// Reads rows for one band; it holds the band's scratch lines.
    class Rows {
    public:
        explicit Rows(const NoiseField& field);
        /// `width` samples, good until the next call.
        const float* row(std::int64_t y) { return run(y, 0, field_.size_.width); }
        /// The same line, of which the pixels first...end - 1 alone are filled in.
        const float* run(std::int64_t y, std::int64_t first, std::int64_t end);

    private:
        const NoiseField& field_;
        std::vector<float> nodes_, line_;
    };

    /// The whole field as a plane at unit deviation.
    Plane plane() const;

private:
    /// Where a pixel lies between two nodes.
    struct Tap {
        std::int32_t first = 0, second = 0;
        float fraction = 0.0f;
    };
    static NoiseField onPixels(Plane samples);
    static NoiseField normalised(NoiseField field);
    void layTaps(double pxPerCell);
    static NoiseField fromLattice(Size size, const NoiseLattice& lattice, NoiseKey key);
    friend Plane latticeNoise(Size, const NoiseLattice&, NoiseKey);

    static std::vector<Tap> axisTaps(std::int64_t pixels, std::int64_t nodes, double pxPerCell);
    FieldStats latticeStats() const;

    Size size_;
    Plane samples_; // pixels, or nodes of the lattice
    std::vector<Tap> rowTaps_;
    std::vector<Tap> taps_;             // along x; empty on pixels
    std::vector<std::int32_t> columns_; // of the left tap, in a line with its end nodes repeated
    std::vector<float> shares_;         // of the right one
    float scale_ = 1.0f;
};

} // namespace tamlo
