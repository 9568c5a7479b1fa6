// What a camera wrote about a shot into the file: the few fields that a finished picture repeats.
// Nothing of a place is read.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tamlo::platform {

struct ShotProperties {
    std::optional<std::string> make;
    std::optional<std::string> camera; ///< the model, as the camera spells it
    std::optional<std::string> lensModel;
    std::optional<double> focalMm;
    std::optional<double> fNumber;
    std::optional<double> exposureSec;
    std::optional<int> iso;
    std::optional<std::string> dateOriginal; ///< "YYYY:MM:DD HH:MM:SS", the camera's own clock
    std::optional<std::string> timeZone;     ///< of that clock, "+02:00"
    std::optional<std::string> artist, copyright;
};

/// Fields that the file does not have, or whose value makes no sense, are absent; a file without metadata
/// gives none at all, one with damaged metadata what stands before the damage. Texts are UTF-8.
/// head: the beginning of the file, where it was read already; the disk is asked only for what lies behind.
ShotProperties readShotProperties(const std::filesystem::path& path, std::span<const char> head = {});

} // namespace tamlo::platform
