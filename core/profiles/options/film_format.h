// Film formats in millimetres: which gate a format and frame size have, how that gate lies over a digital
// source, and how many micrometres of film the picture's long side stands for. That last number over the
// picture's pixels is the scale of every physical effect. Plain geometry, no pixels.
#pragma once

#include "core/image/plane.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/options/render_options.h"

#include <set>
#include <span>
#include <string_view>

namespace tamlo {

namespace Formats {

/// Long and short side of a gate in millimetres.
struct GateMm {
    double longMm = 0;
    double shortMm = 0;
    bool operator==(const GateMm&) const = default;
};

/// A named frame size of a format.
struct FrameSize {
    std::string_view format;
    std::string_view size;
    GateMm gate;
};

/// A format name with an optional frame size, as settings hold it.
struct FormatName {
    std::string format = "135";
    OptText size;
    bool operator==(const FormatName&) const = default;
};

/// What a crop takes from the film.
enum class CropGate {
    full, ///< the gate stands for the whole source; a crop takes less film
    none  ///< the picture is the gate, as if the camera had seen exactly this
};

/// Pixels of the whole source after orientation and of the picture after the crop.
struct SourceAndPicture {
    Size source;
    Size picture;
};

struct FormatWindowResult {
    GateMm gateMm;
    double windowLongPx = 0; ///< the gate laid over the source
    double windowShortPx = 0;
    double k = 1; ///< part of the gate that the picture takes; above 1 for a picture wider than the gate
    bool exact = false;
    double fmtUm = 0; ///< film under the picture's long side, micrometres
    double capUm = 0; ///< the same, for the film's resolution ceiling
};

/// Every named frame size, in the order of the menus. "custom" is legal for every format and not listed.
std::span<const FrameSize> frameSizes();
/// The frame sizes of one format, in order.
std::vector<std::string> frameSizeOrder(std::string_view format);

/// "none" is none, any other text is full.
CropGate cropGateMode(std::string_view text);

/// A format and size as the tables name them: older names are mapped, an unknown format is "135", a size
/// that the format doesn't have is "custom", an empty size is no size.
FormatName normalizeFormat(std::string_view format, const OptText& frameSize);
/// The frame size that settings from before frame sizes mean. cm120: width of a 120 frame in centimetres.
std::string legacyFrameSize(std::string_view format, double cm120);
/// Long / short of a named size; nothing for "custom", no size, or an unknown pair.
OptNumber formatAspect(std::string_view format, const OptText& size);
/// The gate; a custom one keeps the reference's short side as far as its long side allows.
GateMm formatGateMm(std::string_view format, const OptText& size, Size source);

/// The window of settings that name format, size and gate themselves. cm120 is read only for "120" without
/// a size.
FormatWindowResult formatWindow(const FormatName& name, SourceAndPicture pixels, CropGate gate,
                                double cm120 = 6);
/// The window of a film under options.
FormatWindowResult formatWindow(const FilmProfile& film, const RenderOptions& options,
                                SourceAndPicture pixels);

/// The options' format, else the film's default where that names one, else 135.
FilmFormat resolvedFormat(const FilmProfile& film, const RenderOptions& options);
/// Long side of the film in micrometres by format alone, from before frame sizes.
double formatLongUm(std::optional<FilmFormat> format, const FilmProfile& film, double format120Cm);
/// Width of a 120 frame in centimetres.
double frameCm120(const FilmProfile& film, const RenderOptions& options);
/// The format that the field of an unevenly developed tank is laid out for; "half" for a half frame.
std::string devFieldFormat(const FilmProfile& film, const RenderOptions& options);
bool isPlateFormat(const FilmProfile& film, const RenderOptions& options);

} // namespace Formats

/// Fresh options for a film: `format` and `frame_size` follow the film's default unless their keys are among
/// the given ones.
RenderOptions optionsForFilm(RenderOptions options, const FilmProfile& film,
                             const std::set<std::string>& given);

} // namespace tamlo
