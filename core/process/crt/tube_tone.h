// How bright a photographed tube comes out. A structure clips: the light between two lines is lost and the
// line itself runs into white, so that the same picture without its structure would be lighter. The tube's
// own structure is therefore drawn once, as a small tile of a white screen at 96 pixels a mask pitch, and the
// camera's exposure and the tone of a picture that is too small for the structure are read off it.
#pragma once

#include "core/image/plane.h"
#include "core/process/crt/tube.h"

#include <cstdint>
#include <vector>

namespace tamlo::CRTScreen {

/// The structures that a tile has.
struct Structure {
    bool mask = true;
    bool lines = true;
};

/// A white patch through mask, lines, bloom and the camera's lens: three planes, or one of a tube without a
/// mask. Units: ppx pixels a mask pitch.
std::vector<Plane> tileStructure(const Tube& tube, const Screen& screen, Structure structure, double ppx);

/// All values of the planes in rising order, every (count div n)-th of them.
std::vector<float> samples(const std::vector<Plane>& planes, std::int64_t n);

/// Exposure that brings a white screen to white_mean, 1 to 8. Kept for each tube.
double cameraGain(const PaperProfile& paper, const RenderOptions& options);

/// The tone of a pixel of light 0...4 in 1,025 entries, with what is left undrawn worked in. Kept likewise.
std::vector<float> toneLUT(const PaperProfile& paper, Structure undrawn, const RenderOptions& options);

} // namespace tamlo::CRTScreen
