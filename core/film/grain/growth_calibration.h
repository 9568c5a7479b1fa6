// Calibration of growth grain: its free strengths are solved so that patches of it, read through a 48 µm
// aperture, have the granularity of classic grain at the same numbers. A result is a pure function of its
// key, whatever ran before: what goes into the computing is read back from the rounded key. Results are kept
// for the life of the process, a bounded number of them; no lock is held while one is computed.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/film_profile.h"

#include <array>
#include <compare>
#include <cstdint>
#include <vector>

namespace tamlo::Grain {

/// Clump sigma of the test patches.
inline constexpr double growthClumpTestCs = 0.1;
inline constexpr double growthColorCs = 0.08;
/// Share of the target's variance that clumping is to supply in colour.
inline constexpr double growthColorClumpShare = 0.35;

/// What a silver calibration is known by: hundred-thousandths of density, hundredths and thousandths of a
/// micrometre.
struct GrowthKey {
    std::int64_t amount = 0, sizeUm = 0, site = 0;
    auto operator<=>(const GrowthKey&) const = default;
};

/// The same for a colour film, with thousandths of the layers' scales.
struct ColorKey {
    std::int64_t amount = 0, sizeUm = 0, site = 0;
    std::array<std::int64_t, 3> layers{};
    auto operator<=>(const ColorKey&) const = default;
};

/// Strengths of the three layers.
struct ColorCal {
    Vec3f deltas{}; ///< density of one cloud
    Vec3f css{};    ///< log-normal spread of the local cloud density
};

/// Log-normal spread of the local crystal density, 0...0.6, at which silver grain of that amount and size on
/// that site pitch measures as classic grain does. Units: sizeUm and site in micrometres.
float growthClumpSigma(double amount, double sizeUm, double site, double dmin, double dmax);

/// Numbers of a colour film ahead of calibration.
struct ColorCalInput {
    double baseAmount = 0.0;
    double baseSizeUm = 0.0;
    double site = 0.0;
    GrainParams grain; ///< for its layer scales
    Vec3d dmins{}, dmaxs{};
};
ColorCal growthColorCal(const ColorCalInput& input);

/// A result with what it is known by, as plain numbers, for who keeps results longer than a process lives.
struct CalibrationRecord {
    std::vector<std::int64_t> key;
    std::vector<float> values;
    auto operator<=>(const CalibrationRecord&) const = default;
};

/// While it lives, every result that this thread asks for is added to a list.
class CalibrationNotes {
public:
    explicit CalibrationNotes(std::vector<CalibrationRecord>& into);
    ~CalibrationNotes();
    CalibrationNotes(const CalibrationNotes&) = delete;
    CalibrationNotes& operator=(const CalibrationNotes&) = delete;

private:
    std::vector<CalibrationRecord>* outer_;
};

/// Takes a result as found. One of no known form, or out of the range of such results, is left out; returns
/// whether it was taken.
bool addCalibration(const CalibrationRecord& record);

/// The layer scales of a profile, or the ones in their place.
Vec3d growthLayerScale(const GrainParams& grain);
Vec3d growthLayerSizeScale(const GrainParams& grain);

} // namespace tamlo::Grain
