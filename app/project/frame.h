// Frame: one picture of the roll. It points at a source file that it never changes, and is an original, or
// has a process of its own. A plain value; its larger parts are shared with its copies.
#pragma once

#include "app/project/date.h"
#include "app/project/file_state.h"
#include "app/project/fingerprint.h"
#include "app/project/shared.h"
#include "app/project/shot_info.h"
#include "app/project/uuid.h"
#include "core/profiles/options/crop.h"
#include "core/profiles/presets/process_settings.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tamlo {

using FrameID = Uuid;

enum class Mark { none, selected, rejected };

/// The user's turn and mirror, on top of the file's own orientation.
struct Orient {
    std::int64_t rot = 0; ///< quarter turns clockwise, 0 to 3
    bool mirror = false;

    bool operator==(const Orient&) const = default;
};

struct Frame {
    FrameID id;
    std::string url; ///< absolute path of the source where it was last seen, its bytes as the disk has them
    Mark mark = Mark::none;
    Shared<ProcessSettings> process; ///< absent for an original
    Orient orient;
    std::optional<Crop> crop;
    std::optional<Date> exportedAt;
    std::optional<std::string> exportedName;
    std::optional<std::uint32_t> seed;
    Shared<std::string> bookmark;       ///< base64, another platform's, carried as it stands
    std::optional<std::string> relPath; ///< of the source, seen from the project file's folder
    std::optional<Fingerprint> fingerprint;
    Shared<ShotInfo> shot; ///< empty when the file has none, absent when it was not read yet

    /// The name of the source file, without its folder.
    std::string fileName() const;
    /// Its own, else one that follows from the id, so that grain and dust stay the same over renders.
    std::uint32_t effectiveSeed() const;

    bool operator==(const Frame&) const = default;
};

} // namespace tamlo
