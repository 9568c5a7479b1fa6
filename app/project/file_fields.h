// What a frame holds of its source file, read when it enters the roll, when it is linked to another file, and
// for older projects when it is first found again. Reads files: no work for the thread of the session.
#pragma once

#include "app/project/frame.h"
#include "app/project/roll.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tamlo {

struct FileFields {
    std::string url; ///< standardised
    std::optional<std::string> relPath;
    std::optional<Fingerprint> fingerprint; ///< absent: the file can't be read
    ShotInfo shot;

    /// projectDir: the folder of the project's file; empty for a project without one.
    static FileFields read(const std::filesystem::path& file, const std::filesystem::path& projectDir);
};

/// A new frame of the roll: unmarked, unturned, without process, its seed from the file's name.
Frame newFrame(const FileFields& file);

/// Binds a frame to a file. A file of other content makes what was exported from the frame out of date.
void link(Frame& frame, const FileFields& file);

/// What a frame whose file is present lacks: fingerprint, camera data, the path from a project that has been
/// moved or saved. Nothing where it lacks none; a fingerprint that is stored is never replaced.
std::optional<FileFields> missingFileFields(const Frame& frame, const std::filesystem::path& projectDir);
/// Takes those that the frame lacks.
void fillFileFields(Frame& frame, const FileFields& fields);

/// The paths from a folder that the project's file is about to stand in. Asks no disk.
void renewRelPaths(Roll& roll, const std::filesystem::path& projectDir);

} // namespace tamlo
