// Rolls for tests: every field of a frame set, in many shapes, from a number.
#pragma once

#include "app/project/project.h"

#include <string>

namespace tamlo::test {

/// A frame with most of its fields set; `n` chooses which, and their values.
inline Frame frameNumber(unsigned n)
{
    Frame frame;
    frame.id = Uuid::random();
    frame.url = "/photos/Ролл " + std::to_string(n / 8) + "/IMG_" + std::to_string(1000 + n) + ".NEF";
    frame.mark = static_cast<Mark>(n % 3);
    frame.orient = {static_cast<std::int64_t>(n % 4), n % 2 == 1};
    if (n % 5 > 0) {
        ProcessSettings process = ProcessSettings::fresh();
        process.stock = n % 2 ? "portra400" : "trix400";
        process.options.grade = 2 + 0.1 * (n % 7);
        process.options.filterCut = n % 3 ? OptText("orange_21") : std::nullopt;
        if (n % 4 == 0) process.options.seedVariants = SeedVariants{{"film", n}};
        process.presetName = "Ночь";
        frame.process = std::move(process);
    }
    if (n % 3 == 0) frame.crop = Crop{0.1, 0.2, 0.5, 0.25 + 0.001 * (n % 100), -1.5};
    if (n % 4 == 1) frame.exportedAt = Date{7.5e8 + 0.1 * n}, frame.exportedName = "a.jpg";
    frame.seed = 4294967295u - n;
    frame.relPath = "../IMG_" + std::to_string(1000 + n) + ".NEF";
    frame.fingerprint = Fingerprint{20000000 + n, 1.7e9 + 0.25, 17241709254077376921u - n};
    if (n % 6 > 0) {
        ShotInfo shot;
        if (n % 6 > 1) shot = {"Leica M10", "Summilux", 50, 1.4, "1/250", 200, Date{6e8}};
        frame.shot = shot;
    }
    return frame;
}

inline Project rollOf(unsigned frames)
{
    Project project;
    project.name = "Roll";
    for (unsigned n = 0; n < frames; ++n) project.frames.append(frameNumber(n));
    return project;
}

} // namespace tamlo::test
