// OutputMetadata: what a written file says about itself: the shot, the author, the print's scale, and how the
// print was made. A fixed list of fields, rebuilt from the frame and never a copy of the source's blocks, so
// that no location can slip through; and the writer refuses metadata that mentions one.
#pragma once

#include "platform/metadata_writer.h"

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tamlo {

struct OutputMetadata {
    std::optional<std::string> make;
    std::optional<std::string> camera;
    std::optional<std::string> lensModel;
    std::optional<double> focalMm;
    std::optional<double> fNumber;
    std::optional<double> exposureSec;
    std::optional<int> iso;
    /// The camera's own clock, "YYYY:MM:DD HH:MM:SS", written as it stands; no date of the calendar is left
    /// out. With it the camera's distance from UTC, "+02:00".
    std::optional<std::string> dateOriginal;
    std::optional<std::string> timeZone;
    std::vector<std::string> keywords;
    /// Blank texts count as absent.
    std::optional<std::string> author;
    std::optional<std::string> copyright;
    std::string software;
    /// Pixels of the file an inch of the print.
    std::optional<double> pixelsPerInch;
    /// How the print was made: the text of encodeRecipe.
    std::optional<std::string> recipe;

    /// Only the software.
    static OutputMetadata plain(std::string software);
    /// "Tamlo", then a blank and the version when there is one.
    static std::string softwareName(const std::string& version);

    /// pixelsPerInch where it is a number that files can hold.
    std::optional<double> density() const;

    /// The nested dictionary: "Orientation" and "TIFF" at the root, "Exif" and "IPTC" when they have entries,
    /// the density and the recipe when they are there.
    nlohmann::json properties() const;
    /// The same content as entries of the metadata library, with the exposure as a rational.
    std::vector<platform::MetadataEntry> imageMetadata() const;
    /// Whether the properties mention a location.
    bool mentionsLocation() const;
    /// Options of the lossless copy: these entries alone, positions excluded.
    platform::MetadataCopy copyOptions() const;
};

/// True when a key, lowercased, contains "gps", or equals "Location", here or in a nested dictionary.
bool hasGPS(const nlohmann::json& dictionary);

/// Whether a text is "YYYY:MM:DD HH:MM:SS" and names a second of the calendar from 1800 on. A camera whose
/// clock was never set writes zeros.
bool isExifDate(const std::string& text);

/// Whether a text is a distance from UTC, "+02:00" or "-09:30".
bool isTimeZone(const std::string& text);

/// Exposure time as a rational: below a second "1/{round(1/t)}", else "{round(t)}/1".
/// Domain: above 0. Empty for other values.
std::string exposureRational(double seconds);

} // namespace tamlo
