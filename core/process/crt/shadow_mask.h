// What stands between the beams and the phosphors: a triangular lattice of round dots or upright stripes, one
// channel lit at each place, and the shadows of the wires that hold a grille. Dividing by the mean of each
// channel leaves the frame as bright as it was. Units: pixels; maskPx the distance of two dots of one colour.
#pragma once

#include "core/image/plane.h"
#include "core/process/crt/tube.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tamlo::CRTScreen {

class ShadowMask {
public:
    /// Where the lattice begins, as shares of maskPx.
    struct Phases {
        double x = 0.0, y = 0.0;
    };
    ShadowMask(const Tube& tube, double maskPx, Size size, Phases phases);

    /// Lines of one band.
    struct Scratch {
        std::vector<float> colour, cover;
    };
    /// Multiplies row y of each channel, and by factor.
    void apply(const std::array<float*, 3>& rows, std::int64_t y, float factor, Scratch& scratch) const;
    /// Mean cover of each channel over the frame.
    const std::array<double, 3>& means() const { return means_; }

private:
    void makeStripes(double phase);
    void makeColumns(double phase);
    void coverRow(std::int64_t y, Scratch& scratch) const;
    void measure();

    Size size_;
    bool grille_;
    double maskPx_, dot_, depth_;
    double rowPhase_;
    std::vector<float> fraction_,
        number_; ///< of each column in the lattice: what is left, and whole modulo 3
    std::array<std::vector<float>, 3> light_; ///< of a grille: the factor of each column
    std::array<double, 3> means_{1.0, 1.0, 1.0};
};

/// Shadow of the damper wires on each row, 1 where there is none; empty without wires that show.
std::vector<float> damperWires(std::int64_t height, const Tube& tube, double pxUm, double zoom);

} // namespace tamlo::CRTScreen
