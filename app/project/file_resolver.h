// FileResolver: where a frame's source is now, and how it stands. A file is known by its content, not by its
// name: cameras use their names again, and a card put in at the same place may hold other pictures.
#pragma once

#include "app/project/frame.h"
#include "platform/volumes.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tamlo::FileResolver {

/// glance: no file is opened; one that has another size or time than stored counts as the picture until
/// somebody looks closer, as is right where thousands are looked at before the first list is shown. quick:
/// the sample of such a file is read. thorough: of every file.
enum class Look { glance, quick, thorough };

struct Resolution {
    std::string url;
    FileState state = FileState::ok;
    /// The frame's fingerprint with the file's new time, where nothing but the time has changed.
    std::optional<Fingerprint> renewed;
};

/// projectDir: the folder of the project's file; empty for a project without one.
Resolution resolve(const Frame& frame, const std::filesystem::path& projectDir,
                   const platform::Volumes& volumes, Look look = Look::quick);

/// The file seen from the folder, both absolute: at most three levels up; absent where it would be more, and
/// for a path that is no text.
std::optional<std::string> relativePath(const std::filesystem::path& file, const std::filesystem::path& from);

/// Absolute, without dots; links are not followed.
std::string standardised(const std::filesystem::path& path);

} // namespace tamlo::FileResolver
