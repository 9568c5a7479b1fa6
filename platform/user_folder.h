// Where a user's own files of this program stand.
#pragma once

#include <filesystem>

namespace tamlo::platform {

/// The path of TAMLO_USER_DIR, else "Tamlo" in the folder where the desktop keeps a user's application data
/// (XDG base directories). It need not exist.
std::filesystem::path userFolder();

/// Where what can be made again is kept: "Tamlo" in the desktop's folder of caches.
std::filesystem::path cacheFolder();

/// Where locks stand: a folder that lives as long as the user is logged in, else the user's own.
std::filesystem::path lockFolder();

} // namespace tamlo::platform
