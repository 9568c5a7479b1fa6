#include "core/profiles/options/film_format.h"

#include "core/image/rounding.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

namespace Formats {

namespace {

constexpr FrameSize kFrameSizes[] = {
    {"135", "full", {36, 24}},
    {"135", "half", {24, 18}},
    {"135", "xpan", {65, 24}},
    {"120", "645", {56, 41.5}},
    {"120", "6x6", {56, 56}},
    {"120", "6x7", {69.5, 56}},
    {"120", "6x8", {76, 56}},
    {"120", "6x9", {84, 56}},
    {"120", "6x12", {112, 56}},
    {"sheet", "3x4", {101, 76}},
    {"sheet", "4x5", {120, 95}},
    {"sheet", "8x10", {245, 194}},
    {"plate", "ninth_plate", {57, 44}},
    {"plate", "sixth_plate", {76, 63}},
    {"plate", "6.5x9", {83, 58}},
    {"plate", "quarter_plate", {101, 76}},
    {"plate", "9x12", {113, 83}},
    {"plate", "4x5", {120, 95}},
    {"plate", "half_plate", {133, 101}},
    {"plate", "13x18", {173, 123}},
    {"plate", "whole_plate", {209, 158}},
    {"plate", "18x24", {233, 173}},
    {"plate", "8x10", {245, 194}},
};

/// The gate that a custom size starts from.
constexpr FrameSize kReferenceGates[] = {
    {"135", "custom", {36, 24}},
    {"120", "custom", {56, 56}},
    {"sheet", "custom", {120, 95}},
    {"plate", "custom", {101, 76}},
};

constexpr std::pair<std::string_view, double> kSize120Cm[] = {{"645", 6}, {"6x6", 6}, {"6x7", 7},
                                                              {"6x8", 8}, {"6x9", 9}, {"6x12", 12}};

const FrameSize* findFrameSize(std::string_view format, const OptText& size)
{
    for (const FrameSize& row : kFrameSizes)
        if (size && row.format == format && row.size == *size) return &row;
    return nullptr;
}

bool isFormatName(std::string_view format)
{
    return std::ranges::any_of(kReferenceGates, [&](const FrameSize& row) { return row.format == format; });
}

std::string formatText(const FilmProfile& film, const RenderOptions& options)
{
    if (options.format) return std::string(rawText(*options.format));
    return film.formatDefault.value_or("135");
}

FormatName normalizedName(const FilmProfile& film, const RenderOptions& options)
{
    return normalizeFormat(formatText(film, options), options.frameSize);
}

/// Long side of a 120 frame by its width in whole centimetres, micrometres.
double format120Um(double cm)
{
    switch (roundAway(cm)) {
    case 7:
        return 69500;
    case 8:
        return 76000;
    case 9:
        return 84000;
    default:
        return 56000;
    }
}

double longUmOf(FilmFormat format, double cm120)
{
    switch (format) {
    case FilmFormat::half:
        return 24000;
    case FilmFormat::sheet4x5:
    case FilmFormat::sheet:
        return 120000;
    case FilmFormat::plate:
        return 101000;
    case FilmFormat::f120:
        return format120Um(cm120);
    case FilmFormat::f135:
        break;
    }
    return 36000;
}

FormatWindowResult windowWithoutSize(double longUm, Size picture)
{
    FormatWindowResult out;
    out.gateMm = {longUm / 1000, longUm / 1000};
    out.windowLongPx = static_cast<double>(std::max(picture.width, picture.height));
    out.windowShortPx = static_cast<double>(std::min(picture.width, picture.height));
    out.exact = true;
    out.fmtUm = out.capUm = longUm;
    return out;
}

/// The window of a normalised name that has a size.
FormatWindowResult windowOfSize(const FormatName& name, SourceAndPicture pixels, CropGate gate)
{
    FormatWindowResult out;
    out.gateMm = formatGateMm(name.format, name.size, pixels.source);
    const double gateAspect = out.gateMm.longMm / out.gateMm.shortMm;
    const auto [w, h] = pixels.source;
    const double srcLong = static_cast<double>(std::max<std::int64_t>({w, h, 1}));
    const double srcShort = static_cast<double>(std::max<std::int64_t>(std::min(w, h), 1));
    const bool filmIsWider = gateAspect > srcLong / srcShort;
    out.windowLongPx = filmIsWider ? srcLong : gateAspect * srcShort;
    out.windowShortPx = filmIsWider ? srcLong / gateAspect : srcShort;

    const double picLong = static_cast<double>(std::max(pixels.picture.width, pixels.picture.height));
    const double picShort = static_cast<double>(std::min(pixels.picture.width, pixels.picture.height));
    const double safe = std::max(out.windowLongPx, 1e-9);
    // A crop of the gate's own aspect counts as exact within half a percent or two pixels.
    const auto close = [](double a, double b, double scale) {
        return std::abs(a - b) <= std::max(0.005 * scale, 2.0);
    };
    bool fits = false;
    if (gate == CropGate::full) {
        out.k = picLong / safe;
        fits = close(picLong, out.windowLongPx, out.windowLongPx) &&
               close(picShort, out.windowShortPx, out.windowLongPx);
    } else {
        out.k = 1;
        fits = close(picShort, out.windowShortPx * picLong / safe, picLong);
    }
    out.exact = fits && name.size != "custom";
    out.fmtUm = out.capUm = out.gateMm.longMm * 1000 * out.k;
    return out;
}

} // namespace

std::span<const FrameSize> frameSizes()
{
    return kFrameSizes;
}

std::vector<std::string> frameSizeOrder(std::string_view format)
{
    std::vector<std::string> out;
    for (const FrameSize& row : kFrameSizes)
        if (row.format == format) out.emplace_back(row.size);
    return out;
}

CropGate cropGateMode(std::string_view text)
{
    return text == "none" ? CropGate::none : CropGate::full;
}

FormatName normalizeFormat(std::string_view format, const OptText& frameSize)
{
    FormatName out;
    if (format == "4x5") format = "sheet";
    if (isFormatName(format)) out.format = format; // anything else, "half" and an empty name too, is 135
    if (!frameSize || frameSize->empty()) return out;
    out.size = findFrameSize(out.format, frameSize) ? *frameSize : "custom";
    return out;
}

std::string legacyFrameSize(std::string_view format, double cm120)
{
    if (format != "120") {
        if (format == "half" || format == "4x5") return std::string(format);
        return format == "plate" ? "quarter_plate" : "full";
    }
    switch (roundAway(cm120)) {
    case 7:
        return "6x7";
    case 8:
        return "6x8";
    case 9:
        return "6x9";
    case 12:
        return "6x12";
    default:
        return "6x6";
    }
}

OptNumber formatAspect(std::string_view format, const OptText& size)
{
    const FrameSize* row = findFrameSize(format, size);
    if (!row) return std::nullopt;
    return row->gate.longMm / row->gate.shortMm;
}

GateMm formatGateMm(std::string_view format, const OptText& size, Size source)
{
    if (const FrameSize* row = findFrameSize(format, size)) return row->gate;
    GateMm reference = kReferenceGates[0].gate;
    for (const FrameSize& row : kReferenceGates)
        if (row.format == format) reference = row.gate;
    double aspect = reference.longMm / reference.shortMm;
    if (source.width >= 1 && source.height >= 1)
        aspect = static_cast<double>(std::max(source.width, source.height)) /
                 static_cast<double>(std::min(source.width, source.height));
    const double longMm = std::min(reference.shortMm * aspect, reference.longMm);
    return {longMm, longMm / aspect};
}

FormatWindowResult formatWindow(const FormatName& name, SourceAndPicture pixels, CropGate gate, double cm120)
{
    const FormatName normalized = normalizeFormat(name.format, name.size);
    if (normalized.size) return windowOfSize(normalized, pixels, gate);
    const FilmFormat format = fromRawText<FilmFormat>(name.format).value_or(FilmFormat::f135);
    return windowWithoutSize(longUmOf(format, cm120), pixels.picture);
}

FormatWindowResult formatWindow(const FilmProfile& film, const RenderOptions& options,
                                SourceAndPicture pixels)
{
    return formatWindow({formatText(film, options), options.frameSize}, pixels,
                        cropGateMode(options.cropGate), options.format120Cm);
}

FilmFormat resolvedFormat(const FilmProfile& film, const RenderOptions& options)
{
    if (options.format) return *options.format;
    return fromRawText<FilmFormat>(film.formatDefault.value_or("135")).value_or(FilmFormat::f135);
}

double formatLongUm(std::optional<FilmFormat> format, const FilmProfile& film, double format120Cm)
{
    RenderOptions options;
    options.format = format;
    return longUmOf(resolvedFormat(film, options), format120Cm);
}

double frameCm120(const FilmProfile& film, const RenderOptions& options)
{
    const FormatName name = normalizedName(film, options);
    if (!name.size || *name.size == "custom") return options.format120Cm;
    for (const auto& [size, cm] : kSize120Cm)
        if (size == *name.size) return cm;
    return 6;
}

std::string devFieldFormat(const FilmProfile& film, const RenderOptions& options)
{
    const FormatName name = normalizedName(film, options);
    return name.size == "half" ? "half" : name.format;
}

bool isPlateFormat(const FilmProfile& film, const RenderOptions& options)
{
    return normalizedName(film, options).format == "plate";
}

} // namespace Formats

RenderOptions optionsForFilm(RenderOptions options, const FilmProfile& film,
                             const std::set<std::string>& given)
{
    if (!given.contains("format")) {
        options.format.reset();
        options.format = Formats::resolvedFormat(film, options);
    }
    if (!given.contains("frame_size")) {
        const FilmFormat format = Formats::resolvedFormat(film, options);
        options.frameSize = Formats::legacyFrameSize(rawText(format), options.format120Cm);
    }
    return options;
}

} // namespace tamlo
