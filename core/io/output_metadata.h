// OutputMetadata: what a written file says about itself. A fixed list of fields, rebuilt from the frame and
// never a copy of the source's blocks, so that no location can slip through; and the writer refuses metadata
// that mentions one.
#pragma once

#include "platform/metadata_writer.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tamlo {

struct OutputMetadata {
    std::optional<std::string> camera;
    std::optional<std::string> lensModel;
    std::optional<double> focalMm;
    std::optional<double> fNumber;
    std::optional<double> exposureSec;
    std::optional<int> iso;
    /// A moment; files carry it as a text in the time zone of this process.
    std::optional<std::time_t> dateOriginal;
    std::vector<std::string> keywords;
    /// Blank texts count as absent.
    std::optional<std::string> author;
    std::optional<std::string> copyright;
    std::string software;

    /// Only the software.
    static OutputMetadata plain(std::string software);
    /// "Tamlo", then a blank and the version when there is one.
    static std::string softwareName(const std::string& version);

    /// The nested dictionary: "Orientation" and "TIFF" at the root, "Exif" and "IPTC" when they have entries.
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

/// "yyyy:MM:dd HH:mm:ss" in the time zone of this process.
std::string exifDate(std::time_t moment);

/// Exposure time as a rational: below a second "1/{round(1/t)}", else "{round(t)}/1".
/// Domain: above 0. Empty for other values.
std::string exposureRational(double seconds);

} // namespace tamlo
