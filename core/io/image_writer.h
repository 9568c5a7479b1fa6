// ImageWriter: finished pixels to a file. The extension alone chooses the format: JPEG by our own encoder,
// PNG of 8 bits or TIFF of 16 bits a channel, all tagged sRGB. Metadata is added to the encoded bytes without
// touching the compressed picture. A file appears whole or not at all; a failure in the metadata step leaves
// the picture without metadata.
#pragma once

#include "core/io/output_metadata.h"
#include "core/io/ready_image.h"
#include "core/io/srgb_encode.h"

#include <functional>
#include <optional>
#include <string>

namespace tamlo::ImageWriter {

/// Writes the picture, making the target's folder where it is missing.
/// Domain: image in display-linear light, clamped to 0 ... 1 here; quality counts for JPEG only.
/// Errors: invalidArgument "output extension .{ext} (use jpg/png/tif)"; io when the folder or the file can't
/// be made or written; unsupported when the picture is too large for the format.
void save(const RGBImage& image, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata);

/// The same of a ready image: JPEG over white, PNG and TIFF at its own 8 bits with its alpha.
/// Errors: invalidArgument "output extension .{ext} for a ready image (use jpg/png)", else as above.
void save(const ReadyImage& image, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata);

struct SocialCopy {
    std::string path;
    /// The folder "social" could not take it, so it lies beside the master.
    bool fellBack = false;
};

/// Writes the social copy: "social/{stem}_social.jpg" beside the master, or when that fails
/// "{stem}_social.jpg" beside it, under the name that `freeName` makes of that. Errors: those of the second
/// try.
SocialCopy saveSocial(const RGBImage& image, const std::string& master, int quality,
                      const std::optional<OutputMetadata>& metadata,
                      const std::function<std::string(const std::string&)>& freeName = {});

/// The encoded file with the metadata in it; the file as it came when there is none, when `properties`
/// mentions a location, or when the metadata can't be added.
std::vector<std::uint8_t> attach(std::vector<std::uint8_t> file, const nlohmann::json& properties,
                                 const platform::MetadataCopy& copy);

} // namespace tamlo::ImageWriter
