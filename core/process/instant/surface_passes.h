// Passes of an instant picture over one row: what the reagent leaves is added to the density of one or three
// layers that lie side by side, and the row becomes light. Vector code with run-time dispatch. Null rows are
// left out.
#pragma once

#include "core/film/print/look.h"

#include <array>
#include <cstdint>

namespace tamlo {

/// Taps of the fine noise: a Gaussian of sigma 0.6 pixel over five pixels.
inline constexpr std::int64_t kFineReach = 2;
using FineTaps = std::array<float, kFineReach + 1>;

/// Density of a row, layer by layer.
struct DensityRow {
    std::array<float*, 3> layers{};
    int count = 0; ///< 1 or 3
    std::int64_t width = 0;
};

/// density += gain × row.
void row_apply(float* density, const float* row, float gain, std::int64_t width) noexcept;
/// A row of interleaved density into its layers.
void split_layers(const DensityRow& density, const float* pixels) noexcept;

/// to = the noise under the taps along the row; `from` begins kFineReach samples ahead of it.
void fine_row(float* to, const float* from, std::int64_t width, const FineTaps& taps) noexcept;
/// density += gain × the five rows under the taps, row 2 being the pixel's own.
void fine_apply(float* density, const std::array<const float*, 5>& rows, std::int64_t width,
                const FineTaps& taps, float gain) noexcept;

/// Roller chatter. Fields come as their rows and the factors that bring them to unit deviation.
struct ChatterRow {
    const float* fine = nullptr;
    const float* coarse = nullptr;
    const float* clumps = nullptr;
    const float* ends = nullptr; ///< strength at each pixel
    std::array<const float*, 4> paste{};
};
struct ChatterParams32 {
    float fineGain = 0.0f, coarseGain = 0.0f, clumpGain = 0.0f; ///< with the fields' factors
    std::array<float, 4> pasteGain{};
    float strength = 0.0f;
    float d0 = 0.0f, dSpan = 1.0f, fineFloor = 0.0f, coarseFloor = 0.0f;
    float colourD0 = 0.0f, colourSpan = 1.0f;
    float r0 = 1.0f, rSpan = 0.0f, b0 = 1.0f, bSpan = 0.0f; ///< red and blue layer over the green
};
void peel_chatter(const DensityRow& density, const ChatterRow& row, const ChatterParams32& params) noexcept;

/// The lattice of a silk surface: rows of pits, offset by half a step, with grooves between them. u and v are
/// phases in turns along and across the pull, moved by the wander fields.
struct LatticeRow {
    const float* u = nullptr;
    const float* v = nullptr;
    const float* wanderU = nullptr;
    const float* wanderV = nullptr;
    const float* depth = nullptr;
};
struct LatticeParams32 {
    float wanderU = 0.0f, wanderV = 0.0f; ///< turns
    float dot = 0.0f, groove = 0.0f, depth = 0.0f;
};
void silk_lattice_f(float* to, const LatticeRow& row, std::int64_t width,
                    const LatticeParams32& params) noexcept;

struct LatticeGain {
    float scale = 1.0f; ///< brings the lattice to unit deviation
    float amp = 0.0f, d0 = 0.0f, dSpan = 1.0f, floor = 0.0f;
};
void silk_apply(const DensityRow& density, const float* lattice, const LatticeGain& gain) noexcept;

/// Three layers to interleaved light: 10^-(D - reference), the look, clamp to 0...1.
void instant_positive(float* out, const DensityRow& density, float reference,
                      const Film::LookOp& look) noexcept;

/// Silver to interleaved light in the silver's own tone, warmed in patches, the thin silver more.
struct SilverParams32 {
    float reference = 0.0f;
    Vec3f tone{1.0f, 1.0f, 1.0f};
    float toning = 0.0f, toningScale = 1.0f; ///< amplitude; factor of the field
    float dmin = 0.0f, span = 1.0f, densityBias = 0.0f;
    Vec3f warm{};
};
void mono_positive(float* out, const float* density, const float* toningField, std::int64_t width,
                   const SilverParams32& params, const Film::LookOp& look) noexcept;

} // namespace tamlo
