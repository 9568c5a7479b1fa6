// A picture's metadata as Exiv2 holds them, for the files of this folder alone.
#pragma once

#include <filesystem>
#include <span>
#include <string>

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {

struct PictureMetadata {
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    Exiv2::XmpData xmp;
    std::string damage; ///< why reading ended early, empty where it did not; what stands before it is there
};

/// To be called within an exiv2Session. Errors: Exiv2::AnyError when the file is no picture, PlatformError
/// when it can't be read.
/// head: the beginning of the file, where it was read already; the disk is asked only for what lies behind.
PictureMetadata readPictureMetadata(const std::filesystem::path& path, std::span<const char> head = {});

} // namespace tamlo::platform
