// libjpeg-turbo as a second opinion on our JPEG files, for tests and benchmarks.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tamlo::test {

struct DecodedJpeg {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// R G B bytes.
    std::vector<std::uint8_t> rgb;
};

/// Throws std::runtime_error on any error or warning of the library.
DecodedJpeg decodeJpeg(std::span<const std::uint8_t> file);
DecodedJpeg decodeJpegFile(const std::string& path);

/// Baseline 4:4:4 with the standard Huffman tables, by the default (fastest exact) transform.
std::vector<std::uint8_t> encodeJpegByLibrary(std::span<const std::uint8_t> rgb, std::int64_t width,
                                              std::int64_t height, int quality);

} // namespace tamlo::test
