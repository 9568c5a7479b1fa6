// ShotInfo: what the camera told about a shot, read once when a frame enters the roll.
#pragma once

#include "app/project/date.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tamlo {

struct ShotInfo {
    std::optional<std::string> camera; ///< maker and model
    std::optional<std::string> lens;
    std::optional<double> focalMm;
    std::optional<double> fNumber;
    std::optional<std::string> shutter; ///< "1/250", or seconds in the words of the language at import
    std::optional<std::int64_t> iso;
    std::optional<Date> dateOriginal; ///< the camera's clock, taken as the local time of this machine

    /// What the file does not tell is absent; a file that can't be read tells nothing.
    /// head: the beginning of the file, where it was read already.
    static ShotInfo read(const std::filesystem::path& url, std::span<const char> head = {});

    bool isEmpty() const { return *this == ShotInfo(); }
    /// What there is, joined by " · ".
    std::string line() const;
    /// Of the shutter's text; absent when it tells no time above 0.
    std::optional<double> exposureSeconds() const;

    bool operator==(const ShotInfo&) const = default;
};

/// The text of an exposure time: "1/250" below a second, else seconds with their unit; empty for 0 or less.
std::string shutterText(double seconds);

} // namespace tamlo
