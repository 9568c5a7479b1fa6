// Tiers: in which sizes a picture gets better by itself. First the proxy, then a size that fills the screen,
// then everything there is. Arithmetic on numbers only; sizes are long sides of the whole source in pixels.
#pragma once

#include "app/preview/proxy_file.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tamlo {

enum class DetailTier { working, master };

namespace Tiers {

inline constexpr std::int64_t kStep = 256; ///< small changes of the zoom use the same decode again

/// The tier for what a screen needs of a source. full: its long side, below 1 where it is not known. cap: up
/// to which grain can be averaged, which is much cheaper than counting it; absent for none.
std::int64_t workingTier(std::int64_t needed, std::int64_t full, std::optional<std::int64_t> cap);

/// By how much the source is longer than what a crop leaves of it; 1 without a crop.
double cropDecodeFactor(const std::optional<Crop>& crop, Size source);
/// A length of the cropped picture as one of the source, to the nearest pixel.
std::int64_t scaled(std::int64_t length, double factor);

/// What limits the detail of a frame, of the cropped picture; 0 for no limit.
struct Caps {
    std::int64_t master = 0; ///< what the film resolves
    std::int64_t scan = 0;   ///< what the scanner does
    std::optional<std::int64_t> grain;
};
/// options: with the frame's crop and gate in them.
Caps capsOf(const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options, Size source);

/// What the source can give: its long side, or what of it the film resolves.
std::int64_t fullLong(Size source, const Caps& caps, double cropFactor);
/// What the screen needs. fitLong: pixels of the screen that the whole picture takes, its zoom in it.
std::int64_t neededLong(std::int64_t full, const Caps& caps, double cropFactor, double fitLong);
/// The detail of a proxy of that source.
std::int64_t proxyLong(Size source);

/// "P" the proxy, "S" a tier of the screen's size, "F" everything there is; "" without a picture.
struct Badge {
    std::string letter;
    std::string help;
};
/// shown: long side on screen, 0 without a picture. full, cap: 0 where they are not known or not in force.
Badge badge(std::int64_t shown, std::int64_t full, std::int64_t cap, bool isFine, bool isComing);

} // namespace Tiers

/// How long a tier takes, from how long it took: of this frame, else of any frame at this size.
class DetailEstimates {
public:
    double estimate(const FrameID& frame, DetailTier tier, std::int64_t longSide) const;
    /// A time that tells nothing (an interruption, a hang) is not kept.
    void note(const FrameID& frame, DetailTier tier, std::int64_t longSide, double seconds);
    void forget(const FrameID& frame);
    void clear();

private:
    std::map<std::pair<FrameID, DetailTier>, double> byFrame_;
    std::map<std::pair<DetailTier, std::int64_t>, double> byLong_;
};

} // namespace tamlo
