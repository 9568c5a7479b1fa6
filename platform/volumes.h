// Volumes: cards, sticks, disks and network folders that come and go. A file that is not there may be lost,
// or its volume may be away; which of the two follows from where such volumes are mounted.
#pragma once

#include "platform/main_loop.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tamlo::platform {

/// Ends with its owner.
class VolumeWatch {
public:
    virtual ~VolumeWatch() = default;
};

class Volumes {
public:
    virtual ~Volumes() = default;

    /// Whether the path lies on a volume that is not mounted now. No disk is asked. From any thread.
    virtual bool isOffline(const std::filesystem::path& path) const = 0;
    /// The volume's name, mounted or not; absent for a path on the machine's own disks.
    virtual std::optional<std::string> name(const std::filesystem::path& path) const = 0;
    /// Calls `changed` on the loop's thread whenever a volume has come or gone, as long as the watch lives.
    [[nodiscard]] virtual std::unique_ptr<VolumeWatch> watch(MainLoop& loop,
                                                             std::function<void()> changed) = 0;
};

/// The volume that a path lies on, by its place alone.
struct VolumePlace {
    std::string root; ///< where it is, or would be, mounted
    std::string name;
    bool isGvfs = false; ///< one of many folders below a mount of all of them
};
/// /media/USER/NAME, /media/NAME, /run/media/USER/NAME, /mnt/NAME and /run/user/N/gvfs/NAME, with something
/// below. isMounted, isUser: decide between the two forms of /media.
std::optional<VolumePlace> volumeOf(const std::filesystem::path& path,
                                    const std::function<bool(const std::string& root)>& isMounted,
                                    const std::function<bool(const std::string& name)>& isUser);

/// The places of a table as /proc/self/mountinfo has it.
std::vector<std::string> mountPoints(const std::string& table);

/// The volumes of this machine, by the kernel's table of mounts.
class SystemVolumes : public Volumes {
public:
    bool isOffline(const std::filesystem::path& path) const override;
    std::optional<std::string> name(const std::filesystem::path& path) const override;
    std::unique_ptr<VolumeWatch> watch(MainLoop& loop, std::function<void()> changed) override;
};

} // namespace tamlo::platform
