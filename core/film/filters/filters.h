// Filters: glass that a photographer mounts. In front of the lens, ahead of its veil and glow: a graduated
// wedge and a star or streak filter. Behind the lens as far as light goes: a colour filter, and a diffusion
// filter on top of it. All work on linear scene light with the peak above 1 left whole, and have no scale in
// pixels of their own: sizes are fractions of the frame. The profile's keys and their absent values stand
// with each filter; only the keys of its stage are read, whatever `type` says.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/filter_profile.h"
#include "core/profiles/options/render_options.h"

#include <optional>
#include <string>

namespace tamlo::Filters {

/// The rear filters of a frame; an empty slot has no name.
struct Slots {
    OptText cut;
    double cutAmount = 1.0;
    OptText diffusion;
    double diffusionAmount = 1.0;
    bool operator==(const Slots&) const = default;
};

/// The two rear slots. The old single slot `filter` is read when both are empty: a "cut" goes to the cut
/// slot, all else to the diffusion slot, a name that nobody knows too. An empty text is an empty slot.
Slots slots(const RenderOptions& options, const ProfileStore& store);

/// The profile of a slot; nothing for an empty slot and for a name that can't be resolved.
std::optional<FilterProfile> resolve(const OptText& name, const ProfileStore& store);

/// The ray filter's profile; nothing when there is none or its strength is 1e-5 or less.
std::optional<FilterProfile> raysProfile(const RenderOptions& options, const ProfileStore& store);

/// Front filters: the graduated filter and, when `rays` is true, the ray filter.
RGBImage applyFront(RGBImage image, const RenderOptions& options, const ProfileStore& store, bool rays);

/// Rear filters: the colour filter, then the diffusion filter. The film is the one after film state.
RGBImage apply(RGBImage image, const FilmProfile& film, const RenderOptions& options,
               const ProfileStore& store);

/// Gains of a colour filter. They keep the film's own answer to grey, as a photographer allows for the filter
/// factor: luminance for colour, spectral weights for a "bw" film. The amount is clamped to 0...1; at 0 the
/// gains are exactly 1.
Vec3f cutGains(const FilterProfile& profile, double amount, const FilmProfile& film);
RGBImage applyCut(RGBImage image, const FilterProfile& profile, double amount, const FilmProfile& film);

/// Glow and veil of a diffusion filter: E_c += amount × bloom × blur(max(E_c - threshold, 0)), then
/// E = E × (1 - 0.5 h) + h × mean luminance with h = amount × haze.
/// Units: the blur's sigma is radius_frac of the width, at least 1 pixel.
RGBImage applyDiffusion(RGBImage image, const FilterProfile& profile, double amount);

/// A graduated filter of 2^-density, dense above its line; or a reverse one, densest at the line.
/// Units: pos in halves of the long side, downwards, 0 is the centre; turnDeg in degrees, clockwise.
RGBImage applyGrad(RGBImage image, const FilterProfile& profile, double pos, double turnDeg);

/// Light above the threshold is taken out and laid along rays, red ones longer and blue ones shorter, so that
/// energy is kept within the frame's edges. A frame whose largest sample is not above the threshold keeps its
/// bits. Units: turnDeg in degrees.
RGBImage applyRays(RGBImage image, const FilterProfile& profile, double turnDeg);

/// Largest sample of all three channels; 0 for an image without any above 0.
float peak(const RGBImage& image);

} // namespace tamlo::Filters
