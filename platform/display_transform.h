// From the 8-bit sRGB of a finished picture to what a screen takes: relative colorimetric with black point
// compensation, by the screen's own profile.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace tamlo::platform {

class DisplayTransform {
public:
    /// Null where the bytes are no profile of a screen's three colours, and where the screen is sRGB by its
    /// numbers: then a picture goes out as it is.
    static std::shared_ptr<const DisplayTransform> of(std::span<const std::uint8_t> iccProfile);

    ~DisplayTransform();
    DisplayTransform(const DisplayTransform&) = delete;
    DisplayTransform& operator=(const DisplayTransform&) = delete;

    /// R G B A to B G R A with alpha 255, `pixels` of each. Several threads at once.
    void convert(const std::uint8_t* rgba, std::uint8_t* bgra, std::int64_t pixels) const;

private:
    explicit DisplayTransform(void* transform) : transform_(transform) {}
    void* transform_;
};

/// What a profile calls itself; empty where the bytes are no profile of a screen's three colours.
std::string displayProfileName(std::span<const std::uint8_t> iccProfile);

} // namespace tamlo::platform
