// Written files read back by the libraries of their formats, for tests.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tamlo::test {

struct ReadPicture {
    std::int64_t width = 0;
    std::int64_t height = 0;
    int channels = 0;
    int bits = 0;
    /// Samples of 8 or 16 bits, widened.
    std::vector<std::uint16_t> samples;
    std::vector<std::uint8_t> icc;
};

std::vector<std::uint8_t> readBytes(const std::string& path);
/// By libpng and libtiff. Throw std::runtime_error.
ReadPicture readPng(const std::string& path);
ReadPicture readTiff(const std::string& path);

/// All EXIF, IPTC and XMP by Exiv2: key to text, the values of a repeated key joined by '|'.
std::map<std::string, std::string> readMetadata(const std::string& path);

/// Pixels an inch by the library of the file's format (the JFIF head of a JPEG); 0 where it tells none.
double readDensity(const std::string& path);

} // namespace tamlo::test
