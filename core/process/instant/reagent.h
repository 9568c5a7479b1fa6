// The surface that the developing reagent leaves in an instant picture, in density: clouds of development in
// all layers together and in each a little apart, noise as fine as the pixels, streaks down the picture where
// the rollers pressed, and the plain silk of an embossed paper. Laid before density becomes light. What has a
// size lies in millimetres of the real picture.
#pragma once

#include "core/process/instant/picture_mm.h"
#include "core/process/instant/surface_passes.h"
#include "core/process/noise/noise_fields.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo::Film {

/// What of the surface is there; a gain of 0 has no field.
struct ReagentPlan {
    std::uint32_t seed = 0;
    std::optional<NoiseField> mottle;
    std::vector<NoiseField> layerMottle; ///< one a layer on colour film
    float mottleGain = 0.0f, layerMottleGain = 0.0f;
    float fineGain = 0.0f;
    FineTaps fineTaps{};
    std::vector<float> streaks; ///< density of each column; empty for none
    std::optional<NoiseField> silk;
    float silkGain = 0.0f;
};

/// Seed of the surface: the first output of the `film` stream. Fields take its low 32 bits.
std::uint64_t surfaceSeed(const RenderOptions& options);

/// Shape: a picture of `layers` layers, 1 or 3. The film's amplitudes carry the mottle knob already, except
/// that of the silk, which `devMottle` multiplies here.
ReagentPlan instantTexture(Size picture, int layers, const TextureParams& texture, const PictureScale& scale,
                           double devMottle, std::uint64_t seed);

/// One-dimensional noise across the width, at unit deviation.
std::vector<float> streakProfile(std::int64_t width, double sigmaPx, std::uint64_t seed);

/// Adds the surface to rows of density, one band's at a time.
class ReagentRows {
public:
    ReagentRows(const ReagentPlan& plan, Size picture, int layers);
    void apply(std::int64_t y, const DensityRow& density);

private:
    struct Fine {
        std::vector<std::uint32_t> columns;
        std::vector<float> noise;
        std::array<std::vector<float>, 5> ring; ///< row y at (y + 5) % 5
        std::int64_t next = 0;                  ///< first row that the ring has not had
        bool begun = false;
    };
    void addFine(std::int64_t y, float* density, std::uint32_t layer, Fine& fine) const;

    const ReagentPlan& plan_;
    std::optional<NoiseField::Rows> mottle_, silk_;
    std::vector<NoiseField::Rows> layerMottle_;
    std::vector<float> common_;
    std::vector<Fine> fine_;
};

} // namespace tamlo::Film
